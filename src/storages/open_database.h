#pragma once

#include <memory>

#include "storages/connection_settings.h"
#include "storages/storage_database.h"

namespace DataStorages {

// Connects to a database. Who has it closes it before it goes. Null, with the database's message in
// `error`, when that fails.
std::unique_ptr<StorageDatabase> OpenDatabase(String& error, const ConnectionSettings& connection);

// The same by the settings of a section; `refusal` is the message where they name no database.
std::unique_ptr<StorageDatabase> OpenDatabase(String& error, const SectionSettings& settings,
                                              const char16_t* refusal);

}  // namespace DataStorages
