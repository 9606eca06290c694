// Any bytes as a job file: they load or are refused with a message.
#include "config/configuration.h"
#include "memory_file.h"
#include "run/logger_console.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file(data, size);
    Configuration configuration;
    String error;
    if (!configuration.Read(error, file.Name())) {
        if (error.empty()) __builtin_trap();
        return 0;
    }
    for (std::size_t i = 0; i < configuration.StepCount(); ++i) {
        configuration.SetCurrentStep(i);
        String name = configuration.GetValue(Section::Target, u"Name", Quotes::Strip, u"$DATE$");
        configuration.ResolveAllMacros(name);
        configuration.AdditonalCmdLine(error, i);
    }
    return 0;
}
