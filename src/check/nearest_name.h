#pragma once

#include <vector>

#include "base/strings.h"

// The candidate that `name` was most likely meant to be: the one with the fewest letters to change,
// add, leave out or swap with their neighbour (the optimal string alignment distance), letter case
// counting least. Where none is near, as more than a third of the letters would differ, the first
// one that begins with `name`. Empty when there is no such either.
StringView NearestName(StringView name, const std::vector<StringView>& candidates);
