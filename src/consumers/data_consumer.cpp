#include "consumers/data_consumer.h"

#include "base/activity_trail.h"
#include "consumers/database_data.h"
#include "consumers/database_schema.h"
#include "consumers/excel_file.h"
#include "consumers/html_file.h"
#include "consumers/json_file.h"
#include "consumers/rtf_file.h"
#include "consumers/sql_script.h"
#include "consumers/text_file.h"
#include "consumers/xml_file.h"
#include "core/logger.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

template <SQLScript::Statement kStatement>
std::unique_ptr<DataConsumer> MakeScript() {
    return std::make_unique<SQLScript>(kStatement);
}

template <class Target>
constexpr TypeWord<DataConsumer> Row(StringView word) {
    return RowOf<DataConsumer, Target>(word);
}

constexpr TypeWord<DataConsumer> kTypes[] = {
    Row<TextFile>(u"TextFile"),
    {u"SQLScript", MakeScript<SQLScript::Statement::Insert>, SQLScript::InsertKeys},
    Row<XMLFile>(u"XMLFile"),
    Row<JSONFile>(u"JSONFile"),
    Row<ExcelFile>(u"ExcelFile"),
    Row<HtmlFile>(u"HtmlFile"),
    Row<RTFFile>(u"RTFFile"),
    {u"DDLScript", MakeScript<SQLScript::Statement::CreateTable>, SQLScript::CreateTableKeys},
    Row<DatabaseData>(u"DatabaseTable"),
    Row<DatabaseSchema>(u"DatabaseSchema"),
};

}  // namespace

std::vector<TypeEntry> DataConsumer::Types() { return EntriesOf(kTypes); }

bool DataConsumer::Commit(String& /*error*/) { return true; }

bool DataConsumer::CheckColumns(String& /*error*/, const SectionSettings& /*settings*/,
                                const RowSet& /*rows*/) {
    return true;
}

bool DataConsumer::Create(String& error, const SectionSettings& settings,
                          std::unique_ptr<DataConsumer>& consumer, Quillon::Logger& logger,
                          std::size_t step) {
    const ScopedState state(u"DataConsumer::Create");
    const String word = settings.Text(kType);
    std::unique_ptr<DataConsumer> made = MakeByWord(kTypes, word);
    if (made) {
        consumer = std::move(made);
        return true;
    }
    if (!word.empty()) {
        error = Format(u"Incorrect type for target '%s'.", word);
        return false;
    }
    consumer.reset();
    String ignored;
    logger.Write(
        ignored,
        Format(u"Warning (step %d): no target defined properly. Execute the source only.", step),
        0);
    return true;
}

}  // namespace DataConsumers
