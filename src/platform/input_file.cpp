#include <algorithm>
#include <utility>

#include "platform/file_system.h"

namespace platform {
namespace {

std::function<void()>& PauseFunction() {
    static std::function<void()> function;
    return function;
}

}  // namespace

PauseListener::PauseListener(std::function<void()> function)
    : outer_(std::exchange(PauseFunction(), std::move(function))) {}

PauseListener::~PauseListener() { PauseFunction() = std::move(outer_); }

bool PauseListener::IsThere() { return static_cast<bool>(PauseFunction()); }

void PauseListener::Tell() { PauseFunction()(); }

std::size_t InputFile::Read(std::span<std::byte> bytes) {
    if (!put_back_.empty()) {
        const std::size_t count = std::min(bytes.size(), put_back_.size());
        const auto end = put_back_.begin() + static_cast<std::ptrdiff_t>(count);
        std::copy(put_back_.begin(), end, bytes.begin());
        put_back_.erase(put_back_.begin(), end);
        return count;
    }
    const std::int64_t count = ReadSome(bytes);
    failed_ = failed_ || count < 0;
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::size_t InputFile::ReadFully(std::span<std::byte> bytes) {
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const std::size_t count = Read(bytes.subspan(filled));
        if (count == 0) break;
        filled += count;
    }
    return filled;
}

void InputFile::PutBack(std::span<const std::byte> bytes) {
    put_back_.insert(put_back_.begin(), bytes.begin(), bytes.end());
}

}  // namespace platform
