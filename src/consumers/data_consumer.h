#pragma once

#include <cstddef>
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

namespace DataConsumers {

// A file that a target has written.
struct WrittenFile {
    String name;
    std::uint64_t bytes = 0;  // of text, a byte-order mark not counted
};

// Where a row came from, as a RowSet tells it.
struct RowOrigin {
    std::uint64_t number = 0;
    std::uint64_t line = 0;
};

// The target of a step: takes the rows that its source delivers.
class DataConsumer {
public:
    virtual ~DataConsumer() = default;

    // Makes the target of the section's `Type`, any letter case, in place of what `consumer` held.
    // Does not open it. An empty type is no failure: `consumer` is then null, after the warning
    // "Warning (step %d): no target defined properly. Execute the source only." (steps from 0).
    // Fails with "Incorrect type for target '%s'.".
    static bool Create(String& error, const SectionSettings& settings,
                       std::unique_ptr<DataConsumer>& consumer, Quillon::Logger& logger,
                       std::size_t step);
    // The type words, in their order, with the keys of each.
    static std::vector<TypeEntry> Types();

    // Reads every setting, opens the output and sets the written size to 0.
    virtual bool Open(String& error, const SectionSettings& settings) = 0;
    // Writes what precedes the rows of a result set, once its columns are known.
    virtual bool Prepare(String& error, RowSet& rows) = 0;
    // Writes the current row; values of removed columns are left out.
    virtual bool Write(String& error, RowSet& rows) = 0;
    // Ends a result set because another one follows. False also when the new rows simply continue
    // the output, without another Prepare.
    virtual bool NextResultSet(String& error, const SectionSettings& settings) = 0;
    // Finishes the output.
    virtual bool Close(String& error) = 0;
    // Writes out what has been gathered, because input pauses or the step has failed. A failure
    // that is not heard here is told by the next operation.
    virtual bool WriteOut(String& /*error*/) { return true; }
    // Makes what was written final, once the whole step has succeeded. A target that goes without
    // leaves behind what its own settings say.
    virtual bool Commit(String& error);

    // Compares the columns of a source with what the target can take, and writes nothing.
    virtual bool CheckColumns(String& error, const SectionSettings& settings, const RowSet& rows);

    // Names the file that the step reads, and how much of it has been read already, before Open.
    // Empty: it reads none.
    virtual void KeepClearOf(const String& /*input_file*/, std::uint64_t /*read_bytes*/) {}
    // Whether the widths of all values must be known before the first row.
    virtual bool MeasuresWidths() const { return false; }
    // Measure what Prepare and Write would write, into the columns' MaxWidth: the names, from which
    // the widths of a result set begin, and the values of the current row.
    virtual void MeasureNames(RowSet& /*rows*/) const {}
    virtual void MeasureRow(RowSet& /*rows*/) const {}
    // Whether the written size counts bytes.
    virtual bool WritesBytes() const { return false; }

    // The row that the last failure is about, where it is not the one that was written last.
    virtual std::optional<RowOrigin> FailedRow() const { return std::nullopt; }

    // Rows that were left out, rows that were set aside in a reject file, and characters that an
    // encoding lacks.
    virtual std::uint64_t Skipped() const { return 0; }
    virtual std::uint64_t Rejected() const { return 0; }
    virtual std::uint64_t ReplacedCharacters() const { return 0; }

    // The files written since Open, in their order; none for databases.
    virtual std::vector<WrittenFile> Files() const { return {}; }
    // Bytes of text written since Open, byte-order marks not counted; rows for database targets.
    std::uint64_t WrittenSize() const { return written_size_; }

protected:
    std::uint64_t written_size_ = 0;
};

}  // namespace DataConsumers
