// Times the line splitter alone: bench_line_splitter [--benchmark_filter=...]
#include "files/line_splitter.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr StringView kPlainLine =
    u"481516\tAnna Field\t70548.02\t2012-05-12\t2005-08-16 23:42:55\tYX28\t\t"
    u"late open rail (see paper box sent";
constexpr StringView kQuotedLine =
    u"\"481516\"\t\"Anna Field\"\t\"70548.02\"\t\"2012-05-12\"\t\"2005-08-16 23:42:55\"\t"
    u"\"YX28\"\t\"\"\t\"late open rail\t(see paper box sent\"";

void Split(benchmark::State& state, StringView line) {
    std::vector<StringView> fields;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        SplitLine(line, u'\t', u"\"", OuterQuotes::Strip, fields);
        benchmark::DoNotOptimize(fields.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(line.size() * sizeof(char16_t)));
}

// One field of this many characters: how fast the search itself is.
void SplitLongField(benchmark::State& state) {
    const String line(static_cast<std::size_t>(state.range(0)), u'x');
    Split(state, line);
}

}  // namespace

BENCHMARK_CAPTURE(Split, plain, kPlainLine);
BENCHMARK_CAPTURE(Split, quoted, kQuotedLine);
BENCHMARK(SplitLongField)->Arg(100)->Arg(10'000);

BENCHMARK_MAIN();
