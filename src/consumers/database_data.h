#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "consumers/data_consumer.h"
#include "consumers/table_load.h"
#include "consumers/table_maker.h"
#include "consumers/table_setting.h"
#include "storages/connection_settings.h"
#include "storages/storage_database.h"

namespace DataConsumers {

// Inserts the rows into a table of a database; see TableLoad for statements and transactions. The
// written size counts rows.
class DatabaseData final : public DataConsumer {
public:
    static KeyList Keys();

    ~DatabaseData() override;

    // "The data source name or connect string is not provided"
    // "The target table name is not provided"
    // "Could not retrieve table defintition" where the table cannot be read; published spelling
    // "OnBadRow=Reject needs a RejectFile."
    // "Table %s has no transactions: set CommitRows=1."
    // and the messages of the database and of TableLoad.
    bool Open(String& error, const SectionSettings& settings) override;
    // Where columns are matched by name: the messages of MatchColumns, and
    // "Table %s would take the rows of %s and of %s: name it by $SCHEMA$, too." and
    // "The name '%s' has more than the %d bytes that the database keeps."
    bool Prepare(String& error, RowSet& rows) override;
    // "Traget table has different structure [%d -> %d columns]." with the columns of the source
    // and of the table, published spelling; "Cound not build SQL statement"; or the database's
    // message, and those of RowSender and TableLoad.
    bool Write(String& error, RowSet& rows) override;
    // False where the rows of a further result set go into the same table, by position.
    bool NextResultSet(String& error, const SectionSettings& settings) override;
    // Sends the last rows.
    bool Close(String& error) override;
    // Makes them final and disconnects. Without it everything is taken back that no transaction of
    // its own has made final, and the tables that this target has made go.
    bool Commit(String& error) override;
    // "Traget table has different structure [%d -> %d columns]." and the messages of MatchColumns;
    // no row is touched.
    bool CheckColumns(String& error, const SectionSettings& settings, const RowSet& rows) override;

    std::optional<RowOrigin> FailedRow() const override { return load_.FailedRow(); }
    std::uint64_t Skipped() const override { return load_.Skipped(); }
    std::uint64_t Rejected() const override { return load_.Rejected(); }

private:
    enum class InsertMode { Literal, Bound };
    using Columns = std::vector<ColumnDefinition>;

    bool ReadSettings(String& error, const SectionSettings& settings);
    bool ReadLoadRules(String& error, const SectionSettings& settings);
    bool Connect(String& error, const SectionSettings& settings);
    void ChooseDialect(sql::Dialect dialect);
    bool IsExactMySql() const;
    bool MakeStrict(String& error);
    bool TakesRowsBack(String& error);
    void NameTable();
    bool FindTable(String& error);
    bool MakeTable(String& error, const RowSet& rows);
    bool DescribeTable(String& error);
    bool BeginRows(String& error, const RowSet& rows);
    bool NamesFit(String& error, const RowSet& rows);
    bool NoteOrigin(String& error, const RowSet& rows);
    bool ColumnsFit(String& error, const Columns& columns) const;
    String InsertHead(const Columns& columns) const;
    bool Finish(String& error);
    void TakeBack();

    std::optional<SectionSettings> settings_;
    DataStorages::ConnectionSettings connection_;
    std::unique_ptr<DataStorages::StorageDatabase> database_;
    TableLoad load_;
    TableLoad::Rules rules_;

    InsertMode insert_mode_ = InsertMode::Literal;
    std::size_t insert_rows_ = 1;
    std::optional<sql::SqlDialect> connected_;  // that of the database
    const sql::SqlDialect* dialect_ = nullptr;  // null: names and values as always
    bool by_name_ = false;
    bool create_table_ = false;
    bool table_per_result_set_ = false;
    bool removed_count_ = true;  // a column that was removed counts where they are compared
    String delimiter_;

    sql::TableName name_;
    String table_;                      // as statements name it
    bool is_missing_ = false;           // it is to be made
    std::optional<TableMaker> maker_;   // tables of this target
    std::map<String, String> origins_;  // by the table as the database tells it from others
    RowSet table_rows_;                 // describes the table
    bool begun_ = false;                // the rows of a result set
};

}  // namespace DataConsumers
