#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "core/row_set.h"

namespace DataConsumers {

// How the lines of a text file are put together.
struct LineLayout {
    enum class Form {
        Plain,     // delimited, quotes around fields as they are
        Csv,       // RFC 4180
        Measured,  // padded to the columns' MaxWidth
        Widths,    // padded to `widths`, and no longer
    };
    enum class Quotation { Never, ByValue, Always };

    Form form = Form::Plain;
    Quotation quotation = Quotation::Never;  // Never is none of Csv's
    String delimiter;
    String quote;
    String null_text;
    std::vector<std::size_t> widths;  // in characters (code points), of the columns that are shown
    bool whole_characters = true;     // Measured counts code points, otherwise UTF-16 units
};

// Puts the lines of a text file together, without their ends. Removed columns are left out.
class FieldWriter {
public:
    virtual ~FieldWriter() = default;
    static std::unique_ptr<FieldWriter> Make(const LineLayout& layout);

    // Both append to `line`, and fail only for Form::Widths, with
    //   "Widths names %u columns where %u are."
    //   "Column '%s' is %u characters wide; its name has %u."
    //   "Column '%s' is %u characters wide; its value has %u."
    //   "Column '%s' has a line end in its name, which Widths cannot hold."
    //   "Column '%s' has a line end in its value, which Widths cannot hold."
    virtual bool AppendNames(String& error, const RowSet& rows, String& line) const = 0;
    // As many values as columns.
    virtual bool AppendValues(String& error, const RowSet& rows, String& line) const = 0;

    // Raises the columns' MaxWidth to what the current row needs.
    virtual void MeasureValues(RowSet& rows) const = 0;
};

// How wide a text is in columns of fixed width.
// whole_characters: in code points, otherwise in UTF-16 units.
std::size_t WidthOf(StringView text, bool whole_characters);

}  // namespace DataConsumers
