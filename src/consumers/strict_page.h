#pragma once

#include "consumers/charset.h"
#include "consumers/page_settings.h"
#include "consumers/strict_form.h"
#include "consumers/strict_markup.h"

namespace DataConsumers {

// The rows as tables of a whole page of HTML5, one for each result set. Every element can have a
// class; a cell holds its value and nothing else:
//
//     <table class="table">
//     <thead>
//     <tr><th scope="col">Price</th><th scope="col">Note</th></tr>
//     </thead>
//     <tbody>
//     <tr><td>12.5</td><td class="null"></td></tr>
//     </tbody>
//     </table>
class StrictPage final : public StrictForm {
public:
    StrictPage(PageFrame frame, const PageClasses& classes, Unmappable unmappable,
               const Charset& charset);

    std::uint64_t Replaced() const override { return markup_.Replaced(); }

private:
    void AppendFileStart(String& out) override;
    bool AppendHead(String& error, String& out) override;
    bool AppendValues(String& error, const DataRow& row, String& out) override;
    void AppendTableEnd(String& out) override;
    void AppendFileEnd(String& out) override;

    String OpeningTag(StringView element, const String& css_class);
    void AppendTitle(String& out);

    const PageFrame frame_;
    const Charset charset_;
    StrictMarkup markup_;
    const String table_tag_;  // the opening tags
    const String header_tag_;
    const String row_tag_;
    const String cell_tag_;
    const String null_cell_;
};

}  // namespace DataConsumers
