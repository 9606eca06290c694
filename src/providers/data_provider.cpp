#include "providers/data_provider.h"

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

template <class Source>
constexpr TypeWord<DataProvider> Row(StringView word) {
    return RowOf<DataProvider, Source>(word);
}

constexpr TypeWord<DataProvider> kTypes[] = {
    Row<DatabaseQuery>(u"DatabaseQuery"),
    Row<DatabaseQuery>(u"DatabaseTable"),
    Row<ODBCDataSources>(u"ODBCDataSourcesList"),
    Row<ODBCDrivers>(u"ODBCDriverList"),
    Row<TextFile>(u"TextFile"),
    Row<DatabaseMetadata>(u"DatabaseSchema"),
    Row<DatabaseContent>(u"Database"),
    Row<DatabaseContent>(u"DatabaseContent"),
    Row<OledbProviders>(u"OledbProvidersList"),
};

}  // namespace

std::vector<TypeEntry> DataProvider::Types() { return EntriesOf(kTypes); }

bool DataProvider::Create(String& error, const SectionSettings& settings,
                          std::unique_ptr<DataProvider>& provider, Quillon::Logger&) {
    const String word = settings.Text(kType);
    std::unique_ptr<DataProvider> made = MakeByWord(kTypes, word);
    if (made) {
        provider = std::move(made);
        return true;
    }
    error = Format(u"Incorrect type for source '%s'.", word);
    return false;
}

bool DataProvider::HasMoreData(String&, RowSet&) {
    loss_.clear();
    return false;
}

bool DataProvider::KeepForReopening(String& error) {
    error = u"This source can be read only once.";
    return false;
}

bool DataProvider::Describe(String& error, const SectionSettings& settings, RowSet& rows) {
    const bool described = Open(error, settings, rows);
    Close();
    return described;
}

}  // namespace DataProviders
