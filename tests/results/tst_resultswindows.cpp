// Publishing the measured-pH results into the Results and equilibrium data
// windows: which value lands in which box, the Larson-Skold display, the
// activity frames, the symbols window and the 800 x 600 placements; and the
// interpretation of each index, at every boundary of its table, in the
// interpretation window and the colours of the Results window's buttons.
#include "results/results.h"
#include "tests/results/resultstest.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>

#include <cmath>

using namespace velmora;
using interp::Index;
using test::interpretationButton;
using test::measured;

Q_DECLARE_METATYPE(velmora::interp::Index)

namespace {

using test::control;

QLineEdit* resultBox(const QString& name) {
    return control<QLineEdit>(frmresult::instance(), name);
}
QLineEdit* moreBox(const QString& name) {
    return control<QLineEdit>(frmmore::instance(), name);
}
QGroupBox* moreFrame(const char* name) {
    return control<QGroupBox>(frmmore::instance(), name);
}
QPushButton* moreButton() {
    return control<QPushButton>(frmresult::instance(), "cmdmore");
}

void setActivityEquation(const QString& which) {
    EquationFlags& e = theOptions().equations;
    e.bldavies = which == "davies";
    e.bldebye = which == "debye";
    e.bledebye = which == "edebye";
    e.blgun = which == "gun";
}

void publish() {
    publishResultsWindows(theEngine(), theOptions());
}
void show() {
    showResultsWindow(theEngine(), theOptions());
}

// The text shown stands for `value` (the formats keep 4 or more digits).
bool shows(const QLineEdit* box, double value) {
    return std::abs(box->text().toDouble() - value) <= 1e-3 * std::abs(value);
}

// The text fits the box's visible area.
bool fits(const QLineEdit* box) {
    return box->fontMetrics().horizontalAdvance(box->text()) <= box->width() - 8;
}

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

class TestResultsWindows : public QObject {
    Q_OBJECT

private:
    test::RecordingPlatform platform_;

private slots:
    void init() {
        platform_.screen = QSize(1024, 768);
        theOptions().index = IndexFlags{true, true, true, true, true, true, true, true};
        setActivityEquation("gun");
        theEngine() = Engine{};
    }
    void cleanup() { test::unloadResultWindows(); }

    void designStateComesBackAfterClosing() {
        for (bool again : {false, true}) {
            frmresult* w = frmresult::instance();
            QVERIFY(!w->isVisible());
            QVERIFY(!control<QGroupBox>(w, "fraindex")->isEnabled());
            QVERIFY(resultBox("txtlan")->text().isEmpty());
            for (Index i : interp::allIndices())
                QVERIFY(!w->buttonColour(i).isValid());
            QVERIFY(!moreFrame("fradavies")->isEnabled() && !moreFrame("fradebye")->isEnabled());
            QVERIFY(moreFrame("frmwater")->isEnabled());
            for (QLineEdit* b : frmmore::instance()->findChildren<QLineEdit*>())
                QVERIFY(b->text().isEmpty());
            if (again) break;
            // hidden windows keep what they show; closed ones are unloaded
            theEngine().sw.li(0) = 1;
            setActivityEquation("davies");
            publish();
            show();
            moreButton()->click();
            frmresult::instance()->hide();
            frmmore::instance()->hide();
            QCOMPARE(resultBox("txtlan")->text(), "1");
            QVERIFY(moreFrame("fradavies")->isEnabled());
            test::unload<frmmore>();
            test::unload<frmresult>();
            QVERIFY(!frmresult::isLoaded() && !frmmore::isLoaded());
        }
    }

    // Every box shows its own quantity, in the index's format.
    void indexFormats_data() {
        QTest::addColumn<QString>("box");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("shown");
        QTest::newRow("LI") << "txtlan" << 0.123456 << "0.1235";
        QTest::newRow("RI") << "txtryz" << 1.23456 << "1.2346";
        QTest::newRow("PSI") << "txtpor" << 6.00004 << "6";
        QTest::newRow("DFI") << "txtdfi" << 0.5 << "5.000E-1";
        QTest::newRow("ME") << "txtme" << -0.000123 << "-1.230E-4";
        QTest::newRow("AI") << "txtai" << 12345.0 << "1.2345E4";
        QTest::newRow("SL") << "txtsl" << 25.0 << "2.500E1";
        QTest::newRow("LR") << "txtlr" << 0.0012345 << "1.2345E-3";
    }
    void indexFormats() {
        QFETCH(QString, box);
        QFETCH(double, value);
        QFETCH(QString, shown);
        SweepArrays& sw = theEngine().sw;
        const std::map<QString, PointArray*> arrays = {
            {"txtlan", &sw.li}, {"txtryz", &sw.ri}, {"txtpor", &sw.por}, {"txtdfi", &sw.dfi},
            {"txtme", &sw.me},  {"txtai", &sw.ai},  {"txtsl", &sw.sl},   {"txtlr", &sw.lr}};
        (*arrays.at(box))(0) = value;
        (*arrays.at(box))(1) = 99; // only the measured point is shown
        publish();
        QCOMPARE(resultBox(box)->text(), shown);
        QVERIFY(resultBox(box)->isEnabled());
        for (Index i : interp::allIndices())
            QVERIFY(test::interpretationButton(i)->isEnabled());
        QVERIFY(!frmresult::instance()->isVisible() && !frmmore::instance()->isVisible());
    }

    void equilibriumValues() {
        AnalysisRecord& r = theEngine().rec;
        SweepArrays& s = theEngine().sw;
        const std::pair<const char*, double*> boxes[] = {
            {"txta0", &s.a0(0)},   {"txta1", &s.a1(0)},       {"txta2", &s.a2(0)},
            {"txtco3", &s.co3(0)}, {"txtoh", &s.oh(0)},       {"txtch", &s.ch(0)},
            {"txtphs", &s.phs(0)}, {"txth2co3", &s.h2co3(0)}, {"txthco3", &s.hco3(0)},
            {"txtct", &s.ct},      {"txtpk1", &r.pk1},        {"txtpk2", &r.pk2},
            {"txtpkw", &r.pkw},    {"txtkw", &r.kw},          {"txtpks", &r.pks},
            {"txtck1", &r.ck1},    {"txtck2", &r.ck2},        {"txtckw", &r.ckw},
            {"txtcks", &r.cks},    {"txtpca", &r.pca},        {"txtpcks", &r.pcks},
            {"txtpck2", &r.pck2},  {"txtpckw", &r.pckw},      {"txti", &r.ionic}};
        double v = 1.25e-9;
        for (const auto& [box, value] : boxes)
            *value = v *= 3.1;
        publish();
        for (const auto& [box, value] : boxes)
            QVERIFY2(shows(moreBox(box), *value), qPrintable(moreBox(box)->text()));
    }

    void valuesAreNotClipped() {
        // the widest texts the formats produce fit their boxes
        SweepArrays& s = theEngine().sw;
        AnalysisRecord& r = theEngine().rec;
        s.li(0) = -12.34565;
        s.ri(0) = -12.3456;
        s.por(0) = 15.6789;
        s.dfi(0) = -1.2345e-100;
        s.me(0) = -1.2345e-12;
        s.ai(0) = 1.2345e13;
        s.sl(0) = -1.2345e-10;
        s.lr(0) = 1.2345e-10;
        r.kw = -1.2345e-14;
        r.ck2 = -1.2345e-11;
        s.ct = -1.2345e-10;
        r.lanm = 0.12345;
        r.adav = -1.2345e-10;
        setActivityEquation("davies");
        publish();
        frmresult::instance()->show();
        frmmore::instance()->show();
        QVERIFY(QTest::qWaitForWindowExposed(frmmore::instance()));
        for (QWidget* w : {static_cast<QWidget*>(frmresult::instance()),
                           static_cast<QWidget*>(frmmore::instance())})
            for (QLineEdit* b : w->findChildren<QLineEdit*>())
                QVERIFY2(fits(b), qPrintable(b->objectName() + ": " + b->text()));
    }

    // Not chosen, Larson-Skold is taken off by Show results (its button
    // keeps the colour it had) until More results or the next publication.
    void larsonSkoldNotChosen() {
        theEngine().sw.lr(0) = 0.5;
        publish();
        show();
        frmresult* w = frmresult::instance();
        const QColor before = w->buttonColour(Index::LarsonSkold);
        theOptions().index.bllr = false;
        theEngine().sw.lr(0) = 0.0012345;
        publish();
        show();
        QVERIFY(resultBox("txtlr")->text().isEmpty());
        QVERIFY(!resultBox("txtlr")->isEnabled() && !control<QLabel>(w, "lbllr")->isEnabled());
        QVERIFY(!test::interpretationButton(Index::LarsonSkold)->isEnabled());
        QCOMPARE(w->buttonColour(Index::LarsonSkold), before);
        QVERIFY(resultBox("txtlan")->isEnabled() && !resultBox("txtlan")->text().isEmpty());
        moreButton()->click();
        QCOMPARE(resultBox("txtlr")->text(), "1.2345E-3");
        QVERIFY(resultBox("txtlr")->isEnabled() && control<QLabel>(w, "lbllr")->isEnabled());
        QVERIFY(test::interpretationButton(Index::LarsonSkold)->isEnabled());
        QVERIFY(frmmore::instance()->isVisible());
        show();
        QVERIFY(resultBox("txtlr")->text().isEmpty());
    }

    void activityFrames_data() {
        QTest::addColumn<QString>("equation");
        QTest::addColumn<bool>("davies");
        QTest::addColumn<bool>("debye");
        QTest::newRow("Davies") << "davies" << true << false;
        QTest::newRow("Debye-Huckel") << "debye" << false << true;
        QTest::newRow("extended Debye-Huckel") << "edebye" << false << false;
        QTest::newRow("Guntelberg") << "gun" << false << false;
    }
    void activityFrames() {
        QFETCH(QString, equation);
        QFETCH(bool, davies);
        QFETCH(bool, debye);
        AnalysisRecord& r = theEngine().rec;
        r.adav = 0.5091;
        r.lanm = 0.9012345;
        r.land = 0.6543215;
        r.lant = 0.3876;
        setActivityEquation(equation);
        moreButton()->click();
        // Davies turns the Debye-Huckel frame on as well, its boxes stay off
        QCOMPARE(moreFrame("fradavies")->isEnabled(), davies);
        QCOMPARE(moreFrame("fradebye")->isEnabled(), davies || debye);
        const std::pair<const char*, bool> frames[] = {{"fradavies", davies}, {"fradebye", debye}};
        for (const auto& [frame, on] : frames) {
            for (QLineEdit* b : moreFrame(frame)->findChildren<QLineEdit*>()) {
                QCOMPARE(b->isEnabledTo(moreFrame(frame)), on);
                QCOMPARE(b->text().isEmpty(), !on);
            }
            for (QLabel* l : moreFrame(frame)->findChildren<QLabel*>())
                QCOMPARE(l->isEnabledTo(moreFrame(frame)), on);
        }
        const char* suffix = davies ? "d" : "h";
        if (davies || debye) {
            QCOMPARE(moreBox(QStringLiteral("txtlanm") + suffix)->text(), "0.90123");
            QCOMPARE(moreBox(QStringLiteral("txtland") + suffix)->text(), "0.65432");
            QCOMPARE(moreBox(QStringLiteral("txtlant") + suffix)->text(), "0.3876");
        }
        if (davies) QVERIFY(shows(moreBox("txta"), 0.5091));
    }

    void debyeThenDaviesKeepsBoth() {
        AnalysisRecord& r = theEngine().rec;
        for (const char* equation : {"debye", "davies", "gun"}) {
            r.lanm = equation[1] == 'e' ? 0.91 : 0.92;
            setActivityEquation(equation);
            publish();
        }
        QCOMPARE(moreBox("txtlanmh")->text(), "0.91");
        QCOMPARE(moreBox("txtlanmd")->text(), "0.92");
        QVERIFY(moreFrame("fradavies")->isEnabled() && moreFrame("fradebye")->isEnabled());
    }

    void clearEmptiesLangelierAndRyznarOnly() {
        clearLangelierRyznar();
        QVERIFY(!frmresult::isLoaded());
        theEngine().sw.por(0) = 6;
        publish();
        show();
        clearLangelierRyznar();
        QVERIFY(resultBox("txtlan")->text().isEmpty() && resultBox("txtryz")->text().isEmpty());
        QCOMPARE(resultBox("txtpor")->text(), "6");
    }

    // On an 800 x 600 screen the windows go to their places, fully on the
    // screen, at every showing; on other screens they stay where they are.
    void placement() {
        for (QSize screen : {QSize(800, 600), QSize(800, 601), QSize(640, 480)}) {
            const bool small = screen == QSize(800, 600);
            platform_.screen = screen;
            frmresult::instance()->move(40, 50);
            frmmore::instance()->move(60, 70);
            frmsymbols::instance()->move(8, 90);
            publish();
            show();
            moreButton()->click();
            control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
            const QList<QWidget*> windows = {frmresult::instance(), frmmore::instance(),
                                             frmsymbols::instance()};
            QCOMPARE(windows[0]->pos() == QPoint(40, 50), !small);
            QCOMPARE(windows[1]->pos() == QPoint(60, 70), !small);
            QCOMPARE(windows[2]->pos() == QPoint(8, 90), !small);
            if (small) {
                for (QWidget* w : windows)
                    QVERIFY2(QRect(0, 0, 800, 600).contains(w->frameGeometry()),
                             qPrintable(w->objectName()));
                const QPoint placed = windows[0]->pos();
                windows[0]->move(300, 300);
                show();
                QCOMPARE(windows[0]->pos(), placed);
            }
            test::unloadResultWindows();
        }
    }

    void symbolsWindow() {
        control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
        frmsymbols* w = frmsymbols::instance();
        QVERIFY(QTest::qWaitForWindowExposed(w));
        const QList<QLabel*> labels = w->findChildren<QLabel*>();
        QVERIFY(labels.size() > 20);
        for (QLabel* l : labels)
            QVERIFY2(l->width() >= l->sizeHint().width(), qPrintable(l->text()));
        w->hide();
        control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
        QCOMPARE(frmsymbols::instance(), w);
    }

    // ---------------------------------------------------------------- interpretations

    // At each boundary: the colours just below, at and just above it, and
    // whether the boundary belongs to the row below it.
    void boundaries() {
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
        for (const auto& r : rows) {
            const interp::Row* row = interp::rowFor(r.index, r.bound);
            const interp::Row* under = interp::rowFor(r.index, below(r.bound));
            const interp::Row* over = interp::rowFor(r.index, above(r.bound));
            const QByteArray where =
                QByteArray(interp::buttonName(r.index)) + ' ' + QByteArray::number(r.bound);
            QVERIFY2(colourOf(under) == r.below && colourOf(row) == r.at &&
                         colourOf(over) == r.above,
                     where);
            QVERIFY2((row == under) == r.closedBelow && (row == over) == !r.closedBelow, where);
        }
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

VELMORA_GUI_TEST_MAIN(TestResultsWindows)
#include "tst_resultswindows.moc"
