#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "config/section_settings.h"
#include "core/row_set.h"
#include "core/type_table.h"

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
    // The type words, in their order, with the keys of each.
    static std::vector<TypeEntry> Types();

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

    // Between Open and the first Fetch: takes all that there is to read to where it can be read
    // again, so that CanReopen becomes true. Open must then be called anew.
    // Fails with "This source can be read only once.", or with the reason.
    virtual bool KeepForReopening(String& error);

    // Describes the columns as Open does, without reading rows or changing anything.
    virtual bool Describe(String& error, const SectionSettings& settings, RowSet& rows);

    // Why the last Fetch or HasMoreData that returned false has lost rows; empty where all there
    // were have been read. May be set although `error` was not.
    const String& Loss() const { return loss_; }
    // Whether such a loss fails the step, whatever the step makes of failed reading.
    bool LossFailsStep() const { return loss_fails_step_; }

    // Records that were left out, and that were set aside in a reject file.
    virtual std::uint64_t Skipped() const { return 0; }
    virtual std::uint64_t Rejected() const { return 0; }

    // Characters that were none, and became U+FFFD.
    virtual std::uint64_t ReplacedCharacters() const { return 0; }

    // The file that is being read; empty for what is none.
    virtual String InputFile() const { return {}; }
    // How many bytes of that file have been read, from its start.
    virtual std::uint64_t ReadBytes() const { return 0; }
    // The line of that file, from 1, where the latest row began; 0 without one.
    virtual std::uint64_t Line() const { return 0; }
    // How much has been read, from 0 to 1, where the size of all is known.
    virtual std::optional<double> ReadShare() const { return std::nullopt; }

protected:
    String loss_;
    bool loss_fails_step_ = false;
};

}  // namespace DataProviders
