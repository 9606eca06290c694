#include "consumers/output_sink.h"

#include <span>
#include <utility>

#include "base/notices.h"
#include "files/buffered_output.h"
#include "files/byte_order_mark.h"
#include "files/dfile.h"
#include "files/format.h"
#include "files/text.h"
#include "platform/console.h"

namespace DataConsumers {
namespace {

using platform::OutputFile;

// The file with room before it, which `buffer` is then. Null: there is none.
std::unique_ptr<OutputFile> Buffered(std::unique_ptr<OutputFile> file, std::size_t room,
                                     const BufferedOutput*& buffer) {
    if (room == 0 || file->IsTerminal()) return file;
    auto buffered = std::make_unique<BufferedOutput>(std::move(file), room);
    buffer = buffered.get();
    return buffered;
}

std::uint64_t LostOf(const BufferedOutput* buffer) {
    return buffer != nullptr ? buffer->Lost() : 0;
}

class FileSink final : public OutputSink {
public:
    explicit FileSink(LossTold told) : told_(told) {}

    bool Open(String& error, const String& name, std::unique_ptr<OutputFile> file,
              const TextForm& form, bool goes_on, std::size_t room) {
        ErrorRecord reason;
        const bool opened =
            file_.Begin(reason, name, Buffered(std::move(file), room, buffer_), form, goes_on);
        if (!opened) error = reason.text;
        return opened;
    }

    bool Write(String& error, StringView text, std::size_t& bytes) override {
        ErrorRecord reason;
        const bool written = told_ == LossTold::ByError ? file_.Put(reason, text, &bytes)
                                                        : file_.Write(reason, text, &bytes);
        if (written) return true;
        bytes = 0;
        error = reason.text;
        return false;
    }

    bool Flush(String& error) override {
        ErrorRecord reason;
        if (file_.Flush(reason)) return true;
        if (told_ == LossTold::ByError) {
            error = reason.text;
        } else {
            TellNotice(reason.text + u'\n');
        }
        return false;
    }

    bool BeganEmpty() const override { return file_.Writer().BeganEmpty(); }
    std::uint64_t Replaced() const override { return file_.Writer().Replaced(); }
    // Rows that were gathered and do not arrive now have failed as any write does.
    bool Close(String& error) override {
        const bool flushed = Flush(error);
        lost_ = LostOf(std::exchange(buffer_, nullptr));
        if (told_ == LossTold::ByNotice) return file_.Close() && flushed;
        ErrorRecord reason;
        const bool closed = file_.Finish(reason);
        if (!closed && flushed) error = reason.text;
        return closed && flushed;
    }

    std::uint64_t Lost() const override { return lost_ + LostOf(buffer_); }

private:
    const LossTold told_;
    dFile file_;
    const BufferedOutput* buffer_ = nullptr;  // in file_, while it is open
    std::uint64_t lost_ = 0;                  // by closing
};

class ConsoleSink final : public OutputSink {
public:
    ConsoleSink(bool as_pattern, const SinkPolicy& policy)
        : as_pattern_(as_pattern),
          told_(policy.told),
          terminal_(platform::StandardOutputIsTerminal()) {
        const BufferedOutput* unused = nullptr;
        output_ = Buffered(OutputFile::StandardOutput(), policy.room, unused);
    }

    bool Open(String& error, const TextForm& form) {
        ErrorRecord reason;
        encoder_ = MakeTextEncoder(reason, form.encoding, form.unmappable);
        error = reason.text;
        if (!encoder_) return false;
        const bool marked = form.marked && !terminal_;
        return !marked || output_->Write(reason, ByteOrderMarkOf(form.encoding.form)) ||
               Fail(error, reason);
    }

    bool Write(String& error, StringView text, std::size_t& /*bytes*/) override {
        if (!as_pattern_) return WriteAll(error, text);
        // Directives that want an argument find none and stay as they are.
        text_ = text;
        text::ReplaceAll(text_, u"%%", u"%");
        return WriteAll(error, text_);
    }

    bool Flush(String& error) override {
        ErrorRecord reason;
        return output_->Flush(reason) || Fail(error, reason);
    }

    bool Close(String& error) override { return Flush(error); }

    std::uint64_t Lost() const override { return 0; }
    std::uint64_t Replaced() const override { return encoder_->Replaced(); }

private:
    bool WriteAll(String& error, StringView text) {
        if (terminal_) return platform::WriteOutputText(text);
        ErrorRecord reason;
        std::span<const std::byte> bytes;
        if (encoder_->Encode(reason, text, bytes)) {
            return output_->Write(reason, bytes) || Fail(error, reason);
        }
        error = reason.text;
        return false;
    }

    bool Fail(String& error, const ErrorRecord& reason) const {
        if (told_ == LossTold::ByError) {
            error = Format(u"Could not write to standard output: %s", reason.text);
        }
        return false;
    }

    const bool as_pattern_;
    const LossTold told_;
    const bool terminal_;
    std::unique_ptr<OutputFile> output_;
    std::unique_ptr<TextEncoder> encoder_;
    String text_;  // reused
};

}  // namespace

std::unique_ptr<OutputSink> OpenFileSink(String& error, const String& name,
                                         std::unique_ptr<OutputFile> file, const TextForm& form,
                                         bool goes_on, const SinkPolicy& policy) {
    auto sink = std::make_unique<FileSink>(policy.told);
    if (!sink->Open(error, name, std::move(file), form, goes_on, policy.room)) return nullptr;
    return sink;
}

std::unique_ptr<OutputSink> OpenConsoleSink(String& error, const TextForm& form, bool as_pattern,
                                            const SinkPolicy& policy) {
    auto sink = std::make_unique<ConsoleSink>(as_pattern, policy);
    if (!sink->Open(error, form)) return nullptr;
    return sink;
}

}  // namespace DataConsumers
