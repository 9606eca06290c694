#include "config/configuration_step.h"

#include <stdexcept>

ParameterSet& ConfigurationStep::List(Section section, std::size_t index) {
    switch (section) {
        case Section::Source:
            return source_;
        case Section::Target:
            return target_;
        case Section::Settings:
            return settings_;
        case Section::System:
            return system_;
        case Section::Transform:
            if (index == 0 && transforms_.empty()) AddTransform();
            if (index < transforms_.size()) return transforms_[index];
            throw std::invalid_argument("ConfigurationStep::List bad index");
        case Section::CommandLine:
        case Section::Globals:
            break;
    }
    throw std::invalid_argument("ConfigurationStep::List bad section");
}

const ParameterSet* ConfigurationStep::Find(Section section, std::size_t index) const {
    switch (section) {
        case Section::Source:
            return &source_;
        case Section::Target:
            return &target_;
        case Section::Settings:
            return &settings_;
        case Section::System:
            return &system_;
        case Section::Transform:
            return index < transforms_.size() ? &transforms_[index] : nullptr;
        default:
            return nullptr;
    }
}
