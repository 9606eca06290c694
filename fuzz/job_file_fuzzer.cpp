// Any bytes as a job file of either edition: they load and are checked, or are refused with a
// message.
#include "check/job_check.h"
#include "check/secret_mask.h"
#include "config/configuration.h"
#include "memory_file.h"

namespace {

void LoadAndCheck(const String& name, const String& edition) {
    Configuration configuration;
    configuration.ParseCommandLine({u"-Edition=" + edition});
    String error;
    if (!configuration.Read(error, name)) {
        if (error.empty()) __builtin_trap();
        return;
    }
    const SecretMask mask(configuration);
    for (const Finding& finding : CheckJob(configuration, CheckDepth::Whole)) {
        mask.Masked(ShownFinding(configuration, finding));
    }
    for (std::size_t i = 0; i < configuration.StepCount(); ++i) {
        configuration.SetCurrentStep(i);
        String name_of_target =
            configuration.GetValue(Section::Target, u"Name", Quotes::Strip, u"$DATE$");
        configuration.ResolveAllMacros(name_of_target);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file(data, size);
    LoadAndCheck(file.Name(), u"1");
    LoadAndCheck(file.Name(), u"2");
    return 0;
}
