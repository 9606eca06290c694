#include "storages/open_database.h"

#include "storages/odbc_database.h"

namespace DataStorages {

std::unique_ptr<StorageDatabase> OpenDatabase(String& error, const ConnectionSettings& connection) {
    std::unique_ptr<StorageDatabase> database = std::make_unique<ODBCDatabase>();
    if (database->Open(error, connection.source, connection.login, connection.password)) {
        return database;
    }
    return nullptr;
}

std::unique_ptr<StorageDatabase> OpenDatabase(String& error, const SectionSettings& settings,
                                              const char16_t* refusal) {
    ConnectionSettings connection;
    if (!connection.Read(error, settings, refusal)) return nullptr;
    return OpenDatabase(error, connection);
}

}  // namespace DataStorages
