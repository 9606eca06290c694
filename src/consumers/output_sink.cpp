#include "consumers/output_sink.h"

#include <span>

#include "files/byte_order_mark.h"
#include "files/dfile.h"
#include "files/text.h"
#include "platform/console.h"

namespace DataConsumers {
namespace {

class FileSink final : public OutputSink {
public:
    explicit FileSink(LossTold told) : told_(told) {}

    bool Open(String& error, const String& name, const TextForm& form, bool append) {
        ErrorRecord reason;
        const bool opened = file_.Open(reason, name, form, append);
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

    bool Close(String& error) override {
        if (told_ == LossTold::ByNotice) return file_.Close();
        ErrorRecord reason;
        if (file_.Finish(reason)) return true;
        error = reason.text;
        return false;
    }

    bool BeganEmpty() const override { return file_.Writer().BeganEmpty(); }
    std::uint64_t Replaced() const override { return file_.Writer().Replaced(); }

private:
    const LossTold told_;
    dFile file_;
};

class ConsoleSink final : public OutputSink {
public:
    explicit ConsoleSink(bool as_pattern)
        : as_pattern_(as_pattern), terminal_(platform::StandardOutputIsTerminal()) {}

    bool Open(String& error, const TextForm& form) {
        ErrorRecord reason;
        encoder_ = MakeTextEncoder(reason, form.encoding, form.unmappable);
        error = reason.text;
        if (!encoder_) return false;
        const bool marked = form.marked && !terminal_;
        return !marked || platform::WriteStandardOutput(ByteOrderMarkOf(form.encoding.form));
    }

    bool Write(String& error, StringView text, std::size_t& /*bytes*/) override {
        if (!as_pattern_) return WriteAll(error, text);
        // Directives that want an argument find none and stay as they are.
        text_ = text;
        text::ReplaceAll(text_, u"%%", u"%");
        return WriteAll(error, text_);
    }

    bool Close(String& /*error*/) override { return true; }
    std::uint64_t Replaced() const override { return encoder_->Replaced(); }

private:
    bool WriteAll(String& error, StringView text) {
        if (terminal_) return platform::WriteOutputText(text);
        std::span<const std::byte> bytes;
        ErrorRecord reason;
        if (encoder_->Encode(reason, text, bytes)) return platform::WriteStandardOutput(bytes);
        error = reason.text;
        return false;
    }

    const bool as_pattern_;
    const bool terminal_;
    std::unique_ptr<TextEncoder> encoder_;
    String text_;  // reused
};

}  // namespace

std::unique_ptr<OutputSink> OpenFileSink(String& error, const String& name, const TextForm& form,
                                         bool append, LossTold told) {
    auto sink = std::make_unique<FileSink>(told);
    if (!sink->Open(error, name, form, append)) return nullptr;
    return sink;
}

std::unique_ptr<OutputSink> OpenConsoleSink(String& error, const TextForm& form, bool as_pattern) {
    auto sink = std::make_unique<ConsoleSink>(as_pattern);
    if (!sink->Open(error, form)) return nullptr;
    return sink;
}

}  // namespace DataConsumers
