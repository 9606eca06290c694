#include "platform/environment.h"

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/utf8.h"

namespace platform {
namespace {

void PrepareLocale() {
    std::setlocale(LC_MESSAGES, "");
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0) return;
    // In the environment too: some ODBC drivers set the locale from it once more.
    constexpr const char* kFallback = "C.UTF-8";
    std::setlocale(LC_CTYPE, kFallback);
    ::setenv("LC_ALL", kFallback, 1);
}

// A standard stream that the parent closed would lend its number, and so its role, to the first
// file that is opened. Its place is taken for reading alone: input is then empty, and output fails,
// as rows that go there are lost.
void OpenMissingStreams() {
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor > STDERR_FILENO) ::close(descriptor);
}

}  // namespace

String ProgramDirectory() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return {};
    return FromNativeBytes((program.parent_path() / "").native());
}

String EnvironmentVariable(const String& name) {
    const char* value = std::getenv(ToNativeBytes(name).c_str());
    return value == nullptr ? String{} : FromNativeBytes(value);
}

void PrepareProcess() {
    PrepareLocale();
    OpenMissingStreams();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace platform
