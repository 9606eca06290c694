#pragma once

#include <memory>

#include "base/strings.h"
#include "config/section_settings.h"
#include "core/row_set.h"

namespace Quillon {
class Logger;
}

namespace DataProviders {

// The source of a step: describes columns and delivers rows into the step's row set.
class DataProvider {
public:
    virtual ~DataProvider() = default;

    // Makes the source of the section's `Type`, any letter case, in place of what `provider` held.
    // Does not open it. Fails with "Incorrect type for source '%s'.".
    static bool Create(String& error, const SectionSettings& settings,
                       std::unique_ptr<DataProvider>& provider, Quillon::Logger& logger);

    // Reads the Source section and describes the columns of the first result set into `rows`. May
    // be called again after Close.
    virtual bool Open(String& error, const SectionSettings& settings, RowSet& rows) = 0;

    // Reads the next row into `rows.Row`: one value per column, positions from 0.
    // track_widths: also raise each column's MaxWidth (in characters) to the longest text seen.
    // true: a row is there. false, `error` still as empty as it came: end of data. false with text:
    // failure.
    virtual bool Fetch(String& error, RowSet& rows, bool track_widths) = 0;

    // Moves to the next result set and describes it; false when there is none.
    virtual bool HasMoreData(String& error, RowSet& rows);

    // Releases what Open took.
    virtual bool Close() { return true; }

    // False for a source that can be read only once, such as standard input.
    virtual bool CanReopen() const { return true; }
};

}  // namespace DataProviders
