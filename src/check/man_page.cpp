#include "check/man_page.h"

#include "check/key_page.h"
#include "config/switches.h"
#include "files/format.h"
#include "files/text.h"

namespace {

constexpr StringView kHead =
    u".TH QUILLON 1\n"
    u".SH NAME\n"
    u"quillon \\- move rows between databases, text files and documents\n"
    u".SH SYNOPSIS\n"
    u".B quillon\n"
    u"[\\fISWITCH\\fR ...] [\\fB$\\fINAME\\fB$=\\fIVALUE\\fR ...]\n"
    u".SH DESCRIPTION\n"
    u"Runs the steps of a job file: each moves rows from a source to a target, or works on files.\n"
    u"$NAME$=VALUE defines a macro of the job.\n"
    u".SH OPTIONS\n";

constexpr StringView kKeysHead =
    u".SH KEYS OF THE JOB FILE\n"
    u"Names are compared letter by letter.\n"
    u"Any key may also stand in Globals, for all sections that have a key of that name.\n";

constexpr StringView kFoot =
    u".SH EXIT STATUS\n"
    u".TP\n"
    u".B 0\n"
    u"Every step succeeded.\n"
    u".TP\n"
    u".B 2\n"
    u"A step failed, or the job was refused.\n"
    u".TP\n"
    u".B 4\n"
    u"The command line was refused.\n";

// A text as it stands for itself: none of it is a request or an escape.
String Roff(StringView value) {
    String roff(value);
    text::ReplaceAll(roff, u"\\", u"\\e");
    text::ReplaceAll(roff, u"-", u"\\-");
    if (roff.starts_with(u'.') || roff.starts_with(u'\'')) roff.insert(0, u"\\&");
    return roff;
}

void AppendSwitch(String& page, const KeySpec& key) {
    const StringView value = key.kind == KeyKind::Flag   ? u""
                             : key.kind == KeyKind::Word ? u"[=\\fIVALUE\\fR]"
                                                         : u"=\\fIVALUE\\fR";
    page += Format(u".TP\n\\fB%s\\fR%s\n%s\n", Roff(key.name), value, Roff(key.meaning));
}

void AppendKey(String& page, const KeySpec& key) {
    page += Format(u".TP\n\\fB%s\\fR (%s)\n%s\n", Roff(key.name), Roff(ShownValues(key)),
                   Roff(key.meaning));
    for (const String& value : ShownDefaults(key)) page += Format(u".br\n%s\n", Roff(value));
}

}  // namespace

String ManPage() {
    String page(kHead);
    for (const KeySpec& key : kSwitches) AppendSwitch(page, key);
    page += kKeysHead;
    for (const KeyGroup& group : KeyGroups()) {
        page += Format(u".SS %s\n", Roff(group.heading));
        for (const KeySpan span : group.keys) {
            for (const KeySpec& key : span) AppendKey(page, key);
        }
    }
    return page.append(kFoot);
}
