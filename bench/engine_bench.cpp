// Speed of the chemistry engine: one pH point, a whole calculation with the
// longest pH sweep the arrays hold, and the CCPP and crossings of a row.
#include "engine/ccpp.h"
#include "engine/engine.h"
#include "numtext/numtext.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using velmora::CalcInputs;
using velmora::Engine;
using velmora::EquationFlags;

// The measured pH 7.5, and a sweep when steps is not 0.
CalcInputs inputs(double start = 0, double increment = 0, double steps = 0) {
    CalcInputs in;
    in.phEmpty = false;
    in.ph = 7.5;
    in.phStrict = 7.5;
    in.sweep = steps != 0;
    in.sweepStart = start;
    in.sweepIncrement = increment;
    in.sweepSteps = steps;
    return in;
}

// A typical drinking water, read with the Langelier equation and the
// limiting law, as Read Data leaves it.
void readSample(Engine& e, EquationFlags& flags) {
    e.rec.tds = 400;
    e.rec.temp = 25;
    e.rec.alkin = 200;
    e.rec.ca = 80;
    e.rec.mg = 24;
    e.rec.cl = 50;
    e.rec.so4 = 60;
    flags = EquationFlags{};
    flags.bllang = true;
    flags.bldebye = true;
    e.ionicactivity(flags);
}

void BM_ComputePoint(benchmark::State& state) {
    Engine e;
    EquationFlags flags;
    readSample(e, flags);
    const CalcInputs in = inputs();
    e.calculate(flags, in); // fixes ct at the measured point
    e.sw.ph(1) = 8.3;       // a sweep point
    for (auto _ : state) {
        e.sw.ipoint = 1;
        e.computepoint(flags, in);
        benchmark::DoNotOptimize(e.sw.li(1));
    }
}
BENCHMARK(BM_ComputePoint);

void BM_CalculateMeasuredPoint(benchmark::State& state) {
    Engine e;
    EquationFlags flags;
    readSample(e, flags);
    const CalcInputs in = inputs();
    for (auto _ : state) {
        auto out = e.calculate(flags, in);
        benchmark::DoNotOptimize(out.computed);
        benchmark::DoNotOptimize(e.sw.li(0));
    }
}
BENCHMARK(BM_CalculateMeasuredPoint);

// The measured point and 140 sweep points from pH 1.0 to 13.51.
void BM_Calculate140PointSweep(benchmark::State& state) {
    Engine e;
    EquationFlags flags;
    readSample(e, flags);
    const CalcInputs in = inputs(1.0, 0.09, 140);
    for (auto _ : state) {
        auto out = e.calculate(flags, in);
        if (out.sweepError) state.SkipWithError(out.sweepError->what());
        benchmark::DoNotOptimize(e.sw.li(140));
    }
    state.SetItemsProcessed(state.iterations() * 141);
}
BENCHMARK(BM_Calculate140PointSweep)->Unit(benchmark::kMicrosecond);

// The numbers of an output row of velmora-calc as shortest texts: the 23 of
// the measured point of the sample above, one row at a time and one number
// at a time.
std::vector<double> measuredRow() {
    Engine e;
    EquationFlags flags;
    readSample(e, flags);
    const CalcInputs in = inputs();
    e.calculate(flags, in);
    const auto& s = e.sw;
    const auto& r = e.rec;
    return {s.ph(0),   s.li(0),  s.ri(0), s.por(0), s.ai(0), s.dfi(0), s.lr(0), s.me(0),
            s.sl(0),   s.phs(0), s.ch(0), s.oh(0),  s.a0(0), s.a1(0),  s.a2(0), s.h2co3(0),
            s.hco3(0), s.co3(0), r.ionic, r.lanm,   r.land,  r.lant,   s.ct};
}

void BM_ShortestRow(benchmark::State& state) {
    const std::vector<double> row = measuredRow();
    std::vector<char> text(49 * row.size());
    for (auto _ : state) {
        char* end = velmora::fmt::shortestListTo(text.data(), row.data(), row.size(), ',');
        benchmark::DoNotOptimize(end);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(row.size()));
}
BENCHMARK(BM_ShortestRow);

void BM_ShortestOneAtATime(benchmark::State& state) {
    const std::vector<double> row = measuredRow();
    std::vector<char> text(49 * row.size());
    for (auto _ : state) {
        char* p = text.data();
        for (double x : row) {
            *p++ = ',';
            p = velmora::fmt::shortestTo(p, p + 48, x);
        }
        benchmark::DoNotOptimize(p);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(row.size()));
}
BENCHMARK(BM_ShortestOneAtATime);

// What --ccpp --crossings adds to a row: the CCPP of the measured point and
// the crossings of one set over a sweep from pH 6 to 9.9.
template <velmora::CrossingSet Set> void BM_CcppAndCrossings(benchmark::State& state) {
    Engine e;
    EquationFlags flags;
    readSample(e, flags);
    const CalcInputs in = inputs(6.0, 0.1, 40);
    const velmora::CalcOutcome out = e.calculate(flags, in);
    for (auto _ : state) {
        const velmora::CcppResult r = velmora::computeCcpp(e);
        benchmark::DoNotOptimize(r.ccpp);
        const auto c = velmora::findCrossings(e, out, Set);
        benchmark::DoNotOptimize(c.data());
    }
}
BENCHMARK(BM_CcppAndCrossings<velmora::CrossingSet::Neutral>)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CcppAndCrossings<velmora::CrossingSet::Table>)->Unit(benchmark::kMicrosecond);

void BM_Ccpp(benchmark::State& state) {
    Engine e;
    EquationFlags flags;
    readSample(e, flags);
    const CalcInputs in = inputs();
    e.calculate(flags, in);
    for (auto _ : state) {
        const velmora::CcppResult r = velmora::computeCcpp(e);
        benchmark::DoNotOptimize(r.ccpp);
    }
}
BENCHMARK(BM_Ccpp)->Unit(benchmark::kMicrosecond);

} // namespace
