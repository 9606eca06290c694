#include "run/check_run.h"

#include <memory>

#include "base/notices.h"
#include "config/section_settings.h"
#include "consumers/data_consumer.h"
#include "core/logger.h"
#include "providers/data_provider.h"
#include "run/step_place.h"
#include "transformers/data_transformer.h"

namespace {

// Drops what factories write: the check has told of it by itself.
class SilentLogger final : public Quillon::Logger {
public:
    bool Open(String&, const String&, bool) override { return true; }
    bool Write(String&, StringView, int) override { return true; }
    bool Close() override { return true; }
};

// Describes the source of the current step, lets the transformers change the columns, and compares
// them with those of the target. Returns who failed, with `error`, if anyone did.
class StepDescription {
public:
    explicit StepDescription(Configuration& configuration) : configuration_(configuration) {}

    bool Check(String& error) {
        return DescribeSource(error) && Transform(error) && Compare(error);
    }
    const StepRole& Role() const { return role_; }

private:
    bool DescribeSource(String& error) {
        role_ = {Section::Source};
        const SectionSettings settings(configuration_, Section::Source);
        std::unique_ptr<DataProviders::DataProvider> source;
        if (!DataProviders::DataProvider::Create(error, settings, source, logger_)) return true;
        return source->Describe(error, settings, rows_);
    }

    // Transformers that cannot be made have been found before.
    bool Transform(String& error) {
        const bool follows_sets = configuration_.Follows(Rule::TransformsFollowSets);
        const std::size_t count =
            configuration_.Step(configuration_.CurrentStep()).TransformCount();
        for (std::size_t i = 0; i < count; ++i) {
            role_ = {Section::Transform, i};
            configuration_.SetCurrentTransform(i);
            const SectionSettings settings(configuration_, Section::Transform);
            std::unique_ptr<DataTransformers::DataTransformer> transformer;
            if (!DataTransformers::DataTransformer::Create(error, settings, transformer) ||
                (follows_sets && !transformer->CheckColumns(error, rows_)) ||
                !transformer->Transform(error, rows_)) {
                return false;
            }
        }
        return true;
    }

    bool Compare(String& error) {
        role_ = {Section::Target};
        const SectionSettings settings(configuration_, Section::Target);
        std::unique_ptr<DataConsumers::DataConsumer> target;
        if (!DataConsumers::DataConsumer::Create(error, settings, target, logger_, 0)) return true;
        return !target || target->CheckColumns(error, settings, rows_);
    }

    Configuration& configuration_;
    SilentLogger logger_;
    StepRole role_;
    RowSet rows_;
};

}  // namespace

void CheckConnections(Configuration& configuration, std::vector<Finding>& findings) {
    for (std::size_t i = 0; i < configuration.StepCount(); ++i) {
        configuration.SetCurrentStep(i);
        ConfigurationStep& step = configuration.Step(i);
        if (!step.List(Section::System).Empty()) continue;
        String error;
        StepDescription description(configuration);
        if (description.Check(error)) continue;
        findings.push_back({{}, true, FailurePrefix(configuration, description.Role()) + error});
    }
}
