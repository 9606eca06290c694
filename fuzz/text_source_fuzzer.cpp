// Any bytes as a delimited text file; the first byte chooses the layout.
#include "config/section_settings.h"
#include "core/row_set.h"
#include "memory_file.h"
#include "providers/text_file.h"

namespace {

constexpr StringView kDelimiters[] = {u"tab", u";", u"\"", u"a"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const unsigned layout = size == 0 ? 0u : data[0];
    const MemoryFile file(data + (size == 0 ? 0 : 1), size == 0 ? 0 : size - 1);

    Configuration configuration;
    String error;
    configuration.ParseCommandLine({u"-Type=DatabaseQueryToTextFile"});
    configuration.AdditonalCmdLine(error, 0);  // makes a step to hold the settings
    ParameterSet& settings = configuration.Step(0).List(Section::Source);
    settings.Set(u"Name", file.Name());
    settings.Set(u"Delimiter", kDelimiters[layout % 4]);
    settings.Set(u"Header", layout & 4 ? u"1" : u"0");
    settings.Set(u"SkipIncompleteLines", layout & 8 ? u"1" : u"0");
    settings.Set(u"Quote", layout & 16 ? u"\"" : u"");
    settings.Set(u"DataTypes", layout & 32 ? u"integer,,float" : u"");
    settings.Set(u"CommentChar", layout & 64 ? u"#" : u"");

    DataProviders::TextFile source;
    RowSet rows;
    if (!source.Open(error, {configuration, Section::Source}, rows)) return 0;
    while (source.Fetch(error, rows, false)) {
    }
    source.Close();
    return 0;
}
