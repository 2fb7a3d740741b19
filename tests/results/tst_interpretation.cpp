// The interpretation of each index: every boundary of every table, in the
// interpretation window and in the colour of the Results window's button.
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

// The whole explanation of every row of every table, as the window shows it.
struct RowText {
    Index index;
    double value;
    const char* text;
};
const RowText kRowTexts[] = {
    {Index::Langelier, -0.2,
     "Description :   Near Balanced\r\nGeneral recomendation :  No Treatment"},
    {Index::Langelier, -0.7,
     "Description :   None- Mild Corrosion\r\nGeneral recomendation :  Probably No Treatment "},
    // the corrosive side has one blank after the colon, the scaling side two
    {Index::Langelier, -1.5,
     "Description :   Mild Corrosion\r\nGeneral recomendation : Treatment May Be Needed"},
    {Index::Langelier, -2.5,
     "Description :   Moderate Corrosion\r\nGeneral recomendation : Treatment May Be Needed"},
    {Index::Langelier, -3.5,
     "Description :   Moderate Corrosion \r\nGeneral recomendation :  Treatment Recommended"},
    {Index::Langelier, -4.5,
     "Description :  Severe Corrosion\r\nGeneral recomendation :   Treatment Recommended"},
    {Index::Langelier, 0.2,
     "Description :   Near Balanced\r\nGeneral recomendation :  No Treatment"},
    {Index::Langelier, 0.7,
     "Description :  Some Faint Coating\r\nGeneral recomendation :  Probably No Treatment "},
    {Index::Langelier, 1.5,
     "Description :    Mild Scale Coating\r\nGeneral recomendation :  Treatment May Be Needed"},
    {Index::Langelier, 2.5,
     "Description :   Mild to Moderate Coatings\r\nGeneral recomendation :  Treatment May Be "
     "Needed"},
    {Index::Langelier, 3.5,
     "Description :   Moderate Scale Forming \r\nGeneral recomendation :  Treatment Advisable"},
    {Index::Langelier, -6,
     "Description :   Severe Corrosion\r\nGeneral recomendation :  Treatment Recommended"},
    {Index::Langelier, 5,
     "Description :   Severe Scale Forming\r\nGeneral recomendation :  Treatment Advisable"},
    {Index::Ryznar, 5,
     "Description :   Heavy Scale Will form\r\nGeneral recomendation :  Treatment Recommended"},
    {Index::Ryznar, 6,
     "Description :   Mild scale\r\nGeneral recomendation :  Treatment may be Needed"},
    {Index::Ryznar, 6.5,
     "Description :   No difficulties\r\nGeneral recomendation :  No Treatment"},
    {Index::Ryznar, 7.1,
     "Description :   Water is aggressive\r\nGeneral recomendation :  Treatment recommended"},
    {Index::Ryznar, 9,
     "Description :   Water is very aggressive\r\nGeneral recomendation :   Treatment "
     "recommended"},
    {Index::Puckorius, 5,
     "Description :   Scale-forming tendency\r\nGeneral recomendation :  Treatment may be Needed "},
    {Index::Puckorius, 6,
     "Description :  Water is Stable\r\nGeneral recomendation :  NO Treatment "},
    {Index::Puckorius, 6.1,
     "Description :   Corrosion may occur\r\nGeneral recomendation :  No Treatment\r\nNote : "
     "Without The use of scale control Treatment\r\na colling tower operate scale free"},
    {Index::Aggressiveness, 9,
     "Description :  Water is Deemed to be Highly Aggressive\r\nGeneral recomendation :  "
     "Treatment Recommended"},
    {Index::Aggressiveness, 11,
     "Description :   water is moderately aggressive\r\nGeneral recomendation :  Treatment may "
     "be Needed"},
    {Index::Aggressiveness, 13,
     "Description :   No difficulties,water is not Aggressive(i.e.,Protective)\r\nGeneral "
     "recomendation :  No Treatment"},
    {Index::DrivingForce, 1,
     "Description :   Water Saturated with Respect to caco3\r\nGeneral recomendation : probably "
     "No Treatment"},
    {Index::DrivingForce, 1.5,
     "Description :  Water is Oversaturated with Respect to caco3\r\nGeneral recomendation : "
     "Treatment may be Needed "},
    {Index::DrivingForce, 0.5,
     "Description :   Water is Undersaturated with Respect to caco3\r\nGeneral recomendation : "
     "Treatment may be Needed"},
    {Index::LarsonSkold, 0.5,
     "Description :   Chlorides and sulfates do not influence the \r\nnatural formation of the "
     "protective film\r\nGeneral recomendation :  Treatment Recommended"},
    {Index::LarsonSkold, 0.8,
     "Description :  Chlorides and Sulfates hinder formation of a \r\nprotective "
     "film.\r\nGeneral recomendation :  Treatment may be Needed"},
    {Index::LarsonSkold, 2,
     "Description :   As the value of the index grows ,an increasingly \r\nhigher rate of "
     "localized corrosion is observed.\r\nGeneral recomendation :   Treatment Rcommended"},
    {Index::MomentaryExcess, 0.001,
     "Description :  Water is Oversaturated with Respect to caco3\r\nGeneral recomendation :  "
     "Treatment may be Needed"},
    {Index::MomentaryExcess, 0.0001,
     "Description :  Water is Saturated with Respect to caco3 \r\nGeneral recomendation :  N0 "
     "Treatment"},
    {Index::MomentaryExcess, -0.001,
     "Description :   Water is Undersaturated with Respect to caco3\r\nGeneral recomendation :  "
     "Treatment may be Needed"},
    {Index::SaturationLevel, 1,
     "Description :   Water Saturated with Respect to caco3\r\nGeneral recomendation : probably "
     "No Treatment"},
    {Index::SaturationLevel, 1.3,
     "Description :  Water is Oversaturated with Respect to caco3\r\nNote : in a Typical System, "
     "a Value of 1.2 to 1.5 can often be\r\nAchieved before Scaling Occurs.if it gose "
     "Higher,Scaling is Likely.\r\nGeneral recomendation : Treatment may be Needed "},
    {Index::SaturationLevel, 0.5,
     "Description :   Water is Undersaturated with Respect to caco3\r\nNote :Scaling is Unlikely "
     "and any Existing Scale is Likely to\r\n Dissolve.\r\nGeneral recomendation : Treatment may "
     "be Needed"},
};

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
            measured(i) = 0;
    }
    void cleanup() { test::unloadResultWindows(); }

    void windowShowsRow_data() { addBoundaryRows(); }
    void windowShowsRow();
    void buttonColourFollowsRow_data() { addBoundaryRows(); }
    void buttonColourFollowsRow();

    void fullTexts_data();
    void fullTexts();
    void fullTextsCoverEveryRow();
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

    measured(index) = value;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    QPushButton* b = interpretationButton(index);
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

    measured(index) = value;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    QCOMPARE(frmresult::instance()->buttonColour(index), colour);
    QCOMPARE(paintedColour(interpretationButton(index)), colour);
}

void TestInterpretation::fullTexts_data() {
    QTest::addColumn<Index>("index");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    for (const RowText& r : kRowTexts)
        QTest::addRow("%s %g", interp::buttonName(r.index), r.value)
            << r.index << r.value << QString::fromLatin1(r.text);
}

void TestInterpretation::fullTexts() {
    QFETCH(Index, index);
    QFETCH(double, value);
    QFETCH(QString, text);
    measured(index) = value;
    publishResultsWindows(theEngine(), theOptions());
    interpretationButton(index)->click();
    QCOMPARE(frmresult::instance()->interpretationText(), text);
    QCOMPARE(frmenterper::instance()->text1()->toPlainText(),
             QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
}

void TestInterpretation::fullTextsCoverEveryRow() {
    for (Index index : interp::allIndices()) {
        for (const interp::Row& row : interp::table(index)) {
            bool covered = false;
            for (const RowText& r : kRowTexts)
                covered = covered || (r.index == index && interp::rowFor(index, r.value) == &row);
            QVERIFY2(covered, qPrintable(QStringLiteral("%1, %2 has no text check")
                                             .arg(interp::buttonCaption(index))
                                             .arg(QString::fromStdString(row.range.text()))));
        }
    }
}

void TestInterpretation::captions_data() {
    QTest::addColumn<Index>("index");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("buttonCaption");
    QTest::addColumn<QString>("windowCaption");
    const struct {
        Index index;
        const char *button, *buttonCaption, *windowCaption;
    } rows[] = {
        {Index::Langelier, "cmdlan", "Langelier", "Langelier index interpretation"},
        {Index::Ryznar, "cmdri", "Ryznar", "Ryznar index interpretation"},
        {Index::Puckorius, "cmdpor", "Puckorius", "Puckorius index interpretation"},
        {Index::Aggressiveness, "cmdai", "Aggressiveness", "Aggressiveness index interpretation"},
        {Index::DrivingForce, "cmddfi", "Driving Force", "Driving Force index interpretation"},
        {Index::LarsonSkold, "cmdlr", "Larson -Scold", "Larson-Scold index interpretation"},
        {Index::MomentaryExcess, "cmdme", "Momentary Excess",
         "Momentary Excess index interpretation"},
        {Index::SaturationLevel, "cmdsl", "Saturation Level",
         "Carbonate saturation Level interpretation"},
    };
    for (const auto& r : rows)
        QTest::newRow(r.button) << r.index << r.button << r.buttonCaption << r.windowCaption;
}

void TestInterpretation::captions() {
    QFETCH(Index, index);
    QFETCH(QString, button);
    QFETCH(QString, buttonCaption);
    QFETCH(QString, windowCaption);
    publishResultsWindows(theEngine(), theOptions());
    auto* b = test::control<QPushButton>(frmresult::instance(), button);
    QVERIFY(b);
    QCOMPARE(b, interpretationButton(index));
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
    measured(Index::LarsonSkold) = 1.2;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    QCOMPARE(frmresult::instance()->buttonColour(Index::LarsonSkold), kRed);
    interpretationButton(Index::LarsonSkold)->click();
    QCOMPARE(frmenterper::instance()->backColour(), kRed);
    QVERIFY(frmresult::instance()->interpretationText().contains(
        "higher rate of localized corrosion is observed."));
}

void TestInterpretation::boldStaysUntilClosed() {
    measured(Index::Langelier) = 0.2;
    measured(Index::Ryznar) = 7.1;
    publishResultsWindows(theEngine(), theOptions());

    interpretationButton(Index::Ryznar)->click();
    QVERIFY(!frmenterper::instance()->text1()->font().bold());
    interpretationButton(Index::Langelier)->click();
    QVERIFY(frmenterper::instance()->text1()->font().bold());
    for (Index i : {Index::Ryznar, Index::SaturationLevel, Index::Puckorius}) {
        interpretationButton(i)->click();
        QVERIFY(frmenterper::instance()->text1()->font().bold());
    }
    // Hidden is not closed: the font stays.
    frmenterper::instance()->hide();
    interpretationButton(Index::Ryznar)->click();
    QVERIFY(frmenterper::instance()->text1()->font().bold());

    test::unload<frmenterper>();
    QVERIFY(!frmenterper::isLoaded());
    interpretationButton(Index::Ryznar)->click();
    QVERIFY(!frmenterper::instance()->text1()->font().bold());
    QCOMPARE(frmenterper::instance()->text1()->toPlainText(),
             "Description :   Water is aggressive\nGeneral recomendation :  Treatment recommended");
}

void TestInterpretation::windowReusedAndRetitled() {
    measured(Index::Ryznar) = 5;
    measured(Index::Aggressiveness) = 11;
    publishResultsWindows(theEngine(), theOptions());
    interpretationButton(Index::Ryznar)->click();
    frmenterper* first = frmenterper::instance();
    QCOMPARE(first->backColour(), kRed);
    interpretationButton(Index::Aggressiveness)->click();
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
            interpretationButton(Index::Langelier)->click();
            QVERIFY(frmenterper::instance()->text1()->font().bold());
        }
        for (Index index : interp::allIndices()) {
            for (const interp::Row& row : interp::table(index)) {
                measured(index) = inside(row.range);
                interpretationButton(index)->click();
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
    measured(Index::Ryznar) = 6.5;
    publishResultsWindows(theEngine(), theOptions());
    interpretationButton(Index::Ryznar)->click();
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
    measured(Index::Ryznar) = 7.1;
    measured(Index::Puckorius) = 5;
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
    interpretationButton(Index::Ryznar)->click();
    measured(Index::Puckorius) = std::nan("");
    showResultsWindow(theEngine(), theOptions());
    QCOMPARE(frmresult::instance()->buttonColour(Index::Puckorius), kRed);
    interpretationButton(Index::Puckorius)->click();
    QCOMPARE(frmenterper::instance()->windowTitle(), "Puckorius index interpretation");
    QVERIFY(frmenterper::instance()->text1()->toPlainText().isEmpty());
}

VELMORA_GUI_TEST_MAIN(TestInterpretation)
#include "tst_interpretation.moc"
