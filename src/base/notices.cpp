#include "base/notices.h"

#include <utility>

namespace {

NoticeReceiver::Function& Receiver() {
    static NoticeReceiver::Function receiver;
    return receiver;
}

}  // namespace

void TellNotice(StringView text, NoticeStream stream) {
    if (Receiver()) Receiver()(text, stream);
}

NoticeReceiver::NoticeReceiver(Function function)
    : outer_(std::exchange(Receiver(), std::move(function))) {}

NoticeReceiver::~NoticeReceiver() { Receiver() = std::move(outer_); }
