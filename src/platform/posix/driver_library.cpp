#include "platform/driver_library.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <climits>
#include <filesystem>

#include "base/utf8.h"
#include "platform/odbc.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

// Where the driver manager's own library is; drivers without a path stand there or below it.
fs::path LibraryFolder() {
    Dl_info info{};
    const auto* const address = reinterpret_cast<const void*>(&SQLDriversW);
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return {};
    return fs::path(info.dli_fname).parent_path();
}

// The file behind a driver's entry, links followed; empty when there is none.
fs::path FileOf(const String& library) {
    std::error_code error;
    const fs::path name = ToNativeBytes(library);
    const fs::path folder = LibraryFolder();
    for (const fs::path& candidate : {name, folder / "odbc" / name, folder / name}) {
        fs::path file = fs::canonical(candidate, error);
        if (!error) return file;
    }
    return {};
}

bool IsVersion(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos;
}

// What the search for a loaded library knows.
struct LoadedDriver {
    std::string name;  // how its file name ends
    std::string path;  // empty until it is found
};

LoadedDriver FindLoaded(const std::string& name) {
    LoadedDriver driver{name, {}};
    if (name.empty()) return driver;
    driver.path.reserve(PATH_MAX);  // no exception may pass through the loader
    const auto look_at = [](dl_phdr_info* info, std::size_t, void* data) {
        auto& wanted = *static_cast<LoadedDriver*>(data);
        const bool found = std::string_view(info->dlpi_name).ends_with(wanted.name);
        if (found) wanted.path.assign(std::string_view(info->dlpi_name).substr(0, PATH_MAX));
        return found ? 1 : 0;
    };
    dl_iterate_phdr(look_at, &driver);
    return driver;
}

// True as well for what cannot be loaded so.
bool HasWideCalls(const char* path, int mode) {
    void* const library = dlopen(path, RTLD_LAZY | mode);
    if (library == nullptr) return true;
    const bool wide = dlsym(library, "SQLExecDirectW") != nullptr;
    dlclose(library);
    return wide;
}

}  // namespace

// The driver manager lists all entries of a driver as its attributes.
String DriverLibrary(const String& /*name*/, const String& attributes) {
    constexpr StringView kEntry = u"Driver=";
    for (std::size_t start = 0; start < attributes.size();) {
        const std::size_t end = std::min(attributes.find(u';', start), attributes.size());
        if (attributes.compare(start, kEntry.size(), kEntry) == 0) {
            start += kEntry.size();
            return attributes.substr(start, end - start);
        }
        start = end + 1;
    }
    return {};
}

String DriverLibraryVersion(const String& library) {
    if (library.empty()) return {};
    const std::string name = FileOf(library).filename().string();
    constexpr std::string_view kSuffix = ".so";
    const std::size_t suffix = name.find(kSuffix);
    if (suffix == std::string::npos) return {};
    const std::string behind = name.substr(suffix + kSuffix.size());
    if (behind.starts_with('.') && IsVersion(behind.substr(1))) {
        return FromNativeBytes(behind.substr(1));
    }
    const std::string stem = name.substr(0, suffix);
    const std::size_t dash = stem.rfind('-');
    const bool versioned =
        behind.empty() && dash != std::string::npos && IsVersion(stem.substr(dash + 1));
    return versioned ? FromNativeBytes(stem.substr(dash + 1)) : String{};
}

bool DriverTakesWideText(const String& name) {
    const LoadedDriver driver = FindLoaded(ToNativeBytes(name));
    if (driver.path.empty()) return true;
    return HasWideCalls(driver.path.c_str(), RTLD_NOLOAD);
}

// The driver manager is about to load it in any case. It stays: not every driver survives being
// loaded a second time.
bool LibraryTakesWideText(const String& library) {
    const fs::path file = FileOf(library);
    return file.empty() || HasWideCalls(file.c_str(), RTLD_NODELETE);
}

}  // namespace platform
