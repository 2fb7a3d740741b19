// Publishing the measured-pH results into the Results and equilibrium data
// windows: formats, design states, the Larson-Skold display, the activity
// frames, the symbols window and the 800 x 600 placements.
#include "results/results.h"
#include "tests/results/resultstest.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <functional>

using namespace velmora;
using interp::Index;

namespace {

using test::control;

QLineEdit* resultBox(const QString& name) {
    return control<QLineEdit>(frmresult::instance(), name);
}
QLineEdit* moreBox(const QString& name) {
    return control<QLineEdit>(frmmore::instance(), name);
}

void setActivityEquation(const char* which) {
    EquationFlags& e = theOptions().equations;
    e.bldavies = e.bledebye = e.blgun = e.bldebye = false;
    const QByteArray w(which);
    if (w == "davies") e.bldavies = true;
    if (w == "debye") e.bldebye = true;
    if (w == "edebye") e.bledebye = true;
    if (w == "gun") e.blgun = true;
}

void publish() {
    publishResultsWindows(theEngine(), theOptions());
}
void show() {
    showResultsWindow(theEngine(), theOptions());
}

// An activity frame of the equilibrium data window with its boxes and labels.
struct ActivityFrame {
    const char* frame;
    std::vector<const char*> boxes, labels;
};
const ActivityFrame kDavies{"fradavies",
                            {"txta", "txtlantd", "txtlandd", "txtlanmd"},
                            {"lbla", "lbllantd", "lbllandd", "lbllanmd"}};
const ActivityFrame kDebye{
    "fradebye", {"txtlanth", "txtlandh", "txtlanmh"}, {"lbllanth", "lbllandh", "lbllanmh"}};

// The boxes and labels of an activity frame are all on, the boxes filled, or
// all off, the boxes empty.
void expectActivityControls(const ActivityFrame& f, bool on) {
    frmmore* m = frmmore::instance();
    auto* frame = control<QGroupBox>(m, f.frame);
    for (const char* name : f.boxes) {
        QVERIFY2(moreBox(name)->isEnabledTo(frame) == on, name);
        QVERIFY2(moreBox(name)->text().isEmpty() == !on, name);
    }
    for (const char* name : f.labels)
        QVERIFY2(control<QLabel>(m, name)->isEnabledTo(frame) == on, name);
}

// The frames of the equilibrium data window, each box with its label's caption.
struct DataFrame {
    const char* frame;
    const char* caption;
    std::vector<std::pair<const char*, const char*>> boxes;
};
const DataFrame kDataFrames[] = {
    {"frmwater",
     "Water chemistry :",
     {{"txti", "I     ="},
      {"txtckw", "ckw   ="},
      {"txtpckw", "pckw ="},
      {"txtkw", "kw    ="},
      {"txtpkw", "pkw  ="}}},
    {"frmhydrogen",
     "Hydrogen chemistry :",
     {{"txtphs", "phs  ="}, {"txtch", "ch    ="}, {"txtoh", "oh-   ="}}},
    {"fradavies",
     "Davies variables :",
     {{"txta", "A    ="},
      {"txtlantd", "LanT  ="},
      {"txtlandd", "LanD  ="},
      {"txtlanmd", "LanM  ="}}},
    {"fradebye",
     "Debye - Huckel  variables :",
     {{"txtlanth", "LanT  ="}, {"txtlandh", "LanD  ="}, {"txtlanmh", "LanM  ="}}},
    {"frmcarbonate",
     "Carbonate chemistry :",
     {{"txtct", "ct      ="},
      {"txth2co3", "H2co3*="},
      {"txthco3", "hco3-   ="},
      {"txtco3", "co3=    ="},
      {"txtck1", "ck1      ="},
      {"txtck2", "ck2      ="},
      {"txtcks", "cks      ="},
      {"txtpca", "pca      ="},
      {"txtpcks", "pcks ="},
      {"txtpck2", "pck2 ="},
      {"txta0", "a0     ="},
      {"txta1", "a1     ="},
      {"txta2", "a2        ="},
      {"txtpk1", "pk1   ="},
      {"txtpk2", "pk2   ="},
      {"txtpks", "pks   ="}}},
};

// The symbols window's texts, written as symbol and meaning on each side of
// the first equals sign.
const std::pair<const char*, const char*> kSymbols[] = {
    {"lant    ", "Activity coeficient for trivalant ions"},
    {"land   ", "Activity coeficient for divalant ions"},
    {"lanm  ", "Activity coeficient for monovalant ions"},
    {"I        ", "Ionic strength of the solution with respect to all solutes(mol/li)"},
    {"A       ", " a constant which varies slightly with temprature"},
    {"pk1     ", "p-Notation for first equilibrium constant"},
    {"pck1   ", " p-notation for first equlibrium constant corrcted for ionic strength"},
    {"phs  ", "pH at saturation"},
    {"ch    ", "Hydrogen ion concentration(mol/li)"},
    {"oh-   ", "Hydroxide ion concentration(mol/li)"},
    {"pckw ", "p-Notation for ionic product for water corrected for ionic strength"},
    {"ckw   ", "ionic product for water corrected for ionic strength(mol/li)"},
    {"kw     ", "ionic product for water (mol/li)"},
    {"pkw   ", "p-Notation for ionic product for water"},
    {"pca     ", "p-Notation for calcium concentration"},
    {"a2        ", "ionasation factor of Co3--"},
    {"CO3--    ", "carbonate ion concentration (mol/li)"},
    {"H2CO3*", " carbonic acid concentration(mol/li)"},
    {"cks      ", "Solubility product for calcium carbonate(mol/li)"},
    {"ck2     ", "second equilibrium constant(mol/li)"},
    {"ck1     ", "first equilibrium constant(mol/li)"},
    {"ct         ", "Total dissolved carbonate species(mol/li)"},
    {"a1        ", "ionisation factor of Hco3-"},
    {"a0        ", "ionisation factor of H2Co3*"},
    {"pck2   ", " p-notation for second equlibrium constant corrcted for ionic strength"},
    {"pcks    ",
     "p-Notation for solubility product for calcium carbonate corrected for ionic strength"},
    {"pks     ", "p-Notation for solubility product for calcium carbonate"},
    {"pk2     ", "p-Notation for second equilibrium constant"},
    {"HCO3-   ", "bicarbonate ion concentration(mol/li)"},
};

// The text fits the box's visible area.
bool fits(const QLineEdit* box) {
    const int room = box->width() - 8; // frame and text margins
    return box->fontMetrics().horizontalAdvance(box->text()) <= room;
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

    void designStateOfResults();
    void designStateOfEquilibriumData();
    void indexFormats_data();
    void indexFormats();
    void equilibriumValues();
    void valuesAreNotClipped();
    void publishLoadsWithoutShowing();
    void showResultsShowsAndColours();
    void larsonSkoldNotChosen();
    void larsonSkoldRefilledByMoreResults();
    void activityFrames_data();
    void activityFrames();
    void debyeThenDaviesKeepsBoth();
    void closedWindowsComeBackInDesignState();
    void clearEmptiesLangelierAndRyznarOnly();
    void clearWithoutResultsWindowLoadsNothing();
    void placementOnSmallScreen();
    void noPlacementOnOtherScreens();
    void symbolsWindow();
    void windowsFitTheSmallScreen();
};

void TestResultsWindows::designStateOfResults() {
    frmresult* w = frmresult::instance();
    QVERIFY(!w->isVisible());
    QCOMPARE(w->windowTitle(), "Results");
    QCOMPARE(control<QGroupBox>(w, "fraindex")->title(),
             "Water stability indices at measured pH :");
    QCOMPARE(control<QGroupBox>(w, "frainter")->title(), "Indices Interpretation  :");
    QVERIFY(!control<QGroupBox>(w, "fraindex")->isEnabled());
    QVERIFY(!control<QGroupBox>(w, "frainter")->isEnabled());
    for (const char* name :
         {"txtlan", "txtryz", "txtpor", "txtdfi", "txtme", "txtai", "txtsl", "txtlr"}) {
        QVERIFY(!resultBox(name)->isEnabledTo(w->findChild<QGroupBox*>("fraindex")));
        QVERIFY(resultBox(name)->text().isEmpty());
    }
    for (Index i : interp::allIndices()) {
        auto* b = control<QPushButton>(w, interp::buttonName(i));
        QVERIFY(!b->isEnabledTo(b->parentWidget()));
        QVERIFY(!w->buttonColour(i).isValid());
    }
    QVERIFY(control<QPushButton>(w, "cmdmore")->isEnabled());
    QCOMPARE(control<QPushButton>(w, "cmdmore")->text(), "&More results");

    const std::pair<const char*, const char*> labels[] = {
        {"lbllan", "Langelier        ="},   {"lblryz", "Ryznar           ="},
        {"lblpor", "puckorius      ="},     {"lbldfi", "Driving Force         ="},
        {"lblme", "Momentary Excess="},     {"lblai", "Aggressiveness     ="},
        {"lblsl", "Saturation Level    ="}, {"lbllr", "Larson-Scold ="},
    };
    for (const auto& [name, caption] : labels) {
        QLabel* l = control<QLabel>(w, name);
        QCOMPARE(l->text(), QString::fromLatin1(caption));
        QVERIFY(!l->isEnabledTo(l->parentWidget()));
    }
}

void TestResultsWindows::designStateOfEquilibriumData() {
    frmmore* m = frmmore::instance();
    QVERIFY(!m->isVisible());
    QCOMPARE(m->windowTitle(), "Equilibrium chemical data");
    int boxes = 0;
    for (const DataFrame& f : kDataFrames) {
        auto* frame = control<QGroupBox>(m, f.frame);
        QVERIFY2(frame, f.frame);
        QCOMPARE(frame->title(), QString::fromLatin1(f.caption));
        // The activity frames start disabled, everything else enabled.
        const bool activity =
            frame->objectName() == "fradavies" || frame->objectName() == "fradebye";
        QCOMPARE(frame->isEnabled(), !activity);
        for (const auto& [name, caption] : f.boxes) {
            QLineEdit* box = control<QLineEdit>(frame, name);
            QVERIFY2(box, name);
            QVERIFY(box->text().isEmpty());
            QCOMPARE(box->isEnabledTo(frame), !activity);
            QLabel* label = nullptr;
            for (QLabel* l : frame->findChildren<QLabel*>())
                if (l->buddy() == box) label = l;
            QVERIFY2(label, name);
            QCOMPARE(label->text(), QString::fromLatin1(caption));
            QCOMPARE(label->isEnabledTo(frame), !activity);
            ++boxes;
        }
    }
    QCOMPARE(m->findChildren<QLineEdit*>().size(), boxes);
    auto* symbols = control<QPushButton>(m, "cmddiscript");
    QCOMPARE(symbols->text(), "Symbols &Definition");
    QVERIFY(symbols->isEnabled());
}

void TestResultsWindows::indexFormats_data() {
    QTest::addColumn<QString>("box");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("shown");
    QTest::newRow("LI 0.123456") << "txtlan" << 0.123456 << "0.1235";
    QTest::newRow("LI -1.5") << "txtlan" << -1.5 << "-1.5";
    QTest::newRow("LI 2") << "txtlan" << 2.0 << "2";
    QTest::newRow("LI 0.25") << "txtlan" << 0.25 << "0.25";
    QTest::newRow("RI 1.23456") << "txtryz" << 1.23456 << "1.2346";
    QTest::newRow("PSI 6.00004") << "txtpor" << 6.00004 << "6";
    QTest::newRow("DFI 0.5") << "txtdfi" << 0.5 << "5.000E-1";
    QTest::newRow("ME -0.000123") << "txtme" << -0.000123 << "-1.230E-4";
    QTest::newRow("AI 12345") << "txtai" << 12345.0 << "1.2345E4";
    QTest::newRow("SL 25") << "txtsl" << 25.0 << "2.500E1";
    QTest::newRow("LR 0.0012345") << "txtlr" << 0.0012345 << "1.2345E-3";
}

void TestResultsWindows::indexFormats() {
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
}

void TestResultsWindows::equilibriumValues() {
    // Every box of the equilibrium data window shows its own quantity.
    Engine& e = theEngine();
    AnalysisRecord& r = e.rec;
    SweepArrays& s = e.sw;
    struct Case {
        const char* box;
        std::function<void(double)> set;
        double value;
        const char* shown;
    };
    const Case cases[] = {
        {"txta0", [&](double v) { s.a0(0) = v; }, 0.0123, "1.230E-2"},
        {"txta1", [&](double v) { s.a1(0) = v; }, 0.9871, "9.871E-1"},
        {"txta2", [&](double v) { s.a2(0) = v; }, 0.00059, "5.900E-4"},
        {"txtco3", [&](double v) { s.co3(0) = v; }, 2.25e-6, "2.250E-6"},
        {"txtoh", [&](double v) { s.oh(0) = v; }, 3.5e-7, "3.500E-7"},
        {"txtch", [&](double v) { s.ch(0) = v; }, 3.1623e-8, "3.1623E-8"},
        {"txtphs", [&](double v) { s.phs(0) = v; }, 7.1234, "7.1234E0"},
        {"txtpk1", [&](double v) { r.pk1 = v; }, 6.352, "6.352E0"},
        {"txtpk2", [&](double v) { r.pk2 = v; }, 10.329, "1.0329E1"},
        {"txtpkw", [&](double v) { r.pkw = v; }, 13.995, "1.3995E1"},
        {"txtkw", [&](double v) { r.kw = v; }, 1.0116e-14, "1.0116E-14"},
        {"txtpks", [&](double v) { r.pks = v; }, 8.48, "8.480E0"},
        {"txtck1", [&](double v) { r.ck1 = v; }, 5.0e-7, "5.000E-7"},
        {"txtck2", [&](double v) { r.ck2 = v; }, 6.5e-11, "6.500E-11"},
        {"txtckw", [&](double v) { r.ckw = v; }, 1.25e-14, "1.250E-14"},
        {"txtcks", [&](double v) { r.cks = v; }, 4.5e-9, "4.500E-9"},
        {"txtpca", [&](double v) { r.pca = v; }, 2.699, "2.699E0"},
        {"txtpcks", [&](double v) { r.pcks = v; }, 8.125, "8.125E0"},
        {"txtpck2", [&](double v) { r.pck2 = v; }, 10.125, "1.0125E1"},
        {"txtpckw", [&](double v) { r.pckw = v; }, 13.875, "1.3875E1"},
        {"txth2co3", [&](double v) { s.h2co3(0) = v; }, 0.000375, "3.750E-4"},
        {"txthco3", [&](double v) { s.hco3(0) = v; }, 0.004, "4.000E-3"},
        {"txtct", [&](double v) { s.ct = v; }, 0.0043, "4.300E-3"},
        {"txti", [&](double v) { r.ionic = v; }, 0.0102, "1.020E-2"},
    };
    for (const Case& c : cases)
        c.set(c.value);
    publish();
    for (const Case& c : cases) {
        QLineEdit* b = moreBox(c.box);
        QVERIFY2(b, c.box);
        QCOMPARE(b->text(), QString::fromLatin1(c.shown));
        QVERIFY(b->isEnabled());
    }
    QVERIFY(!frmmore::instance()->isVisible());
}

void TestResultsWindows::valuesAreNotClipped() {
    // The widest texts the formats produce fit their boxes.
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
    for (QLineEdit* b : frmresult::instance()->findChildren<QLineEdit*>())
        QVERIFY2(fits(b), qPrintable(b->objectName() + ": " + b->text()));
    for (QLineEdit* b : frmmore::instance()->findChildren<QLineEdit*>())
        QVERIFY2(fits(b), qPrintable(b->objectName() + ": " + b->text()));
}

void TestResultsWindows::publishLoadsWithoutShowing() {
    QVERIFY(!frmresult::isLoaded());
    QVERIFY(!frmmore::isLoaded());
    publish();
    QVERIFY(frmresult::isLoaded() && frmmore::isLoaded());
    QVERIFY(!frmresult::instance()->isVisible());
    QVERIFY(!frmmore::instance()->isVisible());
    frmresult* w = frmresult::instance();
    QVERIFY(control<QGroupBox>(w, "fraindex")->isEnabled());
    QVERIFY(control<QGroupBox>(w, "frainter")->isEnabled());
    for (Index i : interp::allIndices())
        QVERIFY(control<QPushButton>(w, interp::buttonName(i))->isEnabled());
}

void TestResultsWindows::showResultsShowsAndColours() {
    SweepArrays& s = theEngine().sw;
    s.li(0) = -0.5;
    s.ri(0) = 7.1;
    s.por(0) = 6.1;
    s.ai(0) = 12;
    s.dfi(0) = 1.02;
    s.sl(0) = 0.98;
    s.me(0) = 0.0001;
    s.lr(0) = 0.8;
    publish();
    show();
    frmresult* w = frmresult::instance();
    QVERIFY(w->isVisible());
    QCOMPARE(w->buttonColour(Index::Langelier), QColor(255, 255, 0));
    QCOMPARE(w->buttonColour(Index::Ryznar), QColor(255, 128, 128));
    QCOMPARE(w->buttonColour(Index::Puckorius), QColor(0, 255, 0));
    QCOMPARE(w->buttonColour(Index::Aggressiveness), QColor(255, 192, 128));
    QCOMPARE(w->buttonColour(Index::DrivingForce), QColor(255, 255, 192));
    QCOMPARE(w->buttonColour(Index::SaturationLevel), QColor(255, 255, 192));
    QCOMPARE(w->buttonColour(Index::MomentaryExcess), QColor(192, 255, 192));
    QCOMPARE(w->buttonColour(Index::LarsonSkold), QColor(255, 128, 128));
    // More results keeps the standard button look.
    QVERIFY(!control<QPushButton>(w, "cmdmore")->property("backColour").isValid());

    // Recolouring after a new calculation.
    s.li(0) = 0;
    show();
    QCOMPARE(w->buttonColour(Index::Langelier), QColor(0, 255, 0));
    s.li(0) = 4;
    show();
    QCOMPARE(w->buttonColour(Index::Langelier), QColor(255, 0, 0));
}

void TestResultsWindows::larsonSkoldNotChosen() {
    SweepArrays& s = theEngine().sw;
    s.lr(0) = 0.5;
    publish();
    show();
    frmresult* w = frmresult::instance();
    const QColor before = w->buttonColour(Index::LarsonSkold);
    QCOMPARE(before, QColor(255, 0, 0));

    theOptions().index.bllr = false;
    s.lr(0) = 1.0; // would be salmon
    publish();
    show();
    QVERIFY(resultBox("txtlr")->text().isEmpty());
    QVERIFY(!resultBox("txtlr")->isEnabled());
    QVERIFY(!control<QLabel>(w, "lbllr")->isEnabled());
    QVERIFY(!control<QPushButton>(w, "cmdlr")->isEnabled());
    QCOMPARE(w->buttonColour(Index::LarsonSkold), before);
    // The other indices are untouched.
    QVERIFY(resultBox("txtlan")->isEnabled());
    QVERIFY(!resultBox("txtlan")->text().isEmpty());
}

void TestResultsWindows::larsonSkoldRefilledByMoreResults() {
    theOptions().index.bllr = false;
    theEngine().sw.lr(0) = 0.0012345;
    publish();
    show();
    QVERIFY(resultBox("txtlr")->text().isEmpty());

    control<QPushButton>(frmresult::instance(), "cmdmore")->click();
    QCOMPARE(resultBox("txtlr")->text(), "1.2345E-3");
    QVERIFY(resultBox("txtlr")->isEnabled());
    QVERIFY(control<QLabel>(frmresult::instance(), "lbllr")->isEnabled());
    QVERIFY(control<QPushButton>(frmresult::instance(), "cmdlr")->isEnabled());
    QVERIFY(frmmore::instance()->isVisible());

    // Until the next Show results.
    show();
    QVERIFY(resultBox("txtlr")->text().isEmpty());
    QVERIFY(!resultBox("txtlr")->isEnabled());
}

void TestResultsWindows::activityFrames_data() {
    QTest::addColumn<QString>("equation");
    QTest::addColumn<bool>("daviesFrame");
    QTest::addColumn<bool>("debyeFrame");
    QTest::addColumn<bool>("daviesBoxes");
    QTest::addColumn<bool>("debyeBoxes");
    QTest::newRow("Davies") << "davies" << true << true << true << false;
    QTest::newRow("Debye-Huckel") << "debye" << false << true << false << true;
    QTest::newRow("extended Debye-Huckel") << "edebye" << false << false << false << false;
    QTest::newRow("Guntelberg") << "gun" << false << false << false << false;
}

void TestResultsWindows::activityFrames() {
    QFETCH(QString, equation);
    QFETCH(bool, daviesFrame);
    QFETCH(bool, debyeFrame);
    QFETCH(bool, daviesBoxes);
    QFETCH(bool, debyeBoxes);

    AnalysisRecord& r = theEngine().rec;
    r.adav = 0.5091;
    r.lanm = 0.9012345;
    r.land = 0.6543215;
    r.lant = 0.3876;
    setActivityEquation(equation.toLatin1().constData());
    control<QPushButton>(frmresult::instance(), "cmdmore")->click();
    frmmore* m = frmmore::instance();
    QCOMPARE(control<QGroupBox>(m, "fradavies")->isEnabled(), daviesFrame);
    QCOMPARE(control<QGroupBox>(m, "fradebye")->isEnabled(), debyeFrame);
    QCOMPARE(control<QGroupBox>(m, "fradavies")->title(), "Davies variables :");
    QCOMPARE(control<QGroupBox>(m, "fradebye")->title(), "Debye - Huckel  variables :");
    expectActivityControls(kDavies, daviesBoxes);
    expectActivityControls(kDebye, debyeBoxes);
    if (daviesBoxes) {
        QCOMPARE(moreBox("txta")->text(), "5.091E-1");
        QCOMPARE(moreBox("txtlanmd")->text(), "0.90123");
        QCOMPARE(moreBox("txtlandd")->text(), "0.65432");
        QCOMPARE(moreBox("txtlantd")->text(), "0.3876");
    }
    if (debyeBoxes) {
        QCOMPARE(moreBox("txtlanmh")->text(), "0.90123");
        QCOMPARE(moreBox("txtlandh")->text(), "0.65432");
        QCOMPARE(moreBox("txtlanth")->text(), "0.3876");
    }
}

void TestResultsWindows::debyeThenDaviesKeepsBoth() {
    AnalysisRecord& r = theEngine().rec;
    r.lanm = 0.91;
    r.land = 0.71;
    r.lant = 0.51;
    setActivityEquation("debye");
    publish();
    show();
    r.lanm = 0.92;
    r.land = 0.72;
    r.lant = 0.52;
    r.adav = 0.5;
    setActivityEquation("davies");
    publish();
    show();
    frmmore* m = frmmore::instance();
    QVERIFY(control<QGroupBox>(m, "fradavies")->isEnabled());
    QVERIFY(control<QGroupBox>(m, "fradebye")->isEnabled());
    QCOMPARE(moreBox("txtlanmh")->text(), "0.91");
    QCOMPARE(moreBox("txtlanth")->text(), "0.51");
    QCOMPARE(moreBox("txtlanmd")->text(), "0.92");
    QCOMPARE(moreBox("txtlantd")->text(), "0.52");
    QVERIFY(moreBox("txtlanmh")->isEnabled() && moreBox("txtlanmd")->isEnabled());

    // Back to Guntelberg: nothing is taken away.
    setActivityEquation("gun");
    publish();
    QCOMPARE(moreBox("txtlanmh")->text(), "0.91");
    QVERIFY(control<QGroupBox>(m, "fradavies")->isEnabled());
}

void TestResultsWindows::closedWindowsComeBackInDesignState() {
    theEngine().sw.li(0) = 1;
    setActivityEquation("davies");
    publish();
    show();
    control<QPushButton>(frmresult::instance(), "cmdmore")->click();
    QVERIFY(frmmore::instance()->isVisible());

    // Hidden windows keep their state.
    frmresult::instance()->hide();
    frmmore::instance()->hide();
    QCOMPARE(resultBox("txtlan")->text(), "1");
    QVERIFY(control<QGroupBox>(frmmore::instance(), "fradavies")->isEnabled());

    test::unload<frmmore>();
    test::unload<frmresult>();
    QVERIFY(!frmresult::isLoaded() && !frmmore::isLoaded());
    QVERIFY(resultBox("txtlan")->text().isEmpty());
    QVERIFY(!control<QGroupBox>(frmresult::instance(), "fraindex")->isEnabled());
    QVERIFY(!frmresult::instance()->buttonColour(Index::Langelier).isValid());
    QVERIFY(!control<QGroupBox>(frmmore::instance(), "fradavies")->isEnabled());
    QVERIFY(moreBox("txta")->text().isEmpty());
    QVERIFY(moreBox("txti")->text().isEmpty());
}

void TestResultsWindows::clearEmptiesLangelierAndRyznarOnly() {
    SweepArrays& s = theEngine().sw;
    s.li(0) = 0.5;
    s.ri(0) = 7;
    s.por(0) = 6;
    publish();
    show();
    clearLangelierRyznar();
    QVERIFY(resultBox("txtlan")->text().isEmpty());
    QVERIFY(resultBox("txtryz")->text().isEmpty());
    QCOMPARE(resultBox("txtpor")->text(), "6");
    QVERIFY(frmresult::instance()->isVisible());
}

void TestResultsWindows::clearWithoutResultsWindowLoadsNothing() {
    clearLangelierRyznar();
    QVERIFY(!frmresult::isLoaded());
}

void TestResultsWindows::placementOnSmallScreen() {
    platform_.useSmallScreen();
    publish();
    show();
    QCOMPARE(frmresult::instance()->pos(), QPoint(168, 133));
    frmresult::instance()->move(300, 300);
    show();
    QCOMPARE(frmresult::instance()->pos(), QPoint(168, 133));

    control<QPushButton>(frmresult::instance(), "cmdmore")->click();
    QCOMPARE(frmmore::instance()->pos(), QPoint(143, 117));
    frmmore::instance()->move(10, 10);
    control<QPushButton>(frmresult::instance(), "cmdmore")->click();
    QCOMPARE(frmmore::instance()->pos(), QPoint(143, 117));

    control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
    QVERIFY(frmsymbols::instance()->isVisible());
    QCOMPARE(frmsymbols::instance()->pos(), QPoint(8, 17));
}

void TestResultsWindows::noPlacementOnOtherScreens() {
    for (QSize screen : {QSize(1024, 768), QSize(800, 601), QSize(640, 480)}) {
        platform_.screen = screen;
        frmresult::instance()->move(40, 50);
        publish();
        show();
        QCOMPARE(frmresult::instance()->pos(), QPoint(40, 50));
        frmmore::instance()->move(60, 70);
        control<QPushButton>(frmresult::instance(), "cmdmore")->click();
        QCOMPARE(frmmore::instance()->pos(), QPoint(60, 70));
        frmsymbols::instance()->move(80, 90);
        control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
        QCOMPARE(frmsymbols::instance()->pos(), QPoint(80, 90));
        test::unloadResultWindows();
    }
}

void TestResultsWindows::symbolsWindow() {
    control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
    frmsymbols* w = frmsymbols::instance();
    QVERIFY(w->isVisible());
    QCOMPARE(w->windowTitle(), "Symbols definition");
    QStringList shown, expected;
    for (QLabel* l : w->findChildren<QLabel*>())
        shown << l->text();
    for (const auto& [symbol, meaning] : kSymbols)
        expected << QString::fromLatin1(symbol) + '=' + QString::fromLatin1(meaning);
    shown.sort();
    expected.sort();
    QCOMPARE(shown, expected);
    QVERIFY(QTest::qWaitForWindowExposed(w));
    for (QLabel* l : w->findChildren<QLabel*>())
        QVERIFY2(l->width() >= l->sizeHint().width(), qPrintable(l->text()));
    // Hiding and showing again keeps the same window.
    w->hide();
    control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
    QCOMPARE(frmsymbols::instance(), w);
}

void TestResultsWindows::windowsFitTheSmallScreen() {
    // At their places on an 800 x 600 screen the windows stay on the screen.
    platform_.useSmallScreen();
    publish();
    show();
    control<QPushButton>(frmresult::instance(), "cmdmore")->click();
    control<QPushButton>(frmmore::instance(), "cmddiscript")->click();
    const QRect screen(0, 0, 800, 600);
    for (QWidget* w :
         {static_cast<QWidget*>(frmresult::instance()), static_cast<QWidget*>(frmmore::instance()),
          static_cast<QWidget*>(frmsymbols::instance())})
        QVERIFY2(screen.contains(w->frameGeometry()),
                 qPrintable(QStringLiteral("%1 %2x%3")
                                .arg(w->objectName())
                                .arg(w->frameGeometry().width())
                                .arg(w->frameGeometry().height())));
}

VELMORA_GUI_TEST_MAIN(TestResultsWindows)
#include "tst_resultswindows.moc"
