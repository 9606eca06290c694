#include "storages/connection_settings.h"

namespace DataStorages {
namespace {

constexpr KeyTable kKeys({
    {.name = u"DSN",
     .meaning = u"the data source name, or a connect string",
     .macros = Macros::Replaced,
     .names = Names::DataSource,
     .needed = u"data source"},
    {.name = u"ConnectString",
     .meaning = u"the connect string, where there is no DSN",
     .macros = Macros::Replaced,
     .names = Names::DataSource,
     .needed = u"data source"},
    {.name = u"Login", .meaning = u"the user, for a data source name", .macros = Macros::ByEdition},
    {.name = u"User", .meaning = u"the same, where there is no Login", .macros = Macros::ByEdition},
    {.name = u"Password",
     .meaning = u"the password, for a data source name",
     .macros = Macros::ByEdition,
     .names = Names::Secret},
});
constexpr Key kDsn = kKeys[u"DSN"];
constexpr Key kConnectString = kKeys[u"ConnectString"];
constexpr Key kLogin = kKeys[u"Login"];
constexpr Key kUser = kKeys[u"User"];
constexpr Key kPassword = kKeys[u"Password"];

}  // namespace

KeySpan ConnectionSettings::Keys() { return kKeys; }

bool ConnectionSettings::Read(String& error, const SectionSettings& settings,
                              const char16_t* refusal) {
    source = settings.Text(kDsn);
    if (source.empty()) source = settings.Text(kConnectString);
    login = settings.Text(kLogin);
    if (login.empty()) login = settings.Text(kUser);  // where the -Login switch puts it
    password = settings.Text(kPassword);
    if (source.empty()) error = refusal;
    return !source.empty();
}

}  // namespace DataStorages
