#include "providers/data_provider.h"

#include "core/type_table.h"
#include "files/format.h"
#include "providers/database_content.h"
#include "providers/database_metadata.h"
#include "providers/database_query.h"
#include "providers/odbc_data_sources.h"
#include "providers/odbc_drivers.h"
#include "providers/oledb_providers.h"
#include "providers/text_file.h"

namespace DataProviders {
namespace {

constexpr TypeWord<DataProvider> kTypes[] = {
    {u"DatabaseQuery", MakeOf<DataProvider, DatabaseQuery>},
    {u"DatabaseTable", MakeOf<DataProvider, DatabaseQuery>},
    {u"ODBCDataSourcesList", MakeOf<DataProvider, ODBCDataSources>},
    {u"ODBCDriverList", MakeOf<DataProvider, ODBCDrivers>},
    {u"TextFile", MakeOf<DataProvider, TextFile>},
    {u"DatabaseSchema", MakeOf<DataProvider, DatabaseMetadata>},
    {u"Database", MakeOf<DataProvider, DatabaseContent>},
    {u"DatabaseContent", MakeOf<DataProvider, DatabaseContent>},
    {u"OledbProvidersList", MakeOf<DataProvider, OledbProviders>},
};

}  // namespace

bool DataProvider::Create(String& error, const SectionSettings& settings,
                          std::unique_ptr<DataProvider>& provider, Quillon::Logger&) {
    const String word = settings.Text(u"Type");
    std::unique_ptr<DataProvider> made = MakeByWord(kTypes, word);
    if (made) {
        provider = std::move(made);
        return true;
    }
    error = Format(u"Incorrect type for source '%s'.", word);
    return false;
}

bool DataProvider::HasMoreData(String&, RowSet&) { return false; }

}  // namespace DataProviders
