#pragma once

#include <cstddef>
#include <vector>

#include "core/parameter_set.h"

// The sections that settings are read from; the first five belong to a step.
enum class Section {
    Source = 0,
    Target = 1,
    Transform = 2,
    Settings = 3,
    System = 4,
    CommandLine,
    Globals
};

// One numbered step of a job file: a set for each kind of section, and any number of Transform
// sections in the order of the file.
class ConfigurationStep {
public:
    // The set of a section. index: of the Transform section, from 0; unused by the others. Index 0
    // always exists: asked for in a step without Transform sections, it is made.
    // Throws std::invalid_argument "ConfigurationStep::List bad section" or
    // "ConfigurationStep::List bad index".
    ParameterSet& List(Section section, std::size_t index = 0);

    // The set of a section that is there; null for a Transform section that is not. Makes nothing.
    const ParameterSet* Find(Section section, std::size_t index) const;

    // Appends an empty Transform section.
    void AddTransform() { transforms_.emplace_back(); }
    std::size_t TransformCount() const { return transforms_.size(); }

    // Where the step's head stands; line 0 for a step that no job file holds.
    Place Head() const { return head_; }
    void SetHead(Place head) { head_ = head; }

private:
    ParameterSet source_;
    ParameterSet target_;
    ParameterSet settings_;
    ParameterSet system_;
    std::vector<ParameterSet> transforms_;
    Place head_;
};
