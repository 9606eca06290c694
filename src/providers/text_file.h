#pragma once

#include <vector>

#include "files/dfile.h"
#include "files/line_splitter.h"
#include "providers/data_provider.h"

namespace DataProviders {

// Reads a delimited text file, or standard input, as one result set: a row a line.
class TextFile final : public DataProvider {
public:
    static KeyList Keys();

    // "'Name' parameter not specified."
    // "File '%s' does not exist or inaccessible."
    // The file layer's messages. Without a first line, where one is needed for the columns, fails
    // without a text when `Header` is set; otherwise there are no columns.
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
    // An empty field is NULL, except in a text column. Fails with
    // "Could not read the file to its end." when the system cannot read on; so does Open.
    bool Fetch(String& error, RowSet& rows, bool track_widths) override;
    bool Close() override;
    bool CanReopen() const override { return file_.CanReopen(); }
    String InputFile() const override { return input_file_; }
    std::uint64_t Line() const override { return line_number_; }

private:
    bool OpenInput(String& error, const SectionSettings& settings);
    void ReadLayout(const SectionSettings& settings);
    bool ReadLine(String& error);
    bool ReadDataLine(String& error);
    void Split(OuterQuotes outer) { SplitLine(line_, delimiter_, quote_, outer, fields_); }
    void DescribeColumns(RowSet& rows) const;

    dFile file_;
    String input_file_;  // empty for standard input
    std::uint64_t line_number_ = 0;
    bool has_comments_ = false;
    char16_t comment_ = 0;
    bool skip_incomplete_lines_ = true;
    bool header_ = true;
    char16_t delimiter_ = u'\t';
    String quote_;
    std::vector<String> type_words_;
    String line_;                     // the current line, reused
    std::vector<StringView> fields_;  // of the current line
    bool line_pending_ = false;       // the current line is still to be delivered
};

}  // namespace DataProviders
