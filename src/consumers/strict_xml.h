#pragma once

#include "consumers/charset.h"
#include "consumers/strict_form.h"
#include "consumers/strict_markup.h"
#include "consumers/xml_settings.h"

namespace DataConsumers {

// The rows as a well-formed document of XML 1.0, whatever they hold. With `FieldIsTag`:
//
//     <?xml version="1.0" encoding="UTF-8"?>
//     <data>
//     <rec>
//      <id>7</id>
//      <note nil="true"/>
//     </rec>
//     </data>
//
// and without it " <item name="id">7</item>". A document has one root, so the rows of all result
// sets stand in one such element.
class StrictXml final : public StrictForm {
public:
    StrictXml(const XmlNames& names, Unmappable unmappable, const Charset& charset);

    std::uint64_t Replaced() const override { return markup_.Replaced(); }

private:
    // What stands around the values of a column.
    struct Tags {
        String opening;  // less its ">"
        String closing;
    };

    void AppendFileStart(String& out) override;
    bool AppendHead(String& error, String& out) override;
    bool AppendValues(String& error, const DataRow& row, String& out) override;
    void AppendFileEnd(String& out) override;

    const XmlNames names_;
    const Charset charset_;
    const String row_start_;
    const String row_end_;
    StrictMarkup markup_;
    std::vector<Tags> tags_;  // of the columns
};

}  // namespace DataConsumers
