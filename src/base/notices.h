// Notices: what the user should know although the operation that met it has no error to give. The
// floors that work hand them up; the run decides where they are shown. Process-wide and not locked,
// as the activity trail is: the program has one thread.
#pragma once

#include <functional>

#include "base/strings.h"

// The stream that a notice was published for.
enum class NoticeStream { Output, Error };

// Hands `text`, with its line end, to the receiver. Without one it is dropped.
void TellNotice(StringView text, NoticeStream stream = NoticeStream::Error);

// Receives all notices for the length of a block, instead of the receiver before it.
class NoticeReceiver {
public:
    using Function = std::function<void(StringView text, NoticeStream stream)>;

    explicit NoticeReceiver(Function function);
    ~NoticeReceiver();
    NoticeReceiver(const NoticeReceiver&) = delete;
    NoticeReceiver& operator=(const NoticeReceiver&) = delete;

private:
    Function outer_;
};
