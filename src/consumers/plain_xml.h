#pragma once

#include <vector>

#include "consumers/document_form.h"
#include "consumers/xml_settings.h"

namespace DataConsumers {

// The rows as XML 1.0 in UTF-8, with element names from the job. With `FieldIsTag`:
//
//     <data>
//     <rec>
//      <id>7</id>
//      <note>null</note>
//     </rec>
//     </data>
//
// and without it " <item name="id">7</item>". Names are written as they are, but for an opening
// tag made of a column's name, so odd names give a document that no reader takes.
class PlainXml final : public DocumentForm {
public:
    explicit PlainXml(const XmlNames& names);

    // Writes the declaration, also into the middle of a file that is appended to.
    void BeginFile(String& out) override;
    // Begins the element around all rows.
    bool BeginTable(String& error, const RowSet& rows, String& out) override;
    bool BeginRows(String& error, const RowSet& rows, String& out) override;
    bool AppendRow(String& error, const RowSet& rows, String& out) override;
    bool EndFile(String& error, String& out) override;

private:
    // What stands around the values of an included column.
    struct Tags {
        std::size_t position;
        String opening;
        String closing;
    };

    void MakeTags(const std::vector<ColumnDefinition>& columns);

    const XmlNames names_;
    const String row_start_;
    const String row_end_;

    std::vector<Tags> tags_;  // put together once for all rows of a result set
};

}  // namespace DataConsumers
