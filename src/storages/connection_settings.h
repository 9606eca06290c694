#pragma once

#include "base/strings.h"
#include "config/section_settings.h"

namespace DataStorages {

// How a section says to reach a database, as StorageDatabase::Open takes it.
struct ConnectionSettings {
    String source;  // data source name or connect string
    String login;
    String password;

    // Reads `DSN`, or where it is empty `ConnectString`, with their macros replaced; `Login`, or
    // where it is empty "User"; and `Password`. Fails with `refusal` when no source is named.
    bool Read(String& error, const SectionSettings& settings, const char16_t* refusal);

    // The keys above, for the lists of those who read them.
    static KeySpan Keys();
};

}  // namespace DataStorages
