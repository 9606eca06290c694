#pragma once

#include <utility>

#include "consumers/data_consumer.h"
#include "files/dfile.h"

namespace DataConsumers {

// What the targets share that write a file: its name with the macros in it, one file for each
// result set, overwriting or appending, the encoding, and the count of the bytes written. A format
// says what stands at the start and the end of a file and how a row looks.
//
// All operations fail with "File name is not provided.", with dFile's messages, or with those of
// the format. Once a write has failed nothing more is written, so a step cannot go on behind a gap:
// whatever the target is asked for next fails as well.
class FileTarget : public DataConsumer {
public:
    // The keys that all of them have.
    static KeySpan FileKeys();

    bool Open(String& error, const SectionSettings& settings) override;
    bool NextResultSet(String& error, const SectionSettings& settings) override;
    bool Close(String& error) override;
    void KeepClearOf(const String& input_file) override { input_file_ = input_file; }
    bool WritesBytes() const override { return true; }

protected:
    // Reads the format's own settings, encoding_ and append_ among them. No file is open yet.
    virtual bool ReadSettings(String& error, const SectionSettings& settings);
    // A new file has been opened.
    virtual bool BeginFile(String& error);
    // Writes what ends a file.
    virtual bool EndFile(String& error) = 0;
    // A further result set goes into the same file. Its result is that of NextResultSet: true when
    // Prepare is wanted.
    virtual bool ContinueFile(String& error);
    // Done with a file because the next result set has one of its own.
    virtual bool LeaveFile(String& error);

    // Opens the file by encoding_ and append_ and begins it.
    bool OpenFile(String& error, const String& name);
    bool FileIsOpen() const { return file_is_open_; }
    void CloseFile();
    // True once in each result set: what was put together from the columns must be made anew.
    bool TakeNewColumns() { return std::exchange(columns_are_new_, false); }
    // Writes a piece of text in one call; its bytes count.
    bool WriteText(String& error, StringView text);
    // Writes a piece of text that the statistics leave out.
    bool WriteUncounted(String& error, StringView text);

    Encoding encoding_ = Encoding::Ansi;
    bool append_ = false;  // to what the file holds already
    bool one_file_per_result_set_ = false;
    String line_;  // the piece being composed; reused, so a row costs no allocation

private:
    bool Put(String& error, StringView text, std::size_t& bytes);

    dFile file_;
    String input_file_;  // what the step reads; see IsInputInDanger
    bool columns_are_new_ = true;
    bool file_is_open_ = false;
    bool write_failed_ = false;  // in this file or in one before it
};

}  // namespace DataConsumers
