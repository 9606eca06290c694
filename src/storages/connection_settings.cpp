#include "storages/connection_settings.h"

namespace DataStorages {

bool ConnectionSettings::Read(String& error, const SectionSettings& settings,
                              const char16_t* refusal) {
    source = settings.ResolvedText(u"DSN");
    if (source.empty()) source = settings.ResolvedText(u"ConnectString");
    login = settings.Text(u"Login");
    if (login.empty()) login = settings.Text(u"User");  // where the -Login switch puts it
    password = settings.Text(u"Password");
    if (source.empty()) error = refusal;
    return !source.empty();
}

}  // namespace DataStorages
