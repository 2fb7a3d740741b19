#include "graphs/chartspace.h"

#include "numtext/numtext.h"

#include <QBarSeries>
#include <QBarSet>
#include <QCategoryAxis>
#include <QChart>
#include <QCoreApplication>
#include <QGraphicsLayout>
#include <QGraphicsSimpleTextItem>
#include <QLegend>
#include <QLineSeries>
#include <QPainter>
#include <QValueAxis>

#include <algorithm>
#include <cmath>
#include <vector>

namespace velmora {

namespace {

// The colours of the four series slots: the index, then the three species.
const QColor kSeriesColours[4] = {QColor(0, 51, 153), QColor(192, 0, 0), QColor(0, 128, 0),
                                  QColor(128, 0, 128)};
constexpr double kBarWidth = 0.5; // of a category
constexpr double kMarkerSize = 4; // Qt Charts 6.4 draws it as the radius
constexpr double kLabelGap = 7;   // pixels between a point and its label
constexpr int kLabelPixelsPerCategory = 34;

QFont makeFont(const FontSpec& font) {
    QFont f(font.family);
    f.setPointSizeF(font.size);
    f.setBold(font.bold);
    return f;
}

QFont plainFont(double size) {
    QFont f(QStringLiteral("Arial"));
    f.setPointSizeF(size);
    return f;
}

// A spreadsheet pattern of the axis as a printf format of Qt's value axis.
QString axisFormat(const QString& pattern) {
    const int point = int(pattern.indexOf(QLatin1Char('.')));
    if (!pattern.isEmpty() && pattern.count(QLatin1Char('0')) == pattern.size() - 1 && point >= 0)
        return QStringLiteral("%.%1f").arg(pattern.size() - point - 1);
    return QStringLiteral("%g");
}

// A chart that carries its own data labels: text items placed at the points,
// placed again whenever the plot area moves.
class GraphChart : public QChart {
public:
    struct Label {
        QGraphicsRectItem* item; // the label's ground, its text a child
        double x, y;
        bool column;
        LabelPosition position;
        std::optional<double> nextY; // the line's next point, one category on
    };

    // Labels of lines sit on a veil of the plot area's own colour, so that a
    // line passing behind one does not cross its digits.
    explicit GraphChart(QColor ground) : ground_(ground) {
        connect(this, &QChart::plotAreaChanged, this, [this] { placeLabels(); });
    }

    void addLabel(int slot, const QString& text, double x, double y, bool column,
                  LabelPosition position, std::optional<double> nextY) {
        auto* item = new QGraphicsRectItem(this);
        item->setPen(Qt::NoPen);
        // (a column's label would cut into the neighbouring columns: no ground)
        if (!column) {
            QColor veil = ground_; // the line still shows through, faintly
            veil.setAlpha(200);
            item->setBrush(veil);
        }
        item->setZValue(20);
        auto* textItem = new QGraphicsSimpleTextItem(text, item);
        textItem->setFont(plainFont(7));
        textItem->setBrush(Qt::black);
        item->setRect(textItem->boundingRect().adjusted(-1, 0, 1, 0));
        labels_.push_back({item, x, y, column, position, nextY});
        texts_[std::size_t(slot)].append(text);
    }

    void placeLabels() {
        if (series().isEmpty()) return;
        QAbstractSeries* anchor = series().first();
        for (const Label& l : labels_) {
            const QPointF p = mapToPosition(QPointF(l.x, l.y), anchor);
            const QRectF r = l.item->boundingRect();
            QPointF at;
            if (l.column) { // beyond the end of the bar
                at = QPointF(p.x() - r.width() / 2, l.y < 0 ? p.y() + 2 : p.y() - r.height() - 2);
            } else if (l.position == LabelPosition::Top) {
                at = QPointF(p.x() - r.width() / 2, p.y() - r.height() - kLabelGap + 2);
            } else { // right of the point, on the side away from the line going on
                at = QPointF(p.x() + kLabelGap, p.y() - r.height() / 2);
                if (l.nextY) {
                    const double next = mapToPosition(QPointF(l.x + 1, *l.nextY), anchor).y();
                    if (next < p.y() - 1)
                        at.setY(p.y() + 1);
                    else if (next > p.y() + 1)
                        at.setY(p.y() - r.height() - 1);
                }
            }
            l.item->setPos(at);
            l.item->setVisible(plotArea().adjusted(-1, -1, 1, 1).contains(p));
        }
    }

    const std::array<QStringList, 4>& texts() const { return texts_; }

private:
    QColor ground_;
    std::vector<Label> labels_;
    std::array<QStringList, 4> texts_;
};

// The elements drawn along the category axis: those of the categories of the
// first series that has some; without categories, every element that holds
// a value in some series.
std::vector<int> drawnElements(const ChartState& s, bool& numbered) {
    std::vector<int> drawn;
    for (const auto& slot : s.series) {
        if (!slot || !slot->categories) continue;
        for (int i = 0; i < 141; ++i)
            if ((*slot->categories)[std::size_t(i)]) drawn.push_back(i);
        numbered = false;
        return drawn;
    }
    numbered = true;
    for (int i = 0; i < 141; ++i)
        for (const auto& slot : s.series)
            if (slot && slot->values && (*slot->values)[std::size_t(i)]) {
                drawn.push_back(i);
                break;
            }
    return drawn;
}

} // namespace

QChart* buildChart(const ChartState& s, int widthHint) {
    auto* chart = new GraphChart(s.plotFill.value_or(QColor(Qt::white)));
    chart->setAnimationOptions(QChart::NoAnimation);
    chart->setBackgroundRoundness(0);
    chart->setBackgroundBrush(Qt::white);
    chart->setBackgroundPen(Qt::NoPen);
    chart->setDropShadowEnabled(false);
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    chart->setMargins(QMargins(8, 6, 8, 6));
    if (s.plotFill) {
        chart->setPlotAreaBackgroundBrush(*s.plotFill);
        chart->setPlotAreaBackgroundPen(QPen(Qt::gray));
        chart->setPlotAreaBackgroundVisible(true);
    }
    if (s.titleVisible && !s.title.isEmpty()) {
        chart->setTitle(s.title);
        chart->setTitleFont(makeFont(s.titleFont));
        chart->setTitleBrush(s.titleFont.colour);
    }
    chart->legend()->setVisible(s.legend);
    chart->legend()->setAlignment(Qt::AlignRight);
    chart->legend()->setFont(plainFont(8));
    chart->legend()->setLabelColor(Qt::black);

    bool numbered = false;
    const std::vector<int> drawn = drawnElements(s, numbered);
    const int count = int(drawn.size());

    // The category axis: one category a drawn element, as many labels as fit.
    auto* x = new QCategoryAxis;
    x->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    x->setRange(-0.5, std::max(count, 1) - 0.5);
    const PointValues* cats = nullptr;
    for (const auto& slot : s.series)
        if (!cats && slot && slot->categories) cats = &*slot->categories;
    const int fit = std::max(1, widthHint / kLabelPixelsPerCategory);
    const int step = std::max(1, (count + fit - 1) / fit);
    for (int p = 0; p < count; p += step) {
        const int i = drawn[std::size_t(p)];
        QString text = numbered ? QString::number(p + 1)
                                : QString::fromStdString(fmt::numberText(*(*cats)[std::size_t(i)]));
        while (x->categoriesLabels().contains(text)) // equal pH values stay apart
            text += QChar(0x200B);
        x->append(text, p);
    }
    x->setLabelsFont(plainFont(s.bottom.tickSize));
    x->setLabelsBrush(Qt::black);
    x->setGridLineVisible(false);
    // (Qt Charts places the title of an axis without categories at the
    // chart's corner: an empty axis has none)
    if (s.bottom.titleVisible && count > 0) {
        x->setTitleText(s.bottom.title);
        x->setTitleFont(makeFont(s.bottom.titleFont));
        x->setTitleBrush(s.bottom.titleFont.colour);
    }

    auto* y = new QValueAxis;
    y->setLabelsFont(plainFont(s.left.tickSize));
    y->setLabelsBrush(Qt::black);
    y->setLabelFormat(axisFormat(s.left.numberFormat));
    y->setGridLinePen(QPen(QColor(160, 160, 160), 1));
    if (s.left.titleVisible) {
        y->setTitleText(s.left.title);
        y->setTitleFont(makeFont(s.left.titleFont));
        y->setTitleBrush(s.left.titleFont.colour);
    }
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);

    // The series: the columns together in one clustered group, then the lines.
    double lo = HUGE_VAL, hi = -HUGE_VAL;
    bool anyColumn = false;
    QBarSeries* bars = nullptr;
    int columnCount = 0;
    for (const auto& slot : s.series)
        if (slot && slot->type == ChartType::ColumnClustered) ++columnCount;
    int columnIndex = 0;
    for (std::size_t k = 0; k < s.series.size(); ++k) {
        if (!s.series[k]) continue;
        const SeriesState& slot = *s.series[k];
        const QColor colour = kSeriesColours[k];
        const bool column = slot.type == ChartType::ColumnClustered;
        const auto valueAt = [&](int p) -> std::optional<double> {
            if (!slot.values) return std::nullopt;
            return (*slot.values)[std::size_t(drawn[std::size_t(p)])];
        };
        if (column) {
            anyColumn = true;
            if (!bars) {
                bars = new QBarSeries;
                bars->setBarWidth(kBarWidth);
            }
            auto* set = new QBarSet(slot.caption);
            set->setColor(colour);
            set->setBorderColor(colour.darker(130));
            for (int p = 0; p < count; ++p)
                set->append(valueAt(p).value_or(0.0));
            bars->append(set);
        } else {
            auto* line = new QLineSeries;
            line->setName(slot.caption);
            line->setPen(QPen(colour, 2));
            for (int p = 0; p < count; ++p)
                if (const auto v = valueAt(p)) line->append(p, *v);
            chart->addSeries(line); // (the theme sets the markers: set them after it)
            if (slot.type == ChartType::LineMarkers) {
                line->setPointsVisible(true);
                line->setMarkerSize(kMarkerSize);
            }
            line->attachAxis(x);
            line->attachAxis(y);
        }
        // Bar k of a group of m stands off the middle of its category.
        const double offset =
            column ? -kBarWidth / 2 + (columnIndex + 0.5) * kBarWidth / columnCount : 0.0;
        for (int p = 0; p < count; ++p) {
            const auto v = valueAt(p);
            if (!v) continue;
            lo = std::min(lo, *v);
            hi = std::max(hi, *v);
            if (slot.labelsShown)
                chart->addLabel(
                    int(k),
                    QString::fromStdString(fmt::dataLabel(*v, slot.labelFormat.toStdString())),
                    p + offset, *v, column, slot.labelPosition,
                    column || p + 1 >= count ? std::nullopt : valueAt(p + 1));
        }
        if (column) ++columnIndex;
    }
    if (bars) {
        chart->addSeries(bars);
        bars->attachAxis(x);
        bars->attachAxis(y);
    }

    // The value range with some room for the labels above the highest point.
    if (lo > hi) {
        lo = 0;
        hi = 1;
    }
    if (anyColumn) {
        lo = std::min(lo, 0.0);
        hi = std::max(hi, 0.0);
    }
    if (hi - lo < 1e-300) {
        const double pad = lo == 0 ? 1.0 : std::fabs(lo) * 0.1;
        lo -= pad;
        hi += pad;
    } else {
        const double pad = (hi - lo) * 0.08;
        // values that are all positive keep the axis at zero or above
        lo = lo >= 0 ? std::max(0.0, lo - pad) : lo - pad;
        hi += pad;
    }
    y->setRange(lo, hi);
    y->applyNiceNumbers();
    chart->placeLabels();
    return chart;
}

std::array<QStringList, 4> dataLabelTexts(QChart* chart) {
    if (auto* g = dynamic_cast<GraphChart*>(chart)) return g->texts();
    return {};
}

QImage renderChart(const ChartState& state, QSize size) {
    QChartView view(buildChart(state, size.width())); // (owns the chart)
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.setFrameShape(QFrame::NoFrame);
    view.setRenderHint(QPainter::Antialiasing);
    view.resize(size);
    view.show();
    QCoreApplication::sendPostedEvents();
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    view.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)), view.rect());
    painter.end();
    return image;
}

ChartSpace::ChartSpace(QWidget* parent) : QChartView(parent) {
    setFrameShape(QFrame::NoFrame);
    setRenderHint(QPainter::Antialiasing);
    redraw();
}

void ChartSpace::clearAndAddChart() {
    state_ = ChartState{};
    redraw();
}

void ChartSpace::redraw() {
    QChart* old = chart();
    builtWidth_ = width();
    setChart(buildChart(state_, builtWidth_));
    delete old;
}

void ChartSpace::resizeEvent(QResizeEvent* event) {
    QChartView::resizeEvent(event);
    // the number of category labels that fit depends on the width
    if (std::abs(width() - builtWidth_) >= kLabelPixelsPerCategory) redraw();
}

} // namespace velmora
