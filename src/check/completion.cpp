#include "check/completion.h"

#include <set>

#include "check/key_catalogue.h"
#include "config/switches.h"
#include "core/key_values.h"
#include "files/format.h"

namespace {

// All that may stand on a command line, each with `quote` around it and `separator` between them:
// "-silent", "-check=connect", "-help=TextFile", "-config=" for a file.
String Candidates(StringView quote, StringView separator) {
    String all;
    const auto add = [&](const String& candidate) {
        all.append(all.empty() ? u"" : separator).append(quote).append(candidate).append(quote);
    };
    for (const KeySpec& key : kSwitches) {
        const String name(key.name);
        if (key.kind == KeyKind::Flag) {
            add(name);
            continue;
        }
        if (key.kind == KeyKind::Word) {
            for (const StringView word : key_values::Words(key)) {
                add(word == u"1" ? name : Format(u"%s=%s", name, word));
            }
            continue;
        }
        add(name + u"=");
    }
    std::set<StringView> words = {u"keys"};
    for (const KeyOwner& owner : KeyOwners()) {
        if (!owner.word.empty()) words.insert(owner.word);
    }
    for (const StringView word : words) add(Format(u"%s=%s", kHelpSwitch->name, word));
    return all;
}

// The switches that take the name of a file, as bash matches them: "-Log=* | -Output=*".
String FilePatterns() {
    String patterns;
    for (const KeySpec& key : kSwitches) {
        if (key.names != Names::File && key.names != Names::FileRead) continue;
        patterns += Format(u"%s%s=*", patterns.empty() ? u"" : u" | ", key.name);
    }
    return patterns;
}

}  // namespace

String BashCompletion() {
    return u"# Completion of quillon's command line for bash; source this file.\n"
           u"_quillon() {\n"
           u"    local word=${COMP_LINE:0:COMP_POINT}\n"
           u"    word=${word##* }\n"
           u"    case $word in\n"
           u"        " +
           FilePatterns() +
           u")\n"
           u"            mapfile -t COMPREPLY < <(compgen -f -- \"${word#*=}\")\n"
           u"            return ;;\n"
           u"    esac\n"
           u"    local all=\"" +
           Candidates(u"", u" ") +
           u"\"\n"
           u"    mapfile -t COMPREPLY < <(compgen -W \"$all\" -- \"$word\")\n"
           u"    # The part before a \"=\" stands on the line already.\n"
           u"    [[ $word == *=* ]] && COMPREPLY=(\"${COMPREPLY[@]#*=}\")\n"
           u"    [[ ${COMPREPLY[0]} == *= ]] && compopt -o nospace\n"
           u"}\n"
           u"complete -F _quillon quillon\n";
}

String PowerShellCompletion() {
    return u"# Completion of quillon's command line for PowerShell; dot-source this file.\n"
           u"Register-ArgumentCompleter -Native -CommandName quillon -ScriptBlock {\n"
           u"    param($wordToComplete)\n"
           u"    $all = @(\n        " +
           Candidates(u"'", u",\n        ") +
           u"\n    )\n"
           u"    $all | Where-Object { $_ -like \"$wordToComplete*\" } | ForEach-Object {\n"
           u"        [System.Management.Automation.CompletionResult]::new($_)\n"
           u"    }\n"
           u"}\n";
}
