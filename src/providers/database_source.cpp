#include "providers/database_source.h"

namespace DataProviders {

DatabaseSource::~DatabaseSource() { DatabaseSource::Close(); }

bool DatabaseSource::Connect(String& error, const DataStorages::ConnectionSettings& connection) {
    Close();
    database_ = DataStorages::OpenDatabase(error, connection);
    return database_ != nullptr;
}

bool DatabaseSource::RunQuery(String& error, const String& query, RowSet& rows) {
    database_->CloseQuery();  // a driver may hold the whole result before it
    if (database_->Query(error, query, rows)) return true;
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
