// Any bytes as a job file with its includes: they load and are checked, or are refused with a
// message. Lines of "===" part the job from what "@include a.inc" and "@include b.inc" find.
#include "check/job_check.h"
#include "check/secret_mask.h"
#include "config/configuration.h"
#include "scratch_folder.h"

namespace {

void LoadAndCheck(const String& edition) {
    Configuration configuration;
    configuration.ParseCommandLine({u"-Edition=" + edition});
    String error;
    if (!configuration.Read(error, u"job.qpr")) {
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

// The part of the text up to the next line of "===", which is taken off with it.
std::string_view TakePart(std::string_view& text) {
    constexpr std::string_view kParting = "===\n";
    const std::size_t end = text.find(kParting);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + kParting.size());
    return part;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ScratchFolder::Enter();
    std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const char* const name : {"job.qpr", "a.inc", "b.inc"}) {
        ScratchFolder::Write(name, TakePart(text));
    }
    LoadAndCheck(u"1");
    LoadAndCheck(u"2");
    return 0;
}
