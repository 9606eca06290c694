#pragma once

#include <vector>

#include "base/strings.h"

// The candidate that `name` was most likely meant to be: the one with the fewest letters to change,
// add, leave out or swap with their neighbour (the optimal string alignment distance), letter case
// counting least. Empty when none is near: more than a third of the letters would differ.
StringView NearestName(StringView name, const std::vector<StringView>& candidates);
