#pragma once

#include <cstdint>

#include "consumers/strict_form.h"

namespace DataConsumers {

// The rows as tables of an RTF document (Rich Text Format, version 1.9.1) on A4 paper, one for each
// result set, in ASCII alone: characters beyond it are "\uN". Line breaks in texts are "\line",
// NULL is the word in italics.
//
//     {\trowd\trgaph108\clbrdrt\brdrs...\cellx1200...
//     \pard\intbl 7\cell\pard\intbl {\i NULL}\cell\row}
//
// The widths of a table's columns follow its names and first rows, which are kept until there are
// enough to know; the whole is never wider than the page.
class StrictRtf final : public StrictForm {
public:
    StrictRtf() : StrictForm(u"RTFFile", {.goes_on = false}) {}

    std::uint64_t Replaced() const override { return replaced_; }

private:
    void AppendFileStart(String& out) override;
    bool AppendHead(String& error, String& out) override;
    bool AppendValues(String& error, const DataRow& row, String& out) override;
    void AppendTableEnd(String& out) override;
    void AppendFileEnd(String& out) override;

    void AppendText(StringView text, String& out);
    void AppendCells(StringView definition, const DataRow& row, String& out);
    void HoldRow(const DataRow& row);
    void SettleWidths(String& out);

    std::uint64_t replaced_ = 0;
    bool widths_settled_ = false;
    std::vector<std::size_t> widest_;  // the longest line of each column's texts, in units
    std::vector<String> held_;         // rows whose widths are not yet known
    std::size_t held_units_ = 0;
    String row_definition_;
};

}  // namespace DataConsumers
