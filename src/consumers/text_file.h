#pragma once

#include <memory>
#include <optional>

#include "consumers/field_writer.h"
#include "consumers/file_target.h"

namespace DataConsumers {

// Writes each row as one line, delimited or of fixed width, to a file or the console. By RFC 4180:
//
//     Name,Price
//     "Blue ""sky""",12.50
//
// In a plain file quotes and line breaks inside a value are written as they are.
class TextFile final : public FileTarget {
public:
    TextFile()
        : FileTarget({.overwrite = kOverwrite,
                      .encoding = kEncoding,
                      .needs_name = false,
                      .takes_console = true}) {}
    static KeyList Keys();

    bool Prepare(String& error, RowSet& rows) override;
    // "TextFile: Broken row structure [Values: %d, Structure: %d for '%s']", or the messages of
    // FieldWriter and the file layer.
    bool Write(String& error, RowSet& rows) override;
    bool MeasuresWidths() const override { return measures_; }
    void MeasureNames(RowSet& rows) const override;
    void MeasureRow(RowSet& rows) const override { fields_->MeasureValues(rows); }

private:
    enum class EndOfLine { Lf, CrLf };

    // Fails where keys contradict each other, see ReadTextSigns and ReadNullText, and with
    // "NullText and NullIsEmptyString say the same: only one of them can be set." and
    // "QuotationMode=Never cannot stand beside Dialect=CSV."
    bool ReadSettings(String& error, const SectionSettings& settings) override;
    static bool ReadLayout(String& error, const SectionSettings& settings, LineLayout& layout);
    static bool ReadNull(String& error, const SectionSettings& settings,
                         const std::optional<String>& null_text, LineLayout& layout);
    static bool ReadQuotation(String& error, const SectionSettings& settings, bool csv,
                              LineLayout& layout);
    StringView LineEnd() const override { return end_of_line_; }
    bool BeginFile(String& error) override;
    bool ContinueFile(String& error) override;
    bool EndFile(String& error) override;
    bool ComposeHeader(String& error, const RowSet& rows);

    std::unique_ptr<FieldWriter> fields_;
    String end_of_line_;
    bool header_ = false;
    bool measures_ = false;

    bool first_file_ = true;
    bool header_pending_ = false;  // the next Prepare brings the header
    bool header_delayed_ = false;  // Prepare came, but the widths are known with the first row only
};

}  // namespace DataConsumers
