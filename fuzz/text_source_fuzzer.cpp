// Any bytes as a text file. The last two bytes choose the layout and what becomes of bad rows.
#include <fuzzer/FuzzedDataProvider.h>

#include "config/section_settings.h"
#include "core/row_set.h"
#include "memory_file.h"
#include "providers/text_file.h"

namespace {

constexpr const char16_t* kDelimiters[] = {u"tab", u";", u",", u"\"", u"a"};
constexpr const char16_t* kEncodings[] = {u"Bytes",   u"Auto",   u"UTF8",  u"UTF16LE",
                                          u"UTF16BE", u"CP1252", u"CP932", u"CP65001"};
constexpr const char16_t* kBadRows[] = {u"", u"Skip", u"Stop", u"Reject"};

// Chooses the settings. A key that is left out has the default of its edition.
void Choose(FuzzedDataProvider& chance, ParameterSet& settings) {
    const auto set = [&](const char16_t* key, const char16_t* value) {
        if (chance.ConsumeBool()) settings.Set(key, value);
    };
    set(u"Dialect", chance.ConsumeBool() ? u"CSV" : u"Plain");
    set(u"Delimiter", chance.PickValueInArray(kDelimiters));
    set(u"InputEncoding", chance.PickValueInArray(kEncodings));
    set(u"OnBadRow", chance.PickValueInArray(kBadRows));
    set(u"RejectFile", u"/dev/null");
    set(u"MaxRejects", u"2");
    set(u"Header", chance.ConsumeBool() ? u"1" : u"0");
    set(u"SkipIncompleteLines", u"0");
    set(u"Quote", chance.ConsumeBool() ? u"\"" : u"");
    set(u"DataTypes", u"integer,,float");
    set(u"CommentChar", u"#");
    set(u"NullText", u"\\N");
    set(u"Widths", u"2,1,3");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider chance(data, size);
    const String edition = chance.ConsumeBool() ? u"2" : u"1";
    Configuration configuration;
    String error;
    configuration.ParseCommandLine({u"-Edition=" + edition, u"-Type=DatabaseQueryToTextFile"});
    configuration.Settle(error, u"");
    configuration.AdditonalCmdLine(error, 0);  // makes a step to hold the settings
    ParameterSet& settings = configuration.Step(0).List(Section::Source);
    Choose(chance, settings);
    const std::string content = chance.ConsumeRemainingBytesAsString();
    const MemoryFile file(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    settings.Set(u"Name", file.Name());

    error.clear();
    DataProviders::TextFile source;
    RowSet rows;
    if (!source.Open(error, {configuration, Section::Source}, rows)) return 0;
    while (source.Fetch(error, rows, false)) {
    }
    source.Close();
    return 0;
}
