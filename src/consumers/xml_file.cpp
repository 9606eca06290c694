#include "consumers/xml_file.h"

#include "consumers/plain_xml.h"
#include "consumers/strict_xml.h"
#include "consumers/xml_names.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

constexpr KeyTable kKeys({
    {.name = u"FieldIsTag",
     .kind = KeyKind::Flag,
     .edition1 = u"0",
     .edition2 = u"0",
     .meaning = u"name the elements of values after their columns"},
    {.name = u"set",
     .meaning = u"the name of the element around all rows",
     .defaults = u"with Form=Strict set"},
    {.name = u"row",
     .meaning = u"the name of the element around a row",
     .defaults = u"with Form=Strict row"},
    {.name = u"item",
     .meaning = u"the name of the element around a value",
     .defaults = u"with Form=Strict item"},
    {.name = u"name",
     .meaning = u"the name of the attribute that holds a column's name",
     .defaults = u"with Form=Strict name"},
});
constexpr Key kFieldIsTag = kKeys[u"FieldIsTag"];
constexpr Key kSet = kKeys[u"set"];
constexpr Key kRow = kKeys[u"row"];
constexpr Key kItem = kKeys[u"item"];
constexpr Key kNameAttribute = kKeys[u"name"];

// The name that a key gives to a part of a strict document; the key's own where it is empty.
bool TakeName(String& error, Key key, String& name) {
    if (name.empty()) name = key->name;
    if (IsXmlName(name)) return true;
    error = Format(u"XMLFile: '%s' is no name that XML takes for '%s'.", name, key->name);
    return false;
}

bool TakeNames(String& error, XmlNames& names) {
    if (!TakeName(error, kSet, names.set) || !TakeName(error, kRow, names.row) ||
        !TakeName(error, kItem, names.item) || !TakeName(error, kNameAttribute, names.attribute)) {
        return false;
    }
    if (names.attribute != u"nil" && names.attribute != u"xmlns") return true;
    error = Format(u"XMLFile: '%s' cannot be the attribute with the names.", names.attribute);
    return false;
}

}  // namespace

KeyList XMLFile::Keys() {
    return {kKeys, kFormKeys, kOverwriteKeys, kLaterEncodingKeys, FileKeys()};
}

std::unique_ptr<DocumentForm> XMLFile::MakeForm(String& error, const SectionSettings& settings) {
    XmlNames names{.set = settings.Text(kSet),
                   .row = settings.Text(kRow),
                   .item = settings.Text(kItem),
                   .attribute = settings.Text(kNameAttribute),
                   .field_is_tag = settings.Flag(kFieldIsTag)};
    if (!WantsStrictForm(settings)) return std::make_unique<PlainXml>(names);
    if (!TakeNames(error, names)) return nullptr;
    return std::make_unique<StrictXml>(names, FormOfText().unmappable,
                                       CharsetOf(FormOfText().encoding));
}

}  // namespace DataConsumers
