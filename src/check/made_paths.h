#pragma once

#include <vector>

#include "base/strings.h"
#include "core/key.h"

// The files and folders that the steps of a job make, so that a check does not miss them.
class MadePaths {
public:
    // Notes a path that a step makes, however it is written; an empty one is none.
    void Add(const String& path);

    // What is wrong with a path that a key names; empty when nothing is.
    // "There is no file '%s', which '%s' names."
    // "There is no folder '%s', which '%s' names."
    // "There is no folder '%s' for the file that '%s' names."
    String Fault(const KeySpec& key, const String& path) const;

private:
    bool IsThere(const String& path) const;

    std::vector<String> made_;
};
