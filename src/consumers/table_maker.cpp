#include "consumers/table_maker.h"

#include "storages/create_table.h"
#include "storages/open_database.h"

namespace DataConsumers {

TableMaker::~TableMaker() {
    if (own_) own_->Close();
}

DataStorages::StorageDatabase* TableMaker::Maker(String& error) {
    if (database_.Transactions() == DataStorages::TransactionKind::All) return &database_;
    if (!own_) own_ = DataStorages::OpenDatabase(error, connection_);
    return own_.get();
}

bool TableMaker::Make(String& error, const sql::TableName& name, const RowSet& rows) {
    DataStorages::StorageDatabase* const maker = Maker(error);
    if (maker == nullptr) return false;
    std::vector<sql::TableColumn> columns;
    for (const ColumnDefinition& column : rows.Columns) columns.push_back({column, {}});
    if (!maker->ExecNonQuery(error, sql::CreateTableStatement(dialect_, name, columns))) {
        return false;
    }
    dialect_.AppendName(made_.emplace_back(), name);
    return true;
}

void TableMaker::Drop() {
    String ignored;
    DataStorages::StorageDatabase* const maker = Maker(ignored);
    for (const String& table : made_) {
        RowSet rows;
        if (maker == nullptr || !maker->Describe(ignored, u"select * from " + table, rows)) {
            continue;
        }
        maker->ExecNonQuery(ignored, u"drop table " + table);
    }
    made_.clear();
}

}  // namespace DataConsumers
