#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "files/record_reader.h"
#include "files/recorded_input.h"
#include "files/reject_file.h"
#include "providers/data_provider.h"

namespace DataProviders {

// Reads a text file, or standard input, as one result set: a row a record.
class TextFile final : public DataProvider {
public:
    static KeyList Keys();

    // "'Name' parameter not specified."
    // "File '%s' does not exist or inaccessible."
    // "'%s' is no word of DataTypes. It takes integer, short, number, float or text."
    // Keys that contradict each other, see ReadLayout; the file layer's messages. Without a first
    // record, where one is needed for the columns, fails when `Header` is set, with
    // "File '%s' is empty." or without a text as the edition says; otherwise there are no columns.
    // A line of names that cannot be read fails with its line and RecordReader::Fault.
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
    // Which fields are NULL: see docs/text-source.md. Fails with
    // "Could not read the file to its end." when the system cannot read on; so does Open. A bad row
    // that stops the step fails with RecordReader::Fault, "%u fields where %u columns are.", or
    // what RejectFile says.
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;
    bool Close() override;
    bool CanReopen() const override;
    bool KeepForReopening(String& error) override;
    String InputFile() const override { return input_file_; }
    std::uint64_t Skipped() const override { return skipped_; }
    std::uint64_t Rejected() const override { return reject_file_.Count(); }
    std::uint64_t ReplacedCharacters() const override;
    std::uint64_t ReadBytes() const override { return reader_ ? reader_->ReadBytes() : 0; }
    std::uint64_t Line() const override { return reader_ ? reader_->Line() : 0; }
    std::optional<double> ReadShare() const override;

private:
    // What becomes of a record that does not fit the columns.
    enum class BadRow { Skip, Stop, Reject, Deliver };
    enum class Fate { Delivered, Dropped, Fatal };

    bool FindInput(String& error, const SectionSettings& settings);
    bool ReadTypes(String& error, const SectionSettings& settings);
    bool ReadLayout(String& error, const SectionSettings& settings);
    bool ReadBadRows(String& error, const SectionSettings& settings);
    bool OpenReader(String& error);
    std::unique_ptr<platform::InputFile> OpenStream();
    bool ReadNames(String& error, const SectionSettings& settings);
    bool ReadFirstRecord(String& error);
    void DescribeColumns(RowSet& rows) const;

    bool NextRecord(String& error);
    bool IsBlank() const;
    bool TakeBlank(RowSet& rows);
    Fate FateOf(String& error, std::size_t columns);
    Fate FateOfBad(String& error, BadRow handling, StringView reason);
    Fate Fail(String& error, StringView reason);
    void Deliver(RowSet& rows) const;
    bool IsNull(const RecordField& field, const RowSet& rows, std::size_t position) const;

    String name_;
    String input_file_;  // empty for standard input
    bool header_ = true;
    RecordLayout layout_;
    RecordEncoding encoding_;
    std::vector<String> type_words_;
    std::optional<String> null_text_;  // without quotes it stands for NULL
    char16_t quote_ = 0;
    std::unique_ptr<RecordReader> reader_;
    bool may_spool_ = false;                      // whether it may have to be read twice
    RecordedInput* recorded_ = nullptr;           // what reader_ reads, where that can be spooled
    std::shared_ptr<platform::SpoolFile> spool_;  // what is read from now on

    bool row_follows_columns_ = false;  // otherwise it has as many values as the first record
    BadRow short_rows_ = BadRow::Skip;
    BadRow long_rows_ = BadRow::Deliver;
    BadRow faulty_rows_ = BadRow::Stop;
    bool names_lines_ = false;  // failures say their line themselves
    RejectFile reject_file_;
    std::uint64_t skipped_ = 0;
    std::uint64_t replaced_ = 0;  // of a file that has been closed

    bool record_pending_ = false;       // the current record is still to be delivered
    std::uint64_t blanks_pending_ = 0;  // so are so many records without a character before it
};

}  // namespace DataProviders
