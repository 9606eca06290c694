#include "platform/console.h"
#include "platform/file_system.h"
#include "platform/system_error.h"

namespace platform {
namespace {

class StandardOutputFile final : public OutputFile {
public:
    bool IsRegular() const override { return false; }
    bool IsTerminal() const override { return StandardOutputIsTerminal(); }
    bool Write(ErrorRecord& error, std::span<const std::byte> bytes) override {
        if (WriteStandardOutput(bytes)) return true;
        error = SystemError();
        return false;
    }
    bool ReadAt(ErrorRecord& /*error*/, std::uint64_t /*position*/, std::span<std::byte> /*bytes*/,
                std::size_t& count) override {
        count = 0;
        return true;
    }
    bool SeekEnd(ErrorRecord& /*error*/, std::uint64_t& position) override {
        position = 0;
        return true;
    }
    bool Close(ErrorRecord& /*error*/) override { return true; }
};

}  // namespace

std::unique_ptr<OutputFile> OutputFile::StandardOutput() {
    return std::make_unique<StandardOutputFile>();
}

}  // namespace platform
