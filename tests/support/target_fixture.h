#pragma once

#include <memory>

#include "consumers/data_consumer.h"
#include "files/format.h"
#include "support/collecting_logger.h"
#include "support/one_step.h"

namespace testing_support {

inline std::vector<String> Split(StringView texts, char16_t separator) {
    std::vector<String> all(1);
    for (const char16_t unit : texts)
        unit == separator ? void(all.emplace_back()) : all.back().push_back(unit);
    return all;
}

// What stands between "|" as settings, each "name=value".
inline Settings SettingsOf(StringView texts) {
    Settings all;
    for (const String& one : Split(texts, u'|'))
        all.emplace_back(one.substr(0, one.find(u'=')), one.substr(one.find(u'=') + 1));
    return all;
}

// The values between "|" as a row. "~" is NULL, "-" what was removed.
inline DataRow RowOf(StringView texts) {
    DataRow row;
    for (const String& value : Split(texts, u'|'))
        row.push_back({value == u"~", value != u"-", value});
    return row;
}

// A target, made from settings and fed as a run does it.
class TargetFixture : public testing::Test {
protected:
    // Makes the target of the fourth step and opens it. "$TABLE$" stands for "t1" until the second
    // result set comes, then for "t2".
    bool Open(StringView settings, std::string_view name, StringView type = u"TextFile") {
        Settings all = SettingsOf(settings);
        all.insert(all.begin(), {{u"Type", String(type)}, {u"Name", folder_.Path(name)}});
        const SectionSettings section = step_.With(Section::Target, all);
        NameTable(1);
        return DataConsumers::DataConsumer::Create(error_, section, target_, logger_, 3) &&
               (!target_ || target_->Open(error_, section));
    }
    // Writes result sets, with "#" between them, and closes the target. The names of the columns
    // and the rows of a set have "/" between them, names and values "|". A failed write ends it.
    bool Write(StringView sets) {
        int number = 0;
        for (const String& set : Split(sets, u'#')) {
            const std::vector<String> lines = Split(set, u'/');
            Describe(lines[0]);
            NameTable(++number);
            const bool new_start =
                number == 1 || target_->NextResultSet(error_, {step_.Job(), Section::Target});
            if (new_start && !target_->Prepare(error_, rows_)) return false;
            for (std::size_t i = 1; i < lines.size(); ++i) {
                rows_.Row = RowOf(lines[i]);
                if (!target_->Write(error_, rows_)) return false;
            }
        }
        return target_->Close(error_);
    }
    void Describe(StringView names) {
        rows_.TableName = u"base";
        rows_.Columns.clear();
        for (const String& name : Split(names, u'|')) {
            ColumnDefinition& column = rows_.Columns.emplace_back(name, 12, u"varchar", 0);
            column.LiteralPrefix = column.LiteralSuffix = u"'";
            column.MaxWidth = name.size();
            column.Included = name != u"-";
        }
    }
    void NameTable(int number) { step_.Job().Macros().NameTable(Format(u"t%d", number), u""); }

    ScratchFolder folder_;
    OneStep step_;
    CollectingLogger logger_;
    std::unique_ptr<DataConsumers::DataConsumer> target_;
    RowSet rows_;
    String error_;
};

}  // namespace testing_support
