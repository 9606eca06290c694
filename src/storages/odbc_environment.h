#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "storages/odbc_handle.h"
#include "storages/storage_database.h"

namespace DataStorages {

// An ODBC driver of the machine.
struct DriverEntry {
    String Name;
    String Attributes;  // "name=value", joined with ";"
};

// The driver manager: what it knows of the machine, and what connections are made in.
class ODBCEnvironment {
public:
    ODBCEnvironment();

    // Null when ODBC does not work here.
    void* Get() const { return handle_.Get(); }

    // Lists data source names with their driver (Detail) and whether they belong to the machine
    // (Flag 1) or to the user (Flag 0), in this order.
    // "ODBC subsystem is not initialized properly"
    bool DataSources(String& error, bool of_system, bool of_user,
                     std::vector<TableEntry>& sources) const;
    // Lists the installed drivers. The same message.
    bool Drivers(String& error, std::vector<DriverEntry>& drivers) const;

    // True when a connection has to be made with narrow calls, in UTF-8, because the wide ones
    // would not deliver all characters: where a text is beyond ASCII and the driver that `source`
    // names has no wide calls, or where the driver manager keeps the data source's name as bytes of
    // UTF-8. False for what it does not know. Windows needs neither.
    bool MustConnectNarrow(const String& source, const String& login, const String& password) const;

private:
    bool Exists(String& error) const;
    void ListDataSources(std::uint16_t first, std::uint8_t flag,
                         std::vector<TableEntry>& sources) const;
    std::optional<TableEntry> FindDataSource(const String& name) const;
    bool IsNarrowDriver(const String& name) const;

    ODBCHandle handle_;
};

// True for a connect string, which names its driver; false for a data source name.
bool IsConnectString(const String& source);

}  // namespace DataStorages
