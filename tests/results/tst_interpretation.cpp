// The interpretation of each index: every boundary of every table, and the
// interpretation window and the Results window's buttons that show them.
#include "results/results.h"
#include "tests/results/resultstest.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QToolTip>

#include <cmath>

using namespace velmora;
using interp::Index;
using test::interpretationButton;
using test::measured;

Q_DECLARE_METATYPE(velmora::interp::Index)

namespace {

const QColor kRed(255, 0, 0), kSalmon(255, 128, 128), kOrange(255, 128, 0),
    kLightOrange(255, 192, 128), kYellow(255, 255, 0), kPaleYellow(255, 255, 192),
    kGreen(0, 255, 0), kLightGreen(128, 255, 128), kPaleGreen(192, 255, 192);

double below(double x) {
    return std::nextafter(x, -INFINITY);
}
double above(double x) {
    return std::nextafter(x, INFINITY);
}
QColor colourOf(const interp::Row* row) {
    return row ? QColor(row->colour.r, row->colour.g, row->colour.b) : QColor();
}

// The colour the button really paints, away from its caption.
QColor paintedColour(QWidget* w) {
    const QImage img = w->grab().toImage();
    return img.pixelColor(5, img.height() / 2);
}

// A value well inside a row's range.
double inside(const interp::Range& r) {
    if (r.low.value && r.high.value) return (*r.low.value + *r.high.value) / 2;
    if (r.low.value) return *r.low.value + 1;
    if (r.high.value) return *r.high.value - 1;
    return 0;
}

void publishAndShow() {
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
}

} // namespace

class TestInterpretation : public QObject {
    Q_OBJECT

private:
    test::RecordingPlatform platform_;

private slots:
    void init() {
        theOptions().index = IndexFlags{true, true, true, true, true, true, true, true};
        for (Index i : interp::allIndices())
            measured(i) = 0;
    }
    void cleanup() { test::unloadResultWindows(); }

    // At each boundary: the colours just below, at and just above it, and
    // whether the boundary belongs to the row below it.
    void boundaries_data() {
        QTest::addColumn<Index>("index");
        QTest::addColumn<double>("bound");
        QTest::addColumn<QColor>("below");
        QTest::addColumn<QColor>("at");
        QTest::addColumn<QColor>("above");
        QTest::addColumn<bool>("closedBelow");
        const struct {
            Index index;
            double bound;
            QColor below, at, above;
            bool closedBelow;
        } rows[] = {
            {Index::Langelier, -5, kRed, kRed, kRed, true},
            {Index::Langelier, -4, kRed, kRed, kRed, true},
            {Index::Langelier, -3, kRed, kRed, kOrange, true},
            {Index::Langelier, -2, kOrange, kOrange, kLightOrange, true},
            {Index::Langelier, -1, kLightOrange, kLightOrange, kYellow, true},
            {Index::Langelier, -0.5, kYellow, kYellow, kGreen, true},
            {Index::Langelier, 0, kGreen, kGreen, kGreen, false},
            {Index::Langelier, 0.5, kGreen, kYellow, kYellow, false},
            {Index::Langelier, 1, kYellow, kLightOrange, kLightOrange, false},
            {Index::Langelier, 2, kLightOrange, kOrange, kOrange, false},
            {Index::Langelier, 3, kOrange, kRed, kRed, false},
            {Index::Langelier, 4, kRed, kRed, kRed, false},
            {Index::Ryznar, 5.5, kRed, kSalmon, kSalmon, false},
            {Index::Ryznar, 6.2, kSalmon, kGreen, kGreen, false},
            {Index::Ryznar, 6.8, kGreen, kSalmon, kSalmon, false},
            {Index::Ryznar, 8.5, kSalmon, kRed, kRed, false},
            {Index::Puckorius, 5.9, kRed, kSalmon, kSalmon, false},
            {Index::Puckorius, 6.1, kSalmon, kGreen, kGreen, false},
            {Index::Aggressiveness, 10, kRed, kLightOrange, kLightOrange, false},
            {Index::Aggressiveness, 12, kLightOrange, kLightOrange, kLightGreen, true},
            {Index::DrivingForce, 0.98, kPaleYellow, kPaleYellow, kPaleGreen, true},
            {Index::DrivingForce, 1.02, kPaleGreen, kPaleYellow, kPaleYellow, false},
            {Index::SaturationLevel, 0.98, kPaleYellow, kPaleYellow, kPaleGreen, true},
            {Index::SaturationLevel, 1.02, kPaleGreen, kPaleYellow, kPaleYellow, false},
            {Index::MomentaryExcess, -0.0001, kPaleYellow, kPaleGreen, kPaleGreen, false},
            {Index::MomentaryExcess, 0.0001, kPaleGreen, kPaleGreen, kPaleYellow, true},
            {Index::LarsonSkold, 0.8, kRed, kSalmon, kSalmon, false},
            // 1.2 lies between "0.8 <= LR < 1.2" and "LR > 1.2": the upper band
            {Index::LarsonSkold, 1.2, kSalmon, kRed, kRed, false},
        };
        for (const auto& r : rows)
            QTest::addRow("%s %g", interp::buttonName(r.index), r.bound)
                << r.index << r.bound << r.below << r.at << r.above << r.closedBelow;
    }
    void boundaries() {
        QFETCH(Index, index);
        QFETCH(double, bound);
        QFETCH(QColor, below);
        QFETCH(QColor, at);
        QFETCH(QColor, above);
        QFETCH(bool, closedBelow);
        const interp::Row* row = interp::rowFor(index, bound);
        QCOMPARE(colourOf(interp::rowFor(index, ::below(bound))), below);
        QCOMPARE(colourOf(row), at);
        QCOMPARE(colourOf(interp::rowFor(index, ::above(bound))), above);
        QCOMPARE(row == interp::rowFor(index, ::below(bound)), closedBelow);
        QCOMPARE(row == interp::rowFor(index, ::above(bound)), !closedBelow);
    }

    void rangesOfEveryTableLeaveNoOtherGap() {
        // the only value the written ranges leave out is Larson-Skold 1.2
        for (Index index : interp::allIndices()) {
            for (int k = -20000; k <= 20000; ++k) {
                const double v = k / 1000.0;
                int matches = 0;
                for (const interp::Row& r : interp::table(index))
                    matches += r.range.contains(v);
                const bool gap = index == Index::LarsonSkold && v == 1.2;
                const bool overlap = index == Index::Langelier && v == 0;
                QCOMPARE(matches, gap ? 0 : overlap ? 2 : 1);
                QVERIFY(interp::rowFor(index, v) != nullptr);
            }
        }
        QVERIFY(!interp::matchingRow(Index::LarsonSkold, 1.2));
    }

    // The window and the button show the row of the measured value.
    void windowAndButtonShowTheRow() {
        for (Index index : interp::allIndices())
            measured(index) = inside(interp::table(index).back().range);
        publishAndShow();
        for (Index index : interp::allIndices()) {
            const interp::Row& row = interp::table(index).back();
            QCOMPARE(frmresult::instance()->buttonColour(index), colourOf(&row));
            QCOMPARE(paintedColour(interpretationButton(index)), colourOf(&row));
            interpretationButton(index)->click();
            frmenterper* w = frmenterper::instance();
            QVERIFY(w->isVisible());
            QCOMPARE(w->windowTitle(), QString::fromLatin1(interp::windowCaption(index)));
            QCOMPARE(w->backColour(), colourOf(&row));
            QCOMPARE(frmresult::instance()->interpretationText(),
                     QString::fromStdString(row.text()));
            QCOMPARE(w->text1()->toPlainText(),
                     QString::fromStdString(row.text()).replace("\r\n", "\n"));
        }
    }

    void boldStaysUntilClosed() {
        measured(Index::Ryznar) = 7.1;
        publishResultsWindows(theEngine(), theOptions());
        interpretationButton(Index::Ryznar)->click();
        QVERIFY(!frmenterper::instance()->text1()->font().bold());
        interpretationButton(Index::Langelier)->click();
        QVERIFY(frmenterper::instance()->text1()->font().bold());
        // another index, or hidden and shown again: still bold
        interpretationButton(Index::SaturationLevel)->click();
        frmenterper::instance()->hide();
        interpretationButton(Index::Ryznar)->click();
        QVERIFY(frmenterper::instance()->text1()->font().bold());
        test::unload<frmenterper>();
        interpretationButton(Index::Ryznar)->click();
        QVERIFY(!frmenterper::instance()->text1()->font().bold());
    }

    void everyTextFitsTheBox() {
        // readable whole, without scrolling, in regular and in bold type
        publishResultsWindows(theEngine(), theOptions());
        for (bool bold : {false, true}) {
            if (bold) interpretationButton(Index::Langelier)->click();
            for (Index index : interp::allIndices()) {
                for (const interp::Row& row : interp::table(index)) {
                    measured(index) = inside(row.range);
                    interpretationButton(index)->click();
                    QPlainTextEdit* t = frmenterper::instance()->text1();
                    QCoreApplication::processEvents();
                    QCOMPARE(t->toPlainText().count('\n') + 1, int(row.lines.size()));
                    QVERIFY2(t->verticalScrollBar()->maximum() == 0,
                             qPrintable(QStringLiteral("%1, %2 needs scrolling")
                                            .arg(interp::buttonCaption(index))
                                            .arg(QString::fromStdString(row.range.text()))));
                }
            }
        }
    }

    void colourShowsAroundTheText() {
        measured(Index::Ryznar) = 6.5;
        publishResultsWindows(theEngine(), theOptions());
        interpretationButton(Index::Ryznar)->click();
        frmenterper* w = frmenterper::instance();
        QPlainTextEdit* t = w->text1();
        QVERIFY(w->width() > t->width() + 10 && w->height() > t->height() + 10);
        const QImage img = w->grab().toImage();
        for (QPoint p : {QPoint(w->width() - 3, w->height() - 3), QPoint(w->width() - 3, 5),
                         QPoint(5, w->height() - 3)})
            QCOMPARE(img.pixelColor(p), kGreen);
        // blue text on the tooltip colour inside the box
        QCOMPARE(t->palette().color(QPalette::Text), QColor(0, 0, 255));
        QCOMPARE(t->palette().color(QPalette::Base),
                 QToolTip::palette().color(QPalette::ToolTipBase));
    }

    void noColourForValuesOutsideEveryRow() {
        // a value that is not a number has no explanation: the window says
        // nothing (not another index's text) and the button keeps its colour
        measured(Index::Ryznar) = 7.1;
        measured(Index::Puckorius) = 5;
        publishAndShow();
        interpretationButton(Index::Ryznar)->click();
        measured(Index::Puckorius) = std::nan("");
        showResultsWindow(theEngine(), theOptions());
        QCOMPARE(frmresult::instance()->buttonColour(Index::Puckorius), kRed);
        interpretationButton(Index::Puckorius)->click();
        QVERIFY(frmenterper::instance()->text1()->toPlainText().isEmpty());
    }
};

VELMORA_GUI_TEST_MAIN(TestInterpretation)
#include "tst_interpretation.moc"
