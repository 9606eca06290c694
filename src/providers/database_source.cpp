#include "providers/database_source.h"

namespace DataProviders {
namespace {

constexpr KeyTable kReadingKeys({
    {.name = u"FetchMode",
     .kind = KeyKind::Word,
     .words = u"Row Block",
     .edition1 = u"Row",
     .edition2 = u"Block",
     .meaning = u"ask the driver for each value, or have it fill blocks of rows where it can",
     .since = Since::Later},
    {.name = u"FetchMemory",
     .kind = KeyKind::Size,
     .edition1 = u"8M",
     .edition2 = u"8M",
     .meaning = u"room for one block",
     .since = Since::Later},
    {.name = u"LongValues",
     .kind = KeyKind::Word,
     .words = u"Cut Whole",
     .edition1 = u"Cut",
     .edition2 = u"Whole",
     .meaning = u"cut a value at 16 MiB of UTF-16, or read it to its end",
     .since = Since::Later},
});
constexpr Key kFetchMode = kReadingKeys[u"FetchMode"];
constexpr Key kFetchMemory = kReadingKeys[u"FetchMemory"];
constexpr Key kLongValues = kReadingKeys[u"LongValues"];
enum class FetchMode { Row, Block };
enum class LongValues { Cut, Whole };

}  // namespace

KeySpan DatabaseSource::ReadingKeys() { return kReadingKeys; }

DatabaseSource::~DatabaseSource() { DatabaseSource::Close(); }

bool DatabaseSource::Connect(String& error, const DataStorages::ConnectionSettings& connection,
                             const SectionSettings& settings) {
    Close();
    database_ = DataStorages::OpenDatabase(error, connection);
    if (!database_) return false;
    database_->ReadBy(
        {.in_blocks = settings.Word(kFetchMode, FetchMode::Row) == FetchMode::Block,
         .block_bytes = settings.Size(kFetchMemory),
         .whole_values = settings.Word(kLongValues, LongValues::Cut) == LongValues::Whole,
         .bytes_as_digits = settings.Follows(Rule::BytesAsDigits),
         .told_columns = settings.Follows(Rule::ColumnsMustBeTold)});
    return true;
}

bool DatabaseSource::RunQuery(String& error, const String& query, RowSet& rows) {
    database_->CloseQuery();  // a driver may hold the whole result before it
    if (database_->Query(error, query, rows)) return true;
    error += u"\r\n" + query;
    return false;
}

bool DatabaseSource::DescribeQuery(String& error, const String& query, RowSet& rows) {
    if (database_->Describe(error, query, rows)) return true;
    error += u"\r\n" + query;
    return false;
}

bool DatabaseSource::Fetch(String& error, RowSet& rows, bool track_widths) {
    if (!database_) return false;
    const bool fetched = database_->Fetch(error, rows, track_widths);
    if (!fetched) NoteLoss(error);
    return fetched;
}

void DatabaseSource::NoteLoss(const String& error) {
    loss_ = database_->ReadingFailed() ? database_->LastError() : error;
}

bool DatabaseSource::Close() { return database_ && database_->Close(); }

}  // namespace DataProviders
