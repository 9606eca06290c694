#include "consumers/output_sink.h"

#include <span>

#include "files/dfile.h"
#include "files/text.h"
#include "platform/console.h"

namespace DataConsumers {
namespace {

class FileSink final : public OutputSink {
public:
    explicit FileSink(LossTold told) : told_(told) {}

    bool Open(String& error, const String& name, Encoding encoding, bool marked, bool append) {
        ErrorRecord reason;
        const bool opened = file_.Open(reason, name, encoding, append, marked);
        if (!opened) error = reason.text;
        return opened;
    }

    bool Write(String& error, StringView text, std::size_t& bytes) override {
        ErrorRecord reason;
        if (file_.Write(reason, text, &bytes)) return true;
        bytes = 0;
        error = reason.text;
        return false;
    }

    bool BeganEmpty() const override { return file_.BeganEmpty(); }

    bool Close(String& error) override {
        if (told_ == LossTold::ByNotice) return file_.Close();
        ErrorRecord reason;
        if (file_.Finish(reason)) return true;
        error = reason.text;
        return false;
    }

private:
    const LossTold told_;
    dFile file_;
};

class ConsoleSink final : public OutputSink {
public:
    ConsoleSink(Encoding encoding, bool as_pattern)
        : encoding_(encoding),
          as_pattern_(as_pattern),
          terminal_(platform::StandardOutputIsTerminal()) {}

    bool Write(String& /*error*/, StringView text, std::size_t& /*bytes*/) override {
        if (!as_pattern_) return WriteAll(text);
        // Directives that want an argument find none and stay as they are.
        text_ = text;
        text::ReplaceAll(text_, u"%%", u"%");
        return WriteAll(text_);
    }

    bool Close(String& /*error*/) override { return true; }

private:
    bool WriteAll(StringView text) {
        if (terminal_) return platform::WriteOutputText(text);
        std::span<const std::byte> bytes;
        return encoder_.Encode(text, encoding_, bytes) && platform::WriteStandardOutput(bytes);
    }

    const Encoding encoding_;
    const bool as_pattern_;
    const bool terminal_;
    PlainTextEncoder encoder_;
    String text_;  // reused
};

}  // namespace

std::unique_ptr<OutputSink> OpenFileSink(String& error, const String& name, Encoding encoding,
                                         bool marked, bool append, LossTold told) {
    auto sink = std::make_unique<FileSink>(told);
    if (!sink->Open(error, name, encoding, marked, append)) return nullptr;
    return sink;
}

std::unique_ptr<OutputSink> OpenConsoleSink(Encoding encoding, bool as_pattern) {
    return std::make_unique<ConsoleSink>(encoding, as_pattern);
}

}  // namespace DataConsumers
