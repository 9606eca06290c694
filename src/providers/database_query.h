#pragma once

#include "providers/database_source.h"

namespace DataProviders {

// Runs one SQL text against an ODBC data source and delivers its result sets.
class DatabaseQuery final : public DatabaseSource {
public:
    static KeyList Keys();

    // "The data source or connection string is not provided."
    // "The database query or table name is not provided."
    // "The query file '%s' does not exist or inaccessible."
    // "Could not load query file '%s': %s"
    // "The query file '%s' is empty"
    // The database's own messages; after a failed query the query text follows on its own line.
    bool Open(String& error, const SectionSettings& settings, RowSet& rows) override;
    // Has the query prepared; it is not executed.
    bool Describe(String& error, const SectionSettings& settings, RowSet& rows) override;
    // The row keeps its length, so that targets refuse the rows of a narrower result set, unless
    // the job wants rows to follow their columns.
    bool HasMoreData(String& error, RowSet& rows) override;

private:
    // Connects, and returns the query with its macros replaced.
    bool ConnectForQuery(String& error, const SectionSettings& settings, String& query);
    void ForgetNotNull(const SectionSettings& settings, RowSet& rows);

    // The row gets the length of each result set. Else it keeps the greatest so far, and targets
    // refuse the rows of a narrower one.
    bool row_follows_columns_ = false;
};

}  // namespace DataProviders
