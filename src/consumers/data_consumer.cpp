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
#include "core/type_table.h"
#include "files/format.h"

namespace DataConsumers {
namespace {

template <SQLScript::Statement kStatement>
std::unique_ptr<DataConsumer> MakeScript() {
    return std::make_unique<SQLScript>(kStatement);
}

constexpr TypeWord<DataConsumer> kTypes[] = {
    {u"TextFile", MakeOf<DataConsumer, TextFile>},
    {u"SQLScript", MakeScript<SQLScript::Statement::Insert>},
    {u"XMLFile", MakeOf<DataConsumer, XMLFile>},
    {u"JSONFile", MakeOf<DataConsumer, JSONFile>},
    {u"ExcelFile", MakeOf<DataConsumer, ExcelFile>},
    {u"HtmlFile", MakeOf<DataConsumer, HtmlFile>},
    {u"RTFFile", MakeOf<DataConsumer, RTFFile>},
    {u"DDLScript", MakeScript<SQLScript::Statement::CreateTable>},
    {u"DatabaseTable", MakeOf<DataConsumer, DatabaseData>},
    {u"DatabaseSchema", MakeOf<DataConsumer, DatabaseSchema>},
};

}  // namespace

bool DataConsumer::Create(String& error, const SectionSettings& settings,
                          std::unique_ptr<DataConsumer>& consumer, Quillon::Logger& logger,
                          std::size_t step) {
    const ScopedState state(u"DataConsumer::Create");
    const String word = settings.Text(u"Type");
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
