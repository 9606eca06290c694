// Times what each target needs for a row: bench_target [--benchmark_filter=...]
//
// row/TYPE composes a row, encodes it and writes it to the null device; bytes/TYPE only encodes and
// writes the same text. The difference is what composing costs.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "base/utf8.h"
#include "config/configuration.h"
#include "consumers/data_consumer.h"
#include "core/sql_types.h"
#include "files/dfile.h"
#include "platform/clock.h"
#include "run/logger_console.h"

namespace {

constexpr const char* kNowhere = "/dev/null";

struct Column {
    const char16_t* name;
    std::int32_t data_type;
    const char16_t* literal_mark;
    const char16_t* value;
};
constexpr Column kRow[] = {
    {u"id", kSqlInteger, u"", u"481516"},
    {u"customer", kSqlWVarchar, u"'", u"Anna Field"},
    {u"amount", kSqlNumeric, u"", u"70548.02"},
    {u"ordered", kSqlWVarchar, u"'", u"2012-05-12"},
    {u"changed_at", kSqlWVarchar, u"'", u"2005-08-16 23:42:55"},
    {u"code", kSqlWVarchar, u"'", u"YX28"},
    {u"remark", kSqlWVarchar, u"'", u""},
    {u"note", kSqlWVarchar, u"'", u"late open rail (see paper box sent"},
};

RowSet MakeRow() {
    RowSet rows;
    for (const Column& column : kRow) {
        rows.Columns.emplace_back(column.name, column.data_type, u"", 0);
        rows.Columns.back().LiteralPrefix = column.literal_mark;
        rows.Columns.back().LiteralSuffix = column.literal_mark;
        rows.Row.push_back({false, true, column.value});
    }
    return rows;
}

// A target of a one-step job, open and prepared.
class OpenTarget {
public:
    OpenTarget(const char* type, const std::string& file)
        : configuration_(platform::SystemClock()), rows_(MakeRow()) {
        const std::filesystem::path job =
            std::filesystem::temp_directory_path() / "bench_target.qpr";
        std::ofstream(job)
            << "Step 1\nTarget\nType=" << type << "\nName=" << file
            << "\nOverwrite=1\nTable=article\nset=set\nrow=row\nitem=item\nname=name\n";
        const SectionSettings settings(configuration_, Section::Target);
        Quillon::LoggerConsole logger;
        String error;
        if (!configuration_.Read(error, FromPath(job)) ||
            !DataConsumers::DataConsumer::Create(error, settings, target_, logger, 0) ||
            !target_->Open(error, settings) || !target_->Prepare(error, rows_)) {
            std::cerr << type << ": " << ToUtf8(error) << '\n';
            std::exit(1);
        }
        std::filesystem::remove(job);
    }

    bool WriteRow() {
        String error;
        return target_->Write(error, rows_);
    }
    std::uint64_t WrittenSize() const { return target_->WrittenSize(); }

    static String FromPath(const std::filesystem::path& path) {
        String text;
        FromUtf8(path.string(), text);
        return text;
    }

private:
    Configuration configuration_;
    RowSet rows_;
    std::unique_ptr<DataConsumers::DataConsumer> target_;
};

void WriteRows(benchmark::State& state, const char* type) {
    OpenTarget target(type, kNowhere);
    target.WriteRow();  // with a header row, where there is one
    const std::uint64_t before = target.WrittenSize();
    for (auto iteration : state) {
        static_cast<void>(iteration);
        if (!target.WriteRow()) state.SkipWithError("a row was refused");
    }
    state.counters["bytes"] = static_cast<double>(target.WrittenSize() - before) /
                              static_cast<double>(state.iterations());
}

// The text of the row behind the first one.
String ComposedRow(const char* type) {
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "bench_target.out";
    std::filesystem::remove(file);
    std::size_t size = 0;
    {
        OpenTarget target(type, file.string());
        target.WriteRow();
        size = static_cast<std::size_t>(target.WrittenSize());
        target.WriteRow();
        size = static_cast<std::size_t>(target.WrittenSize()) - size;
    }
    std::ifstream stream(file, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(stream), {});
    std::filesystem::remove(file);
    String text;
    FromUtf8(bytes.substr(bytes.size() - size), text);
    return text;
}

void WriteBytes(benchmark::State& state, const char* type, Encoding encoding) {
    const String text = ComposedRow(type);
    dFile file;
    ErrorRecord error;
    file.Open(error, OpenTarget::FromPath(kNowhere), encoding, false);
    for (auto iteration : state) {
        static_cast<void>(iteration);
        if (!file.Write(error, text)) state.SkipWithError("the text was refused");
    }
}

void Register(const char* type, Encoding encoding) {
    using std::string_literals::operator""s;
    benchmark::RegisterBenchmark(("row/"s + type).c_str(),
                                 [=](benchmark::State& state) { WriteRows(state, type); });
    benchmark::RegisterBenchmark(("bytes/"s + type).c_str(), [=](benchmark::State& state) {
        WriteBytes(state, type, encoding);
    });
}

}  // namespace

int main(int argc, char** argv) {
    Register("TextFile", Encoding::Ansi);
    Register("SQLScript", Encoding::Ansi);
    Register("XMLFile", Encoding::Utf8);
    Register("JSONFile", Encoding::Ansi);
    Register("ExcelFile", Encoding::Utf8);
    Register("HtmlFile", Encoding::Ansi);
    Register("RTFFile", Encoding::Utf8);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
