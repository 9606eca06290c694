#include "platform/environment.h"

#include <windows.h>

#include "platform/windows/wide.h"

namespace platform {

String ProgramDirectory() {
    constexpr DWORD kLongestPath = 32768;
    String path(kLongestPath, u'\0');
    path.resize(::GetModuleFileNameW(nullptr, AsWide(path.data()), kLongestPath));
    path.resize(path.rfind(u'\\') + 1);  // without a back-slash nothing is left
    return path;
}

String EnvironmentVariable(const String& name) {
    // The size asked for includes the terminating zero, the size returned does not.
    const DWORD room = ::GetEnvironmentVariableW(AsWide(name), nullptr, 0);
    String value(room, u'\0');
    value.resize(::GetEnvironmentVariableW(AsWide(name), AsWide(value.data()), room));
    return value;
}

void PrepareProcess() {}

}  // namespace platform
