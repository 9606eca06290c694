#include "check/help_text.h"

#include <algorithm>

#include "check/completion.h"
#include "check/key_catalogue.h"
#include "check/key_page.h"
#include "check/man_page.h"
#include "check/nearest_name.h"
#include "config/switches.h"
#include "files/format.h"
#include "files/text.h"

namespace {

constexpr StringView kUsage =
    u"quillon [SWITCH ...] [$NAME$=VALUE ...]\n"
    u"\n"
    u"Runs the steps of a job file: each moves rows from a source to a target, or works on files.\n"
    u"$NAME$=VALUE defines a macro of the job.\n";

constexpr StringView kHelpWords =
    u"\n"
    u"-help=WORD shows the keys of a source, a target, a transformer, a command or a section:\n"
    u"\n";

constexpr std::size_t kNameWidth = 10;

constexpr Section kSections[] = {Section::Globals, Section::Settings,  Section::Source,
                                 Section::Target,  Section::Transform, Section::System};

void AppendKey(String& help, const KeySpec& key) {
    help += Format(u"  %s  (%s)\n      %s\n", key.name, ShownValues(key), key.meaning);
    for (const String& line : ShownDefaults(key)) help += Format(u"      %s\n", line);
}

void AppendOwner(String& help, const KeyOwner& owner) {
    if (!help.empty()) help += u'\n';
    help += NameOf(owner) + u"\n\n";
    for (const KeySpan span : owner.keys) {
        for (const KeySpec& key : span) AppendKey(help, key);
    }
}

String WordsOf(Section section) {
    String words;
    for (const KeyOwner& owner : KeyOwners()) {
        if (owner.section != section || owner.word.empty()) continue;
        words.append(words.empty() ? u"" : u" ").append(owner.word);
    }
    return words;
}

String Usage() {
    String usage(kUsage);
    usage += u'\n';
    for (const KeySpec& key : kSwitches) {
        String name(key.name);
        name.resize(std::max(name.size(), kNameWidth), u' ');
        usage += Format(u"  %s %s\n", name, key.meaning);
    }
    usage += kHelpWords;
    for (const Section section : kSections) {
        const String words = WordsOf(section);
        usage += Format(u"  %s%s%s\n", NameOf(section), words.empty() ? u"" : u": ", words);
    }
    return usage += u"\n-help=keys shows all keys as a Markdown page.\n";
}

}  // namespace

String HelpOn(StringView word) {
    if (word.empty() || word == u"1") return Usage();
    if (text::EqualsIgnoringCase(word, u"keys")) return KeyPage();
    if (text::EqualsIgnoringCase(word, u"man")) return ManPage();
    if (text::EqualsIgnoringCase(word, u"bash")) return BashCompletion();
    if (text::EqualsIgnoringCase(word, u"powershell")) return PowerShellCompletion();
    String help;
    for (const KeyOwner& owner : KeyOwners()) {
        if (owner.section == Section::CommandLine) continue;
        const bool is_section = text::EqualsIgnoringCase(word, NameOf(owner.section));
        if (is_section || text::EqualsIgnoringCase(word, owner.word)) AppendOwner(help, owner);
    }
    return help;
}

StringView NearestHelpWord(StringView word) {
    std::vector<StringView> words = {u"keys"};
    for (const KeyOwner& owner : KeyOwners()) {
        if (owner.section == Section::CommandLine) continue;
        if (!owner.word.empty()) words.push_back(owner.word);
        words.push_back(NameOf(owner.section));
    }
    return NearestName(word, words);
}
