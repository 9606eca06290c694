#include "check/key_page.h"

#include <algorithm>

#include "check/key_catalogue.h"
#include "config/switches.h"
#include "files/format.h"
#include "files/text.h"

namespace {

constexpr StringView kHead =
    u"# All keys\n"
    u"\n"
    u"Made by `quillon -help=keys`. Names are compared letter by letter. Any key may also stand "
    u"in\n"
    u"`Globals`, for all sections that have a key of that name. The columns 1 and 2 hold the "
    u"default\n"
    u"in each edition of the job file.\n";

constexpr StringView kTableHead =
    u"| Key | Values | 1 | 2 | Meaning |\n"
    u"|---|---|---|---|---|\n";

// A text as it can stand in a cell.
String Cell(StringView value) {
    String cell(value);
    text::ReplaceAll(cell, u"|", u"\\|");
    text::ReplaceAll(cell, u"<", u"&lt;");
    return cell;
}

String DefaultCell(const KeySpec& key, StringView value) {
    return Cell(ShownDefault(key, value, u"`"));
}

void AppendRow(String& page, const KeySpec& key) {
    page +=
        Format(u"| `%s` | %s | %s | %s | %s |\n", key.name, Cell(ShownValues(key)),
               DefaultCell(key, key.edition1), DefaultCell(key, key.edition2), Cell(key.meaning));
}

void AppendTable(String& page, const KeyList& keys) {
    page += kTableHead;
    for (const KeySpan span : keys) {
        for (const KeySpec& key : span) AppendRow(page, key);
    }
}

bool HaveSameKeys(const KeyOwner& left, const KeyOwner& right) {
    return left.section == right.section &&
           std::equal(left.keys.begin(), left.keys.end(), right.keys.begin(), right.keys.end(),
                      [](KeySpan a, KeySpan b) { return a.data() == b.data(); });
}

}  // namespace

String ShownValues(const KeySpec& key) {
    switch (key.kind) {
        case KeyKind::Flag:
            return u"boolean";
        case KeyKind::Number:
            return u"number";
        case KeyKind::Size:
            return u"size";
        case KeyKind::Numbers:
            return u"numbers";
        case KeyKind::Column:
            return key.words.empty() ? u"column" : u"column or *";
        case KeyKind::Columns:
            return u"columns";
        case KeyKind::Type:
            return u"type";
        case KeyKind::Text:
            return u"text";
        case KeyKind::Word:
            break;
    }
    String words(key.words);
    text::ReplaceAll(words, u" ", u", ");
    return words;
}

String ShownDefault(const KeySpec& key, StringView value, StringView quote) {
    if (!key.defaults.empty()) return String(key.defaults);
    return value.empty() ? String() : Format(u"%s%s%s", quote, value, quote);
}

std::vector<String> ShownDefaults(const KeySpec& key) {
    std::vector<String> lines;
    const auto add = [&](StringView label, StringView value) {
        const String shown = ShownDefault(key, value, {});
        if (!shown.empty()) lines.push_back(Format(u"%s: %s", label, shown));
    };
    if (key.edition1 == key.edition2 || !key.defaults.empty()) {
        add(u"default", key.edition1);
    } else {
        add(u"default of edition 1", key.edition1);
        add(u"default of edition 2", key.edition2);
    }
    return lines;
}

std::vector<KeyGroup> KeyGroups() {
    std::vector<KeyGroup> groups;
    const KeyOwner* before = nullptr;
    for (const KeyOwner& owner : KeyOwners()) {
        if (owner.section == Section::CommandLine) continue;
        if (before && HaveSameKeys(*before, owner)) {
            groups.back().heading += Format(u", %s", owner.word);
        } else {
            groups.push_back({NameOf(owner), owner.keys});
        }
        before = &owner;
    }
    return groups;
}

String KeyPage() {
    String page(kHead);
    for (const KeyGroup& group : KeyGroups()) {
        page += Format(u"\n## %s\n\n", group.heading);
        AppendTable(page, group.keys);
    }
    page += u"\n## Switches of the command line\n\n| Switch | Meaning |\n|---|---|\n";
    for (const KeySpec& key : kSwitches) {
        page += Format(u"| `%s` | %s |\n", key.name, Cell(key.meaning));
    }
    return page;
}
