#pragma once

#include "base/strings.h"

namespace DataConsumers {

// What stands around the tables of a page.
struct PageFrame {
    String prologue;
    String epilogue;
    bool own_prologue = false;  // the job gives it; otherwise a form may have a better one
};

// The classes of a page's elements; empty for none.
struct PageClasses {
    String table;
    String header;  // of the names' cells
    String row;
    String cell;
};

}  // namespace DataConsumers
