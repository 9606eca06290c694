#pragma once

#include <cstdint>

#include "base/strings.h"
#include "core/row_set.h"

namespace DataConsumers {

// What a target must know of a form.
struct FormRules {
    bool goes_on = true;         // a file that holds something can be appended to
    bool ends_each_file = true;  // otherwise the file before a further one stays without its end
    bool counts_start = true;    // the written size counts what begins a file
    bool counts_end = true;      // and what ends it
    StringView line_end = {};    // what ends a row, where each is a line
};

// One way in which a format puts the rows of a step into files; see DocumentTarget. Chosen when the
// target is opened. Every operation appends text to `out`, and those that can fail set `error`.
class DocumentForm {
public:
    explicit DocumentForm(const FormRules& rules) : rules_(rules) {}
    virtual ~DocumentForm() = default;

    const FormRules& Rules() const { return rules_; }

    // A new file begins.
    virtual void BeginFile(String& out) = 0;
    // A result set begins; its columns are known, its rows are not.
    virtual bool BeginTable(String& error, const RowSet& rows, String& out) = 0;
    // The first row of a result set is there, and the columns and values that transformers have
    // removed are known. AppendRow follows.
    virtual bool BeginRows(String& /*error*/, const RowSet& /*rows*/, String& /*out*/) {
        return true;
    }
    virtual bool AppendRow(String& error, const RowSet& rows, String& out) = 0;
    // A further result set goes into the same file. True when BeginTable is wanted for it.
    virtual bool NextTable(String& /*error*/, String& /*out*/) { return false; }
    // The next result set has a file of its own.
    virtual void LeaveFile(String& /*out*/) {}
    virtual bool EndFile(String& error, String& out) = 0;

    // Characters that were replaced because the format lacks them.
    virtual std::uint64_t Replaced() const { return 0; }

private:
    const FormRules rules_;
};

}  // namespace DataConsumers
