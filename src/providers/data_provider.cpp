#include "providers/data_provider.h"

#include "files/format.h"
#include "files/text.h"
#include "providers/database_query.h"
#include "providers/text_file.h"

namespace DataProviders {
namespace {

template <class Provider>
std::unique_ptr<DataProvider> Make() {
    return std::make_unique<Provider>();
}

struct Type {
    StringView word;
    std::unique_ptr<DataProvider> (*make)();
};

constexpr Type kTypes[] = {
    {u"DatabaseQuery", Make<DatabaseQuery>},
    {u"DatabaseTable", Make<DatabaseQuery>},
    {u"TextFile", Make<TextFile>},
};

}  // namespace

bool DataProvider::Create(String& error, const SectionSettings& settings,
                          std::unique_ptr<DataProvider>& provider, Quillon::Logger&) {
    const String word = settings.Text(u"Type");
    for (const Type& type : kTypes) {
        if (!text::EqualsIgnoringCase(word, type.word)) continue;
        provider = type.make();
        return true;
    }
    error = Format(u"Incorrect type for source '%s'.", word);
    return false;
}

bool DataProvider::HasMoreData(String&, RowSet&) { return false; }

}  // namespace DataProviders
