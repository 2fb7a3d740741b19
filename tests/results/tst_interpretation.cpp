// The interpretation of each index: every boundary of every table, in the
// interpretation window and in the colour of the Results window's button.
#include "results/frmenterper.h"
#include "results/frmresult.h"
#include "results/interpretation.h"
#include "results/results.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QToolTip>

#include <cmath>

using namespace velmora;
using interp::Index;

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

double& valueOf(Index index) {
    SweepArrays& sw = theEngine().sw;
    switch (index) {
    case Index::Langelier:
        return sw.li(0);
    case Index::Ryznar:
        return sw.ri(0);
    case Index::Puckorius:
        return sw.por(0);
    case Index::Aggressiveness:
        return sw.ai(0);
    case Index::DrivingForce:
        return sw.dfi(0);
    case Index::LarsonSkold:
        return sw.lr(0);
    case Index::MomentaryExcess:
        return sw.me(0);
    case Index::SaturationLevel:
        return sw.sl(0);
    }
    return sw.li(0);
}

void unloadWindow(QWidget* w) {
    if (!w) return;
    w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QPushButton* button(Index index) {
    return frmresult::instance()->findChild<QPushButton*>(interp::buttonName(index));
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

} // namespace

class TestInterpretation : public QObject {
    Q_OBJECT

private:
    test::RecordingPlatform platform_;

    void addBoundaryRows();

private slots:
    void init() {
        OptionState& o = theOptions();
        o.index = IndexFlags{true, true, true, true, true, true, true, true};
        for (Index i : interp::allIndices())
            valueOf(i) = 0;
    }
    void cleanup() {
        unloadWindow(frmenterper::isLoaded() ? frmenterper::instance() : nullptr);
        unloadWindow(frmresult::isLoaded() ? frmresult::instance() : nullptr);
    }

    void windowShowsRow_data() { addBoundaryRows(); }
    void windowShowsRow();
    void buttonColourFollowsRow_data() { addBoundaryRows(); }
    void buttonColourFollowsRow();

    void fullTexts_data();
    void fullTexts();
    void captions_data();
    void captions();
    void rangesOfEveryTableLeaveNoOtherGap();
    void larsonSkoldAtOnePointTwo();
    void boldStaysUntilClosed();
    void windowReusedAndRetitled();
    void everyTextFitsTheBox();
    void colourShowsAroundTheText();
    void noColourForValuesOutsideEveryRow();
};

void TestInterpretation::addBoundaryRows() {
    QTest::addColumn<Index>("index");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("firstLine");
    QTest::addColumn<QColor>("colour");

    auto row = [](const QByteArray& name, Index i, double v, const char* line, QColor c) {
        QTest::newRow(name.constData()) << i << v << QString::fromLatin1(line) << c;
    };
    const Index L = Index::Langelier;
    row("LI -100", L, -100, "Description :   Severe Corrosion", kRed);
    row("LI -5", L, -5, "Description :   Severe Corrosion", kRed);
    row("LI just above -5", L, above(-5), "Description :  Severe Corrosion", kRed);
    row("LI -4", L, -4, "Description :  Severe Corrosion", kRed);
    row("LI just above -4", L, above(-4), "Description :   Moderate Corrosion ", kRed);
    row("LI -3", L, -3, "Description :   Moderate Corrosion ", kRed);
    row("LI just above -3", L, above(-3), "Description :   Moderate Corrosion", kOrange);
    row("LI -2", L, -2, "Description :   Moderate Corrosion", kOrange);
    row("LI just above -2", L, above(-2), "Description :   Mild Corrosion", kLightOrange);
    row("LI -1", L, -1, "Description :   Mild Corrosion", kLightOrange);
    row("LI just above -1", L, above(-1), "Description :   None- Mild Corrosion", kYellow);
    row("LI -0.5", L, -0.5, "Description :   None- Mild Corrosion", kYellow);
    row("LI just above -0.5", L, above(-0.5), "Description :   Near Balanced", kGreen);
    row("LI 0", L, 0, "Description :   Near Balanced", kGreen);
    row("LI just below 0.5", L, below(0.5), "Description :   Near Balanced", kGreen);
    row("LI 0.5", L, 0.5, "Description :  Some Faint Coating", kYellow);
    row("LI just below 1", L, below(1), "Description :  Some Faint Coating", kYellow);
    row("LI 1", L, 1, "Description :    Mild Scale Coating", kLightOrange);
    row("LI just below 2", L, below(2), "Description :    Mild Scale Coating", kLightOrange);
    row("LI 2", L, 2, "Description :   Mild to Moderate Coatings", kOrange);
    row("LI just below 3", L, below(3), "Description :   Mild to Moderate Coatings", kOrange);
    row("LI 3", L, 3, "Description :   Moderate Scale Forming ", kRed);
    row("LI just below 4", L, below(4), "Description :   Moderate Scale Forming ", kRed);
    row("LI 4", L, 4, "Description :   Severe Scale Forming", kRed);
    row("LI 50", L, 50, "Description :   Severe Scale Forming", kRed);

    const Index R = Index::Ryznar;
    row("RI 0", R, 0, "Description :   Heavy Scale Will form", kRed);
    row("RI just below 5.5", R, below(5.5), "Description :   Heavy Scale Will form", kRed);
    row("RI 5.5", R, 5.5, "Description :   Mild scale", kSalmon);
    row("RI just below 6.2", R, below(6.2), "Description :   Mild scale", kSalmon);
    row("RI 6.2", R, 6.2, "Description :   No difficulties", kGreen);
    row("RI just below 6.8", R, below(6.8), "Description :   No difficulties", kGreen);
    row("RI 6.8", R, 6.8, "Description :   Water is aggressive", kSalmon);
    row("RI 7.1", R, 7.1, "Description :   Water is aggressive", kSalmon);
    row("RI just below 8.5", R, below(8.5), "Description :   Water is aggressive", kSalmon);
    row("RI 8.5", R, 8.5, "Description :   Water is very aggressive", kRed);

    const Index P = Index::Puckorius;
    row("PSI just below 5.9", P, below(5.9), "Description :   Scale-forming tendency", kRed);
    row("PSI 5.9", P, 5.9, "Description :  Water is Stable", kSalmon);
    row("PSI just below 6.1", P, below(6.1), "Description :  Water is Stable", kSalmon);
    row("PSI 6.1", P, 6.1, "Description :   Corrosion may occur", kGreen);
    row("PSI 9", P, 9, "Description :   Corrosion may occur", kGreen);

    const Index A = Index::Aggressiveness;
    row("AI just below 10", A, below(10), "Description :  Water is Deemed to be Highly Aggressive",
        kRed);
    row("AI 10", A, 10, "Description :   water is moderately aggressive", kLightOrange);
    row("AI 12", A, 12, "Description :   water is moderately aggressive", kLightOrange);
    row("AI just above 12", A, above(12),
        "Description :   No difficulties,water is not Aggressive(i.e.,Protective)", kLightGreen);

    for (Index i : {Index::DrivingForce, Index::SaturationLevel}) {
        const bool dfi = i == Index::DrivingForce;
        auto name = [&](const char* what) { return QByteArray(dfi ? "DFI " : "SL ") + what; };
        row(name("0.98"), i, 0.98, "Description :   Water is Undersaturated with Respect to caco3",
            kPaleYellow);
        row(name("just above 0.98"), i, above(0.98),
            "Description :   Water Saturated with Respect to caco3", kPaleGreen);
        row(name("1"), i, 1, "Description :   Water Saturated with Respect to caco3", kPaleGreen);
        row(name("just below 1.02"), i, below(1.02),
            "Description :   Water Saturated with Respect to caco3", kPaleGreen);
        row(name("1.02"), i, 1.02, "Description :  Water is Oversaturated with Respect to caco3",
            kPaleYellow);
    }

    const Index M = Index::MomentaryExcess;
    row("ME just below -0.0001", M, below(-0.0001),
        "Description :   Water is Undersaturated with Respect to caco3", kPaleYellow);
    row("ME -0.0001", M, -0.0001, "Description :  Water is Saturated with Respect to caco3 ",
        kPaleGreen);
    row("ME 0", M, 0, "Description :  Water is Saturated with Respect to caco3 ", kPaleGreen);
    row("ME 0.0001", M, 0.0001, "Description :  Water is Saturated with Respect to caco3 ",
        kPaleGreen);
    row("ME just above 0.0001", M, above(0.0001),
        "Description :  Water is Oversaturated with Respect to caco3", kPaleYellow);

    const Index S = Index::LarsonSkold;
    row("LR 0", S, 0, "Description :   Chlorides and sulfates do not influence the ", kRed);
    row("LR just below 0.8", S, below(0.8),
        "Description :   Chlorides and sulfates do not influence the ", kRed);
    row("LR 0.8", S, 0.8, "Description :  Chlorides and Sulfates hinder formation of a ", kSalmon);
    row("LR just below 1.2", S, below(1.2),
        "Description :  Chlorides and Sulfates hinder formation of a ", kSalmon);
    row("LR 1.2 (upper band)", S, 1.2,
        "Description :   As the value of the index grows ,an increasingly ", kRed);
    row("LR just above 1.2", S, above(1.2),
        "Description :   As the value of the index grows ,an increasingly ", kRed);
}

void TestInterpretation::windowShowsRow() {
    QFETCH(Index, index);
    QFETCH(double, value);
    QFETCH(QString, firstLine);
    QFETCH(QColor, colour);

    valueOf(index) = value;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    QPushButton* b = button(index);
    QVERIFY(b && b->isEnabled());
    b->click();

    QVERIFY(frmenterper::isLoaded());
    frmenterper* w = frmenterper::instance();
    QVERIFY(w->isVisible());
    QCOMPARE(w->windowTitle(), QString::fromLatin1(interp::windowCaption(index)));
    QCOMPARE(w->backColour(), colour);
    const QString text = frmresult::instance()->interpretationText();
    QCOMPARE(text.section(QStringLiteral("\r\n"), 0, 0), firstLine);
    QVERIFY(!text.endsWith(QStringLiteral("\r\n")));
    QCOMPARE(w->text1()->toPlainText(), QString(text).replace(QStringLiteral("\r\n"), "\n"));
}

void TestInterpretation::buttonColourFollowsRow() {
    QFETCH(Index, index);
    QFETCH(double, value);
    QFETCH(QColor, colour);

    valueOf(index) = value;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    QCOMPARE(frmresult::instance()->buttonColour(index), colour);
    QCOMPARE(paintedColour(button(index)), colour);
}

void TestInterpretation::fullTexts_data() {
    QTest::addColumn<Index>("index");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("LI -1.5 corrosive side, one blank")
        << Index::Langelier << -1.5
        << "Description :   Mild Corrosion\r\nGeneral recomendation : Treatment May Be Needed";
    QTest::newRow("LI 1.5 scaling side, two blanks")
        << Index::Langelier << 1.5
        << "Description :    Mild Scale Coating\r\nGeneral recomendation :  Treatment May Be "
           "Needed";
    QTest::newRow("LI 0.7 trailing blank")
        << Index::Langelier << 0.7
        << "Description :  Some Faint Coating\r\nGeneral recomendation :  Probably No Treatment ";
    QTest::newRow("RI 7.1") << Index::Ryznar << 7.1
                            << "Description :   Water is aggressive\r\nGeneral recomendation :  "
                               "Treatment recommended";
    QTest::newRow("PSI 6.1 with notes")
        << Index::Puckorius << 6.1
        << "Description :   Corrosion may occur\r\nGeneral recomendation :  No Treatment\r\nNote : "
           "Without The use of scale control Treatment\r\na colling tower operate scale free";
    QTest::newRow("ME 0.0001") << Index::MomentaryExcess << 0.0001
                               << "Description :  Water is Saturated with Respect to caco3 "
                                  "\r\nGeneral recomendation :  N0 Treatment";
    QTest::newRow("LR 0.8") << Index::LarsonSkold << 0.8
                            << "Description :  Chlorides and Sulfates hinder formation of a "
                               "\r\nprotective film.\r\nGeneral recomendation :  Treatment may be "
                               "Needed";
    QTest::newRow("LR 2") << Index::LarsonSkold << 2.0
                          << "Description :   As the value of the index grows ,an increasingly "
                             "\r\nhigher rate of localized corrosion is observed.\r\nGeneral "
                             "recomendation :   Treatment Rcommended";
    QTest::newRow("SL 1.3") << Index::SaturationLevel << 1.3
                            << "Description :  Water is Oversaturated with Respect to caco3\r\n"
                               "Note : in a Typical System, a Value of 1.2 to 1.5 can often be\r\n"
                               "Achieved before Scaling Occurs.if it gose Higher,Scaling is "
                               "Likely.\r\nGeneral recomendation : Treatment may be Needed ";
    QTest::newRow("SL 0.5") << Index::SaturationLevel << 0.5
                            << "Description :   Water is Undersaturated with Respect to caco3\r\n"
                               "Note :Scaling is Unlikely and any Existing Scale is Likely to\r\n "
                               "Dissolve.\r\nGeneral recomendation : Treatment may be Needed";
    QTest::newRow("DFI 1.5") << Index::DrivingForce << 1.5
                             << "Description :  Water is Oversaturated with Respect to caco3\r\n"
                                "General recomendation : Treatment may be Needed ";
    QTest::newRow("AI 13") << Index::Aggressiveness << 13.0
                           << "Description :   No difficulties,water is not "
                              "Aggressive(i.e.,Protective)\r\nGeneral recomendation :  No "
                              "Treatment";
}

void TestInterpretation::fullTexts() {
    QFETCH(Index, index);
    QFETCH(double, value);
    QFETCH(QString, text);
    valueOf(index) = value;
    publishResultsWindows(theEngine(), theOptions());
    button(index)->click();
    QCOMPARE(frmresult::instance()->interpretationText(), text);
}

void TestInterpretation::captions_data() {
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("buttonCaption");
    QTest::addColumn<QString>("windowCaption");
    QTest::newRow("lan") << "cmdlan"
                         << "Langelier"
                         << "Langelier index interpretation";
    QTest::newRow("ri") << "cmdri"
                        << "Ryznar"
                        << "Ryznar index interpretation";
    QTest::newRow("por") << "cmdpor"
                         << "Puckorius"
                         << "Puckorius index interpretation";
    QTest::newRow("ai") << "cmdai"
                        << "Aggressiveness"
                        << "Aggressiveness index interpretation";
    QTest::newRow("dfi") << "cmddfi"
                         << "Driving Force"
                         << "Driving Force index interpretation";
    QTest::newRow("lr") << "cmdlr"
                        << "Larson -Scold"
                        << "Larson-Scold index interpretation";
    QTest::newRow("me") << "cmdme"
                        << "Momentary Excess"
                        << "Momentary Excess index interpretation";
    QTest::newRow("sl") << "cmdsl"
                        << "Saturation Level"
                        << "Carbonate saturation Level interpretation";
}

void TestInterpretation::captions() {
    QFETCH(QString, button);
    QFETCH(QString, buttonCaption);
    QFETCH(QString, windowCaption);
    publishResultsWindows(theEngine(), theOptions());
    auto* b = frmresult::instance()->findChild<QPushButton*>(button);
    QVERIFY(b);
    QCOMPARE(b->text(), buttonCaption);
    b->click();
    QCOMPARE(frmenterper::instance()->windowTitle(), windowCaption);
}

void TestInterpretation::rangesOfEveryTableLeaveNoOtherGap() {
    // Sweeping each index over a wide span finds an explanation everywhere:
    // the only value the written ranges leave out is Larson-Skold 1.2.
    for (Index index : interp::allIndices()) {
        for (int k = -20000; k <= 20000; ++k) {
            const double v = k / 1000.0;
            int matches = 0;
            for (const interp::Row& r : interp::table(index))
                if (r.range.contains(v)) ++matches;
            const bool gap = index == Index::LarsonSkold && v == 1.2;
            const bool overlap = index == Index::Langelier && v == 0;
            QVERIFY2(matches == (gap       ? 0
                                 : overlap ? 2
                                           : 1),
                     qPrintable(QStringLiteral("%1 at %2: %3 rows")
                                    .arg(interp::buttonCaption(index))
                                    .arg(v)
                                    .arg(matches)));
            QVERIFY(interp::rowFor(index, v) != nullptr);
        }
    }
}

void TestInterpretation::larsonSkoldAtOnePointTwo() {
    // 1.2 sits between "0.8 <= LR < 1.2" and "LR > 1.2": it is read as the
    // upper band, both in the window and on the button.
    valueOf(Index::LarsonSkold) = 1.2;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    QCOMPARE(frmresult::instance()->buttonColour(Index::LarsonSkold), kRed);
    button(Index::LarsonSkold)->click();
    QCOMPARE(frmenterper::instance()->backColour(), kRed);
    QVERIFY(frmresult::instance()->interpretationText().contains(
        "higher rate of localized corrosion is observed."));
}

void TestInterpretation::boldStaysUntilClosed() {
    valueOf(Index::Langelier) = 0.2;
    valueOf(Index::Ryznar) = 7.1;
    publishResultsWindows(theEngine(), theOptions());

    button(Index::Ryznar)->click();
    QVERIFY(!frmenterper::instance()->text1()->font().bold());
    button(Index::Langelier)->click();
    QVERIFY(frmenterper::instance()->text1()->font().bold());
    for (Index i : {Index::Ryznar, Index::SaturationLevel, Index::Puckorius}) {
        button(i)->click();
        QVERIFY(frmenterper::instance()->text1()->font().bold());
    }
    // Hidden is not closed: the font stays.
    frmenterper::instance()->hide();
    button(Index::Ryznar)->click();
    QVERIFY(frmenterper::instance()->text1()->font().bold());

    unloadWindow(frmenterper::instance());
    QVERIFY(!frmenterper::isLoaded());
    button(Index::Ryznar)->click();
    QVERIFY(!frmenterper::instance()->text1()->font().bold());
    QCOMPARE(frmenterper::instance()->text1()->toPlainText(),
             "Description :   Water is aggressive\nGeneral recomendation :  Treatment recommended");
}

void TestInterpretation::windowReusedAndRetitled() {
    valueOf(Index::Ryznar) = 5;
    valueOf(Index::Aggressiveness) = 11;
    publishResultsWindows(theEngine(), theOptions());
    button(Index::Ryznar)->click();
    frmenterper* first = frmenterper::instance();
    QCOMPARE(first->backColour(), kRed);
    button(Index::Aggressiveness)->click();
    QCOMPARE(frmenterper::instance(), first);
    QCOMPARE(first->windowTitle(), QStringLiteral("Aggressiveness index interpretation"));
    QCOMPARE(first->backColour(), kLightOrange);
    QVERIFY(first->text1()->toPlainText().startsWith("Description :   water is moderately"));
}

void TestInterpretation::everyTextFitsTheBox() {
    // Every explanation is readable whole, without scrolling, in regular and
    // in bold type.
    publishResultsWindows(theEngine(), theOptions());
    for (bool bold : {false, true}) {
        if (bold) {
            button(Index::Langelier)->click();
            QVERIFY(frmenterper::instance()->text1()->font().bold());
        }
        for (Index index : interp::allIndices()) {
            for (const interp::Row& row : interp::table(index)) {
                valueOf(index) = inside(row.range);
                button(index)->click();
                QPlainTextEdit* t = frmenterper::instance()->text1();
                QCoreApplication::processEvents();
                QCOMPARE(t->toPlainText().count('\n') + 1, int(row.lines.size()));
                QVERIFY2(t->verticalScrollBar()->maximum() == 0,
                         qPrintable(QStringLiteral("%1, %2 needs scrolling (bold %3)")
                                        .arg(interp::buttonCaption(index))
                                        .arg(QString::fromStdString(row.range.text()))
                                        .arg(bold)));
            }
        }
    }
}

void TestInterpretation::colourShowsAroundTheText() {
    valueOf(Index::Ryznar) = 6.5;
    publishResultsWindows(theEngine(), theOptions());
    button(Index::Ryznar)->click();
    frmenterper* w = frmenterper::instance();
    QPlainTextEdit* t = w->text1();
    QCOMPARE(t->geometry(), QRect(0, 0, 321, 129));
    QVERIFY(w->width() > t->width() + 10 && w->height() > t->height() + 10);
    const QImage img = w->grab().toImage();
    QCOMPARE(img.pixelColor(w->width() - 3, w->height() - 3), kGreen);
    QCOMPARE(img.pixelColor(w->width() - 3, 5), kGreen);
    QCOMPARE(img.pixelColor(5, w->height() - 3), kGreen);
    // Blue text on the tooltip colour inside the box.
    QCOMPARE(t->palette().color(QPalette::Text), QColor(0, 0, 255));
    QCOMPARE(t->palette().color(QPalette::Base), QToolTip::palette().color(QPalette::ToolTipBase));
}

void TestInterpretation::noColourForValuesOutsideEveryRow() {
    // A value that is not a number has no explanation: the window says
    // nothing instead of repeating the text of another index, and the button
    // keeps its colour.
    valueOf(Index::Ryznar) = 7.1;
    valueOf(Index::Puckorius) = 5;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    button(Index::Ryznar)->click();
    valueOf(Index::Puckorius) = std::nan("");
    showResultsWindow(theEngine(), theOptions());
    QCOMPARE(frmresult::instance()->buttonColour(Index::Puckorius), kRed);
    button(Index::Puckorius)->click();
    QCOMPARE(frmenterper::instance()->windowTitle(), "Puckorius index interpretation");
    QVERIFY(frmenterper::instance()->text1()->toPlainText().isEmpty());
}

VELMORA_GUI_TEST_MAIN(TestInterpretation)
#include "tst_interpretation.moc"
