#pragma once

#include <vector>

#include "check/job_check.h"

// What "-check=connect" finds beyond the other checks: databases that cannot be reached, queries
// that they refuse, and columns that do not fit those of the target. Connects and describes; no row
// is read and nothing is written.
void CheckConnections(Configuration& configuration, std::vector<Finding>& findings);
