#include "providers/oledb_providers.h"

#include "files/format.h"
#include "platform/oledb.h"

namespace DataProviders {

KeyList OledbProviders::Keys() { return {}; }

bool OledbProviders::Open(String& error, const SectionSettings& /*settings*/, RowSet& rows) {
    Clear();
    std::vector<platform::OledbProvider> providers;
    const std::uint32_t result = platform::ListOledbProviders(providers);
    if (result != 0) {
        error = Format(u"CEnumerator open error [0x%08X]\n", result);
        return false;
    }
    for (platform::OledbProvider& provider : providers) {
        Add({std::move(provider.name), std::move(provider.description)});
    }
    rows.Columns = {TextColumn(u"Name", 256), TextColumn(u"Description", 256)};
    return true;
}

}  // namespace DataProviders
