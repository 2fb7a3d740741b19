// Throughput of the batch calculator: a generated file of a million samples
// with the measured point only, and fewer samples each with a pH sweep, on
// one worker, and the measured point with one worker per core. Input and
// output stay in memory, so the figures are the calculator's own.
#include "batch/run.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>

namespace {

using namespace velmora::batch;

// Realistic waters for the Langelier equation: temperature, pH, alkalinity,
// calcium and dissolved solids, written as a lab export writes them.
std::string samples(int count) {
    std::mt19937 random(20240611);
    std::uniform_real_distribution<double> t(5, 60), ph(6, 9), alk(20, 400), ca(10, 200),
        tds(100, 2000);
    std::string text = "sample,t,ph,alk,ca,tds\n";
    text.reserve(static_cast<std::size_t>(count) * 40);
    char line[128];
    for (int i = 1; i <= count; ++i) {
        const int n = std::snprintf(line, sizeof line, "S%d,%.1f,%.2f,%.0f,%.1f,%.0f\n", i,
                                    t(random), ph(random), alk(random), ca(random), tds(random));
        text.append(line, static_cast<std::size_t>(n));
    }
    return text;
}

// Counts what it is given and keeps nothing.
class NullSink : public ByteSink {
public:
    void write(const char*, std::size_t n) override { bytes += n; }
    std::size_t bytes = 0;
};

void run(benchmark::State& state, const std::string& input, const Options& options, int rows,
         int pointsPerRow) {
    for (auto _ : state) {
        StringSource source(input);
        NullSink sink;
        const int status = runBatch(options, source, sink);
        benchmark::DoNotOptimize(status);
        benchmark::DoNotOptimize(sink.bytes);
        if (status != 0) state.SkipWithError("a sample produced a message row");
    }
    state.SetItemsProcessed(state.iterations() * rows);
    state.counters["points/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * rows * pointsPerRow, benchmark::Counter::kIsRate);
}

// Samples per second with the measured point only (the items/s figure).
void BM_MeasuredPointSamples(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    const std::string input = samples(rows);
    run(state, input, parseCommandLine({"--jobs", "1"}), rows, 1);
}
BENCHMARK(BM_MeasuredPointSamples)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(3);

// The same with one worker per core (real time: the workers' CPU time is
// not the benchmark thread's).
void BM_MeasuredPointSamplesEveryCore(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    const std::string input = samples(rows);
    run(state, input, Options{}, rows, 1);
}
BENCHMARK(BM_MeasuredPointSamplesEveryCore)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

// The same samples with a sweep each: 6 points from pH 6.5 and 140 points
// from pH 12.95 down (7 and 141 output rows per sample).
void BM_SweptSamples(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    const int steps = static_cast<int>(state.range(1));
    const std::string input = samples(rows);
    const Options options =
        parseCommandLine({"--jobs", "1", "--sweep", steps == 5 ? "6.5,0.5,5" : "12.95,-0.05,140"});
    run(state, input, options, rows, steps + 1);
}
BENCHMARK(BM_SweptSamples)
    ->Args({100000, 5})
    ->Args({10000, 140})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

} // namespace
