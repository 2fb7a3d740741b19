// The chart control of the graph window: one chart with up to four series
// slots over a category axis, each a clustered column, a line or a line with
// markers, with titles, axis titles, a legend, a plot-area fill and data
// labels in the program's number formats.
//
// The chart is held as a plain description (ChartState) that the handlers
// change; redraw() turns it into a Qt chart. The same description drawn at
// another size gives the exported picture.
#pragma once

#include <QChartView>
#include <QColor>
#include <QImage>
#include <QString>

#include <array>
#include <optional>

class QChart;
class QGraphicsSimpleTextItem;
class QPainter;

namespace velmora {

// Codes of the chart control the window was designed with.
enum class ChartType { ColumnClustered = 0, Line = 6, LineMarkers = 7 };
enum class LabelPosition { Automatic = 0, Top = 8 };

// Elements 0 to 140; an element that holds no point is empty.
using PointValues = std::array<std::optional<double>, 141>;

struct FontSpec {
    QString family = QStringLiteral("Arial");
    double size = 10;
    bool bold = false;
    QColor colour = Qt::black;
};

struct SeriesState {
    QString caption;
    std::optional<PointValues> categories; // none until set
    std::optional<PointValues> values;     // none until set
    ChartType type = ChartType::ColumnClustered;
    // the series' data labels
    bool labelsShown = false;
    QString labelFormat;
    LabelPosition labelPosition = LabelPosition::Automatic;
};

struct AxisState {
    bool titleVisible = false;
    QString title;
    FontSpec titleFont{QStringLiteral("Arial"), 10, true};
    double tickSize = 10;
    QString numberFormat; // empty: general
};

struct ChartState {
    std::optional<QColor> plotFill; // none: the plain white plot area
    bool titleVisible = false;
    QString title;
    FontSpec titleFont{QStringLiteral("Arial"), 12, true};
    AxisState bottom, left;
    bool legend = false;
    std::array<std::optional<SeriesState>, 4> series;
};

// A Qt chart drawn from a ChartState. `widthHint` (pixels) decides how many
// category labels fit on the axis.
QChart* buildChart(const ChartState& state, int widthHint);

// The chart drawn at `size` pixels into a picture (no screen involved).
QImage renderChart(const ChartState& state, QSize size);

// The texts of the data labels a chart built here shows, slot by slot: empty
// for a slot without visible labels.
std::array<QStringList, 4> dataLabelTexts(QChart* chart);

class ChartSpace : public QChartView {
    Q_OBJECT

public:
    explicit ChartSpace(QWidget* parent = nullptr);

    // The chart being described; redraw() shows the changes.
    ChartState& state() { return state_; }
    const ChartState& state() const { return state_; }
    // Clears the chart space and adds a new, empty chart.
    void clearAndAddChart();
    // Rebuilds the drawn chart from the description.
    void redraw();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    ChartState state_;
    int builtWidth_ = 0;
};

} // namespace velmora
