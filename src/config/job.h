#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/strings.h"
#include "config/configuration_step.h"
#include "core/parameter_set.h"
#include "core/place.h"

// What a job file says, its includes in place.
struct Job {
    // A name that stands a second time in one section, or in the Globals.
    struct Repetition {
        String name;
        Place first;
        Place again;
    };

    std::vector<String> files;  // as they were named: the job file, then its includes
    ParameterSet globals;
    // Macros that "environment" makes, names with their "$" signs.
    std::vector<ParameterSet::Element> environment_macros;
    std::vector<std::unique_ptr<ConfigurationStep>> steps;
    std::vector<Repetition> repetitions;
    std::vector<Repetition> idle_sections;  // section keywords among the Globals; `first` is unused
};
