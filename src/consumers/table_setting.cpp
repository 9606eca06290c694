#include "consumers/table_setting.h"

namespace sql {

TableSetting::TableSetting(const SectionSettings& settings, Key key)
    : settings_(settings),
      setting_(settings.Unresolved(key)),
      macro_is_one_name_(settings.Follows(Rule::MacroIsOneName)) {}

String TableSetting::Text() const {
    String text;
    if (!macro_is_one_name_) {
        settings_.ResolveAllMacros(text = setting_);
        return text;
    }
    for (const StringView piece : PiecesOf(setting_)) {
        if (!text.empty()) text += u'.';
        String name = PlainName(piece);
        const String unresolved = name;
        settings_.ResolveAllMacros(name);
        if (name == unresolved) {
            text += piece;
        } else if (!name.empty() || !text.empty()) {
            AppendIdentifier(text, name);
        }
    }
    return text;
}

TableName TableSetting::Name() const {
    String resolved = setting_;
    if (!macro_is_one_name_) settings_.ResolveAllMacros(resolved);
    TableName name;
    for (const StringView piece : PiecesOf(resolved)) {
        name.push_back(PlainName(piece));
        if (macro_is_one_name_) settings_.ResolveAllMacros(name.back());
    }
    return name;
}

TableName TableSetting::NameOf(StringView table, StringView schema) const {
    settings_.NameTable(table, schema);
    return Name();
}

}  // namespace sql
