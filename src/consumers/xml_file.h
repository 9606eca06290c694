#pragma once

#include <vector>

#include "consumers/file_target.h"

namespace DataConsumers {

// Writes the rows as XML 1.0 in UTF-8, with element names from the job. With `FieldIsTag`:
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
class XMLFile final : public FileTarget {
public:
    XMLFile()
        : FileTarget(
              {.overwrite = kOverwrite, .encoding = kLaterEncoding, .ends_each_file = false}) {}
    static KeyList Keys();

    // Begins the element around all rows.
    bool Prepare(String& error, RowSet& rows) override;
    bool Write(String& error, RowSet& rows) override;

private:
    bool ReadSettings(String& error, const SectionSettings& settings) override;
    // Writes the declaration, also into the middle of a file that is appended to.
    bool BeginFile(String& error) override;
    bool EndFile(String& error) override;

    // What stands around the values of an included column.
    struct Tags {
        std::size_t position;
        String opening;
        String closing;
    };

    void MakeTags(const std::vector<ColumnDefinition>& columns);

    bool field_is_tag_ = false;
    String set_;
    String row_start_;
    String row_end_;
    String item_;
    String name_attribute_;

    std::vector<Tags> tags_;  // put together once for all rows of a result set
};

}  // namespace DataConsumers
