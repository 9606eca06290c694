#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "storages/odbc_value_buffer.h"
#include "storages/storage_database.h"

namespace DataStorages {

// Reads what a connected database tells of its tables, by one statement. An operation that returns
// false has failed in the driver, whose diagnostic is then the statement's; what it has listed
// until then is not to be used.
class ODBCCatalogue {
public:
    // narrow_driver: the driver has no wide calls
    // buffer: is used for the values
    ODBCCatalogue(void* connection, void* statement, bool narrow_driver, ODBCValueBuffer& buffer);

    // Lists the tables or the views of the connected database; where the driver does not name one
    // that it has, all that it tells of.
    bool ListTables(std::vector<TableEntry>& tables, TableKind kind);
    // Lists the columns of the table of exactly this name. An empty schema means any.
    bool ListColumns(const String& schema, const String& table,
                     std::vector<CatalogColumn>& columns);

private:
    enum class Row { Failed, None, Read };

    // The values of the next row at these positions, from 1, as text.
    Row NextRow(std::initializer_list<std::uint16_t> numbers, std::vector<String>& texts);
    bool AskForColumns(const String& schema, const String& table);
    String SearchPattern(const String& name) const;
    String CurrentCatalog() const;
    bool HasCatalog(const String& name);

    void* connection_;
    void* statement_;
    bool narrow_driver_;
    ODBCValueBuffer& buffer_;
};

// Takes the tables of other catalogues than `current` away, whatever the case of its letters; those
// without one stay.
// catalogs: of the tables, in their order
void DropOtherCatalogs(const String& current, const std::vector<String>& catalogs,
                       std::vector<TableEntry>& tables);

}  // namespace DataStorages
