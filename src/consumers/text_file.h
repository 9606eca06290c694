#pragma once

#include "consumers/file_target.h"

namespace DataConsumers {

// Writes each row as one line, delimited or of fixed width, to a file or the console.
//
//     Name<TAB>Price
//     Blue "sky"<TAB>12.50
//
// Quote characters and line breaks inside a value are written as they are.
class TextFile final : public FileTarget {
public:
    TextFile()
        : FileTarget({.overwrite = kOverwrite,
                      .encoding = kEncoding,
                      .needs_name = false,
                      .takes_console = true}) {}
    static KeyList Keys();

    bool Prepare(String& error, RowSet& rows) override;
    // "TextFile: Broken row structure [Values: %d, Structure: %d for '%s']", or the file layer's
    // messages.
    bool Write(String& error, RowSet& rows) override;
    bool MeasuresWidths() const override { return fixed_width_; }

private:
    enum class Quotation { Never, ByValue, Always };
    enum class EndOfLine { Lf, CrLf };

    bool ReadSettings(String& error, const SectionSettings& settings) override;
    bool BeginFile(String& error) override;
    bool ContinueFile(String& error) override;
    bool EndFile(String& error) override;
    void AppendField(StringView value, const ColumnDefinition& column, bool first);
    void ComposeHeader(const RowSet& rows);

    Quotation quotation_ = Quotation::Never;
    String end_of_line_;
    String delimiter_;
    String quote_;
    bool header_ = false;
    bool null_is_empty_ = false;
    bool fixed_width_ = false;

    bool first_file_ = true;
    bool header_pending_ = false;  // the next Prepare brings the header
    bool header_delayed_ = false;  // Prepare came, but the widths are known with the first row only
    String delayed_header_;        // the header as it stands should no row come
};

}  // namespace DataConsumers
