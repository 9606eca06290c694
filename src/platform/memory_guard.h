// What is done where memory runs out: somebody is told, and the program ends as failed.
#pragma once

#include <new>

namespace platform {

// Says so on standard error: "Out of memory.". Takes no memory.
void TellOutOfMemory();

// Does the work. False when memory ran out meanwhile, which has then been told.
template <class Work>
bool WithinMemory(const Work& work) {
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        TellOutOfMemory();
        return false;
    }
}

}  // namespace platform
