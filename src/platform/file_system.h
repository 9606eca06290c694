// Files as the program needs them: whole reads, appends that never leave half a record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/error_record.h"
#include "base/strings.h"

namespace platform {

// A name that holds a zero character is nobody's: the systems' calls would take the part before it
// for the name. Nothing is found under it, and opening it fails.

// True when something (a file, a folder, a device) is found under `name`. Says nothing about the
// right to read it.
bool PathExists(const String& name);

// The name from the root on, without "." and "..", separators at its end and, on Windows, letter
// case. Two names of which it is the same are one place; links are not looked at, and nothing need
// be there. A name that the system does not take stays as it is.
String RootedName(const String& name);

// Tells one file or folder from all others that exist at the time.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    bool operator==(const FileIdentity&) const = default;
};

// The identity of what is found under `name`: the same for every spelling of the name and for every
// link. Nothing when nothing is found or the system does not say.
std::optional<FileIdentity> IdentityOf(const String& name);

// A file, or standard input, open for reading bytes. Destruction closes it.
class InputFile {
public:
    virtual ~InputFile() = default;

    // On failure (a folder counts as one) returns null and `error` holds the system's text and
    // code.
    static std::unique_ptr<InputFile> Open(ErrorRecord& error, const String& name);
    static std::unique_ptr<InputFile> StandardInput();

    // Reads what is there, at most bytes.size(), and waits only when nothing is. Returns the
    // number of bytes, 0 at the end of the file or after a failure; Failed() tells which.
    std::size_t Read(std::span<std::byte> bytes);
    // Reads until `bytes` is full or the file ends.
    std::size_t ReadFully(std::span<std::byte> bytes);
    // Hands `bytes` out again before the rest of the file, for files that cannot seek.
    void PutBack(std::span<const std::byte> bytes);
    // True once a read has failed.
    bool Failed() const { return failed_; }

    // The file's length in bytes; nothing for what has no length, such as a pipe.
    virtual std::optional<std::uint64_t> Size() = 0;
    // True for a file that gives the same bytes when it is opened once more.
    bool CanReopen() { return Size().has_value(); }

protected:
    // Reads at most bytes.size() bytes. Returns the count, 0 at the end, -1 on failure.
    virtual std::int64_t ReadSome(std::span<std::byte> bytes) = 0;

private:
    std::vector<std::byte> put_back_;
    bool failed_ = false;
};

// While one lives, it hears of input that does not come: its function is called when a read from
// what is no regular file has waited for a second, once a read. Process-wide and not locked, as the
// program has one thread.
class PauseListener {
public:
    explicit PauseListener(std::function<void()> function);
    ~PauseListener();
    PauseListener(const PauseListener&) = delete;
    PauseListener& operator=(const PauseListener&) = delete;

    static constexpr int kPauseMs = 1000;
    static bool IsThere();
    // Calls the function of the innermost one.
    static void Tell();

private:
    std::function<void()> outer_;
};

// A file open for writing. Destruction closes it, with an outcome that nobody sees: see Close.
class OutputFile {
public:
    enum class Mode {
        CreateNew,     // fails when the file exists
        OpenExisting,  // keeps the content; the position is at the start
        Truncate,      // an existing file, emptied
    };
    virtual ~OutputFile() = default;

    // On failure returns null and `error` holds the system's text and code. While the file is
    // open others may read it; another OutputFile on it, of this process or not, cannot be opened.
    // A pipe, a FIFO or a device is opened for writing alone, is neither emptied nor locked, and a
    // FIFO is waited for until somebody reads it.
    static std::unique_ptr<OutputFile> Open(ErrorRecord& error, const String& name, Mode mode);

    // Standard output, whatever it leads to: it is never emptied, locked, cut back or closed.
    static std::unique_ptr<OutputFile> StandardOutput();

    // False for a pipe, a FIFO or a device: nothing can be read back from it.
    virtual bool IsRegular() const = 0;
    // True for what shows each write to a person.
    virtual bool IsTerminal() const { return false; }
    // Writes all of `bytes` at the current position. When fewer reach the file (disk full), it is
    // cut back to where it was, so that it ends with the last whole record; `error` then holds the
    // system's text and code.
    virtual bool Write(ErrorRecord& error, std::span<const std::byte> bytes) = 0;
    // Reads into `bytes` from a position of the file, in bytes; `count` is how many were there.
    // Where is written next is not known then.
    virtual bool ReadAt(ErrorRecord& error, std::uint64_t position, std::span<std::byte> bytes,
                        std::size_t& count) = 0;
    // Hands on what a file has gathered that does not write at once; fails as Write does.
    virtual bool Flush(ErrorRecord& /*error*/) { return true; }
    // Moves to the end; `position` is where that is, 0 for what has no length. False when the
    // system refuses, and writing would begin who knows where.
    virtual bool SeekEnd(ErrorRecord& error, std::uint64_t& position) = 0;
    // Closes the file: the last chance to learn that data did not arrive, on file servers and where
    // space is limited by user. Afterwards the file can only be destroyed.
    virtual bool Close(ErrorRecord& error) = 0;
};

}  // namespace platform
