// Speed of the graph window's output: the chart of the longest pH sweep (140
// points, lines with markers and data labels) drawn at 800 x 400 pixels,
// reduced to a palette and written as GIF; and the two steps on their own.
// Runs offscreen.
#include "engine/engine.h"
#include "graphs/chartspace.h"
#include "graphs/gifwriter.h"

#include <QApplication>
#include <QBuffer>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>

namespace {

using namespace velmora;

ChartState sweepChart() {
    ChartState s;
    s.plotFill = QColor(255, 255, 192);
    s.titleVisible = true;
    s.title = QStringLiteral("Langelier index");
    s.titleFont = FontSpec{QStringLiteral("Times New Roman"), 10, true};
    s.bottom.titleVisible = true;
    s.bottom.title = QStringLiteral("pH");
    s.bottom.tickSize = s.left.tickSize = 7;
    s.legend = true;
    SeriesState index;
    index.caption = QStringLiteral("LI index");
    index.type = ChartType::LineMarkers;
    index.labelsShown = true;
    index.labelFormat = QStringLiteral("0.000");
    PointValues ph{}, li{};
    for (int i = 1; i <= 140; ++i) {
        ph[std::size_t(i)] = 4.0 + 0.05 * i;
        li[std::size_t(i)] = -2.0 + 0.03 * i + 0.1 * std::sin(i * 0.2);
    }
    index.categories = ph;
    index.values = li;
    s.series[0] = index;
    return s;
}

void BM_RenderChartAndWriteGif(benchmark::State& state) {
    const ChartState chart = sweepChart();
    for (auto _ : state) {
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        const QImage picture = renderChart(chart, QSize(800, 400));
        if (!writeGif(picture, out)) state.SkipWithError("GIF not written");
        benchmark::DoNotOptimize(out.data().size());
    }
}
BENCHMARK(BM_RenderChartAndWriteGif)->Unit(benchmark::kMillisecond);

void BM_RenderChart(benchmark::State& state) {
    const ChartState chart = sweepChart();
    for (auto _ : state)
        benchmark::DoNotOptimize(renderChart(chart, QSize(800, 400)).constBits());
}
BENCHMARK(BM_RenderChart)->Unit(benchmark::kMillisecond);

void BM_WriteGif(benchmark::State& state) {
    const QImage picture = renderChart(sweepChart(), QSize(800, 400));
    for (auto _ : state) {
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        writeGif(picture, out);
        benchmark::DoNotOptimize(out.data().size());
    }
}
BENCHMARK(BM_WriteGif)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
