#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/strings.h"
#include "check/secret_mask.h"
#include "config/configuration.h"
#include "consumers/data_consumer.h"

// One step of a run, as the report tells of it.
struct StepReport {
    enum class Status { NotRun, Done, Failed };
    // A source or a target: its type word and what its settings name.
    struct End {
        String type;
        String name;
    };

    std::size_t number = 0;  // from 1
    std::size_t line = 0;    // of its head, in its file
    std::optional<End> source;
    std::optional<End> target;
    std::optional<String> command;  // of a System step
    std::vector<DataConsumers::WrittenFile> files;
    std::uint64_t rows_read = 0;  // written, skipped and rejected together
    std::uint64_t rows_written = 0;
    std::uint64_t rows_skipped = 0;
    std::uint64_t rows_rejected = 0;
    std::uint64_t bytes_written = 0;
    double seconds = 0;
    Status status = Status::NotRun;
    String error;
    std::vector<String> warnings;
};

// The report of a run as a JSON document (RFC 8259, UTF-8); see docs/run-report.schema.json.
class RunReport {
public:
    // Takes in the steps of a job that has been read; none of them has run.
    void Describe(Configuration& configuration);
    // Notes when the run begins.
    void Begin(const String& job, const platform::LocalTime& utc);
    // The report of a step, by its position from 0.
    StepReport& Step(std::size_t index) { return steps_[index]; }
    bool HasStep(std::size_t index) const { return index < steps_.size(); }

    // Writes the document, secrets hidden. error: what ended the run; empty for nothing.
    // Fails with the messages of the file layer.
    bool Write(String& failure, const String& path, const SecretMask& mask, int status,
               const String& error, const platform::LocalTime& utc) const;

private:
    String job_;
    int edition_ = 1;
    platform::LocalTime started_{};
    std::vector<StepReport> steps_;
};
