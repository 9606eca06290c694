#pragma once

#include <memory>
#include <utility>

#include "config/encoding_setting.h"
#include "consumers/data_consumer.h"
#include "consumers/made_files.h"
#include "consumers/output_sink.h"

namespace DataConsumers {

// What the base of file targets must know of a format.
struct FileFormat {
    Key overwrite;
    Key encoding;
    bool needs_name = true;      // otherwise the system says what is wrong with an empty one
    bool ends_each_file = true;  // otherwise the file before a further one stays without its end
    bool takes_console = false;  // whether "STDOUT" and "CONSOLE", letter for letter, are no files
};

// What the targets share that write a file: its name with the macros in it, one file for each
// result set, overwriting or appending, the encoding, standard output, and the count of the bytes
// written, and what is left behind by a step that fails. A format says what stands at the start and
// the end of a file and how a row looks.
//
// All operations fail with "File name is not provided.", with the file layer's messages, or with
// those of the format. Once a write has failed nothing more is written, so a step cannot go on
// behind a gap: whatever the target is asked for next fails as well.
// "The target '%s' is the file that the source reads." where writing would destroy rows that are
// still to be read.
class FileTarget : public DataConsumer {
public:
    explicit FileTarget(const FileFormat& format) : format_(format) {}

    // The keys that all of them have.
    static KeySpan FileKeys();

    // Whether a section names standard output for its file. Every file target takes it by the same
    // words then, byte for byte, and nothing else may mix into it.
    // settings: of a job that follows ConsoleIsForAll
    // other_name: will take the place of the section's, macros still in it; empty for none
    static bool OwnsStandardOutput(const SectionSettings& settings, String other_name);

    bool Open(String& error, const SectionSettings& settings) override;
    bool NextResultSet(String& error, const SectionSettings& settings) override;
    bool Close(String& error) override;
    bool WriteOut(String& error) override;
    bool Commit(String& error) override { return files_.Commit(error); }
    void KeepClearOf(const String& input_file, std::uint64_t read_bytes) override {
        input_file_ = input_file;
        input_read_bytes_ = read_bytes;
    }
    bool WritesBytes() const override { return true; }
    std::uint64_t ReplacedCharacters() const override;
    std::vector<WrittenFile> Files() const override { return written_files_; }

protected:
    // Reads the format's own settings. No file is open yet.
    virtual bool ReadSettings(String& error, const SectionSettings& settings);
    // How the text of new files is written: by the keys. Asked once, before ReadSettings.
    virtual TextForm TextFormOf(const SectionSettings& settings) const;
    // Whether a file that holds something can go on; otherwise opening it for that fails with "The
    // file '%s' holds something, and a document cannot be appended to."
    virtual bool CanGoOn() const { return true; }
    // What ends a line of a format of lines, so that what is appended begins one; empty for others.
    virtual StringView LineEnd() const { return {}; }
    // A file has been opened; see GoesOn.
    virtual bool BeginFile(String& error);
    // Writes what ends a file.
    virtual bool EndFile(String& error) = 0;
    // A further result set goes into the same file. Its result is that of NextResultSet: true when
    // Prepare is wanted.
    virtual bool ContinueFile(String& error);
    // Writes what stands before the end of a file because the next result set has one of its own.
    virtual bool LeaveFile(String& error);

    bool FileIsOpen() const { return sink_ != nullptr; }
    // True when the open file was there before and goes on.
    bool GoesOn() const { return goes_on_; }
    // What TextFormOf has said.
    const TextForm& FormOfText() const { return form_; }
    // Whether the job says if new files begin with a mark.
    static bool SetsMark(const SectionSettings& settings);
    // True once in each result set: what was put together from the columns must be made anew.
    bool TakeNewColumns() { return std::exchange(columns_are_new_, false); }
    // Writes a piece of text in one call; its bytes count.
    bool WriteText(String& error, StringView text);
    // Writes a piece of text that the statistics leave out.
    bool WriteUncounted(String& error, StringView text);

    String line_;  // the piece being composed; reused, so a row costs no allocation

private:
    void ReadPolicies(const SectionSettings& settings);
    bool EncodingIsKnown(String& error) const;
    bool OpenNamed(String& error, const SectionSettings& settings);
    bool RefuseInput(String& error, const String& name) const;
    bool IsConsole(StringView name) const;
    void NoteLoss();
    bool CloseSink(String& error);
    bool Put(String& error, StringView text, std::size_t& bytes);

    const FileFormat format_;
    MadeFiles files_;
    std::vector<WrittenFile> written_files_;
    std::unique_ptr<OutputSink> sink_;
    String input_file_;                   // what the step reads; empty for nothing
    std::uint64_t input_read_bytes_ = 0;  // from its start
    TextForm form_;
    bool marks_console_ = false;  // standard output begins with a byte-order mark
    std::uint64_t replaced_ = 0;  // characters of files that are closed
    bool append_ = false;         // to what the file holds already
    bool goes_on_ = false;
    bool one_file_per_result_set_ = false;
    bool any_console_word_ = false;  // in any letter case, for every format, byte for byte
    SinkPolicy sink_policy_;
    bool columns_are_new_ = true;
    bool write_failed_ = false;  // in this file or in one before it
    String untold_failure_;      // why, where nobody has been told
};

// `Overwrite` and `Encoding`, of formats that have always had them and of those that have not.
inline constexpr KeyTable kOverwriteKeys({
    {.name = u"Overwrite",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"1",
     .meaning = u"start the file empty; otherwise go on at its end"},
});
inline constexpr KeyTable kLaterOverwriteKeys({
    {.name = u"Overwrite",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"start the file empty; otherwise go on at its end",
     .since = Since::Edition2Only},
});
inline constexpr KeyTable kEncodingKeys({
    {.name = u"Encoding",
     .kind = KeyKind::Word,
     .words = kEncodingWords,
     .edition1 = u"ANSI",
     .edition2 = u"UTF8",
     .meaning = u"the encoding of the file",
     .loose_words = kLooseEncodingWords},
});
inline constexpr KeyTable kNarrowEncodingKeys({
    {.name = u"Encoding",
     .kind = KeyKind::Word,
     .words = kEncodingWords,
     .edition1 = u"ANSI",
     .edition2 = u"UTF8",
     .meaning = u"the encoding of the file",
     .loose_words = kLooseNarrowEncodingWords},
});
inline constexpr KeyTable kLaterEncodingKeys({
    {.name = u"Encoding",
     .kind = KeyKind::Word,
     .words = kEncodingWords,
     .edition1 = u"UTF8",
     .edition2 = u"UTF8",
     .meaning = u"the encoding of the file",
     .since = Since::Edition2Only},
});
inline constexpr Key kOverwrite = kOverwriteKeys[u"Overwrite"];
inline constexpr Key kLaterOverwrite = kLaterOverwriteKeys[u"Overwrite"];
inline constexpr Key kEncoding = kEncodingKeys[u"Encoding"];
inline constexpr Key kNarrowEncoding = kNarrowEncodingKeys[u"Encoding"];
inline constexpr Key kLaterEncoding = kLaterEncodingKeys[u"Encoding"];

}  // namespace DataConsumers
