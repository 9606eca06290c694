// The trail of what the program is doing, innermost last. It is process-wide and not locked: the
// program has one thread. The report of a fatal fault names the innermost entry.
#pragma once

#include "base/strings.h"

// Pushes `name`; an empty name removes the most recent entry, if there is one. The trail keeps a
// view: the text must be a literal.
void TraceState(StringView name);

// The most recent entry; empty when the trail is.
StringView CurrentState();

// Keeps an activity on the trail for the length of a block.
class ScopedState {
public:
    explicit ScopedState(StringView name) { TraceState(name); }
    ~ScopedState() { TraceState({}); }
    ScopedState(const ScopedState&) = delete;
    ScopedState& operator=(const ScopedState&) = delete;
};
