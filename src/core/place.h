#pragma once

#include <cstddef>

// Where something stands in a job: a file, by its position in the job's list of files, and a line
// of it from 1. Line 0: nowhere, as for what the command line says.
struct Place {
    std::size_t file = 0;
    std::size_t line = 0;
};
