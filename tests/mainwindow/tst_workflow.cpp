// Reading the analysis, the accuracy test and the calculation as the user
// runs them from the main window: the workflow states and commands they
// leave, their messages, the failures reported without losing the earlier
// results, and whole sessions typed from the first key to "End of analysis ".
#include "app/startup.h"
#include "engine/engine.h"
#include "windowkit/formsupport.h"
#include "mainwindow/frmmain.h"
#include "numtext/numtext.h"
#include "options/frmactivity.h"
#include "options/frmionic.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "results/frmresult.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>

using namespace velmora;
using velmora::test::RecordingPlatform;

namespace {

bool near(double actual, double expected, double relative = 1e-4) {
    return std::abs(actual - expected) <= relative * std::max(std::abs(expected), 1e-12);
}

#define QNEAR(actual, expected)                                                                    \
    QVERIFY2(near((actual), (expected)), qPrintable(QStringLiteral("%1 = %2, expected %3")         \
                                                        .arg(QLatin1String(#actual))               \
                                                        .arg((actual), 0, 'g', 10)                 \
                                                        .arg((expected), 0, 'g', 10)))

} // namespace

class WorkflowTest : public test::ProgramTest {
    Q_OBJECT

    frmOptions* opt() { return frmOptions::instance(); }

    QString resultText(const char* name) {
        auto* b = frmresult::instance()->findChild<QLineEdit*>(QLatin1String(name));
        return b ? b->text() : QStringLiteral("<none>");
    }

    // The worked sample with chloride and sulphate under Langelier, sweep off.
    void calculateWorkedSample() {
        applyOptions({opt()->chklr});
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
    }

    const QStringList lewisSample = {"txtt=25",   "txtph=7.5",   "txtalk=200", "txtca=80",
                                     "txtmg=24",  "txtna=46",    "txtk=3.9",   "txtcl=50",
                                     "txtso4=60", "txthco3=244", "txtco3=0"};

private slots:
    // ---------------------------------------------------------------- Read Data
    void readDataMessages_data() {
        QTest::addColumn<QString>("equation");
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("title");
        const QString tds =
            QStringLiteral("you Should enter TDS,T,pH,Ca and Alk values at least !");
        const QString ec = QStringLiteral("you Should enter ec,T,pH,Ca and Alk values at least !");
        const QString lewis = QStringLiteral("you Should enter T,pH,Ca and Alk values at least !");
        const QString alk =
            QStringLiteral("you Should enter TDS,T,pH,Ca and Alk values at least ! !");
        const QString v = QStringLiteral("Velmora");
        QTest::newRow("Langelier, nothing typed") << "lang" << QStringList{} << tds << v;
        QTest::newRow("Langelier, no pH")
            << "lang" << QStringList{"txtt=25", "txtalk=200", "txtca=80"} << tds << v;
        QTest::newRow("Langelier, no alkalinity")
            << "lang" << QStringList{"txtt=25", "txtph=7", "txtca=80"} << tds << v;
        QTest::newRow("Russell, no conductivity")
            << "rus" << QStringList{"txtt=25", "txtph=7", "txtalk=200", "txtca=80"} << ec << v;
        QTest::newRow("Russell, no temperature")
            << "rus" << QStringList{"txtec=85", "txtph=7", "txtalk=200", "txtca=80"} << tds << v;
        QTest::newRow("Russell, no calcium")
            << "rus" << QStringList{"txtec=85", "txtt=25", "txtalk=200"} << tds << v;
        QTest::newRow("Russell, no alkalinity")
            << "rus" << QStringList{"txtec=85", "txtt=25", "txtph=7", "txtca=80"} << alk
            << "Velmora!!";
        QTest::newRow("Lewis, no pH")
            << "lewis" << QStringList{"txtt=25", "txtalk=200", "txtca=80"} << lewis << v;
        QTest::newRow("Lewis, no alkalinity")
            << "lewis" << QStringList{"txtt=25", "txtph=7", "txtca=80"} << lewis << v;
    }
    void readDataMessages() {
        QFETCH(QString, equation);
        QFETCH(QStringList, entries);
        QFETCH(QString, text);
        QFETCH(QString, title);
        chooseEquation(equation);
        type(entries);
        // a valid sweep enables Read Data whatever the boxes hold
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        QVERIFY(m_->cmdread->isEnabled());
        const QString state = m_->statusText();
        rec_->clear();
        test::click(m_->cmdread);
        QCOMPARE(rec_->messages.size(), 1);
        QCOMPARE(rec_->last().text, text);
        QCOMPARE(rec_->last().title, title);
        QCOMPARE(rec_->last().icon, Platform::Icon::None);
        QCOMPARE(rec_->last().buttons, Platform::Buttons::Ok);
        QCOMPARE(m_->statusText(), state);
        QVERIFY(!m_->cmdcalc->isEnabled());
    }

    void russellStoresConductivityBeforeTheTemperatureMessage() {
        chooseEquation(QStringLiteral("rus"));
        type({"txtec=85", "txtph=7", "txtalk=200", "txtca=80"});
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        theEngine().rec.temp = 11;
        test::click(m_->cmdread);
        QCOMPARE(theEngine().rec.ec, 85.0);
        QCOMPARE(theEngine().rec.ec100, 8500.0);
        QCOMPARE(theEngine().rec.temp, 11.0); // not reached
    }

    void russellWithoutConductivityStoresNothing() {
        chooseEquation(QStringLiteral("rus"));
        type({"txtt=30", "txtph=7", "txtalk=200", "txtca=80"});
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        theEngine().rec.ec = 12;
        test::click(m_->cmdread);
        QCOMPARE(theEngine().rec.ec, 12.0);
        QCOMPARE(theEngine().rec.temp, 0.0);
    }

    void langelierWithoutDissolvedSolidsReadsZero() {
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80"});
        QVERIFY(!m_->cmdread->isEnabled()); // the edits alone do not enable it
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        theEngine().rec.tds = 999;
        test::click(m_->cmdread);
        QVERIFY(rec_->messages.isEmpty());
        QCOMPARE(theEngine().rec.tds, 0.0);
        QCOMPARE(theEngine().rec.tk, 298.15);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QVERIFY(m_->cmdcalc->isEnabled());
    }

    void russellDoesNotCheckThePh() {
        chooseEquation(QStringLiteral("rus"));
        type({"txtt=25", "txtec=85", "txtalk=200", "txtca=80"});
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        test::click(m_->cmdread);
        QVERIFY(rec_->messages.isEmpty());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QCOMPARE(theEngine().rec.ionic, 1.6e-5 * 8500);
    }

    void readDataArithmeticFailureIsReported() {
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=0", "txtca=0", "txthco3=0", "txtco3=0"});
        QVERIFY(m_->cmdread->isEnabled());
        test::click(m_->cmdread);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(QStringLiteral("Read Data failed: division by zero")),
                 qPrintable(rec_->last().text));
        QCOMPARE(rec_->last().title, QStringLiteral("Velmora"));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(!m_->cmdcalc->isEnabled());
        QVERIFY(m_->isVisible());
    }

    // ---------------------------------------------------------------- accuracy test
    void unacceptableIonBalance() {
        chooseEquation(QStringLiteral("lewis"));
        type(lewisSample);
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisRejected));
        QVERIFY(!m_->cmdcalc->isEnabled());
        QVERIFY(m_->cmdaccuracy->isEnabled());
        QCOMPARE(backColor(m_->cmdaccuracy), vb::Red);
        QCOMPARE(paintedBackColor(m_->cmdaccuracy), QColor(255, 0, 0));
        QVERIFY(!enabledFlag(m_->fraaccuracy));

        test::click(m_->cmdaccuracy);
        const QList<QWidget*> frame = {m_->fraaccuracy, m_->lblsumca, m_->lblsuman, m_->lbldiff,
                                       m_->txtsumca,    m_->txtsuman, m_->txtdiff};
        for (QWidget* w : frame)
            QVERIFY(w->isEnabled());
        QCOMPARE(m_->txtsumca->text(), QStringLiteral("8.05603"));
        QCOMPARE(m_->txtsuman->text(), QStringLiteral("6.65952"));
        QNEAR(m_->txtdiff->text().toDouble(), 9.48998);
        QCOMPARE(m_->txtdiff->text(),
                 QString::fromStdString(fmt::rounded(theEngine().rec.diff, 5)));
    }

    void acceptableIonBalanceAndRefreshOfAnOpenFrame() {
        chooseEquation(QStringLiteral("lewis"));
        type(lewisSample);
        test::click(m_->cmdread);
        test::click(m_->cmdaccuracy);
        QCOMPARE(m_->txtsumca->text(), QStringLiteral("8.05603"));
        // less sodium balances the analysis; the open frame follows the reading
        type({"txtna=14"});
        test::click(m_->cmdread);
        QCOMPARE(backColor(m_->cmdaccuracy), vb::Green);
        QCOMPARE(paintedBackColor(m_->cmdaccuracy), QColor(0, 255, 0));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QVERIFY(m_->cmdcalc->isEnabled());
        QCOMPARE(m_->txtsumca->text(),
                 QString::fromStdString(fmt::rounded(theEngine().rec.sumca, 5)));
        QNEAR(m_->txtsumca->text().toDouble(), 6.66412);
        QVERIFY(std::abs(m_->txtdiff->text().toDouble()) < 2);
    }

    void langelierReadingLeavesTheAccuracyButtonAlone() {
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QVERIFY(!m_->cmdaccuracy->isEnabled());
        QCOMPARE(backColor(m_->cmdaccuracy), vb::ButtonFace);
        QVERIFY(theEngine().rec.accuracyok);
    }

    // ---------------------------------------------------------------- calculation
    void workedSampleWithoutSweep() {
        applyOptions({opt()->chkli, opt()->chkri, opt()->chkpor, opt()->chklr, opt()->chkdfi,
                      opt()->chkai, opt()->chkme, opt()->chksl});
        test::typeWorkedSample(m_);
        QCOMPARE(m_->txtso4->text(), QStringLiteral("60"));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        test::click(m_->cmdcalc);
        QVERIFY(rec_->messages.isEmpty());

        const SweepArrays& s = theEngine().sw;
        const AnalysisRecord& r = theEngine().rec;
        QNEAR(r.lanm, 0.891251);
        QNEAR(r.land, 0.630957);
        QNEAR(s.ct, 0.00421);
        QNEAR(s.phs(0), 7.25941);
        QNEAR(s.li(0), 0.24059);
        QNEAR(s.ri(0), 7.01882);
        QNEAR(s.por(0), 6.60781);
        QNEAR(s.ai(0), 12.10119);
        QNEAR(s.dfi(0), 0.771772);
        QNEAR(s.me(0), 3.2734e-6);
        QNEAR(s.lr(0), 0.668661);
        QNEAR(s.sl(0), 0.368698);
        QCOMPARE(s.ph(0), 7.5);
        QCOMPARE(s.li(1), s.li(0));

        // the analysed state
        QCOMPARE(m_->statusText(), QStringLiteral("End of analysis "));
        QVERIFY(m_->cmdclear->isEnabled() && m_->cmdshow->isEnabled());
        QVERIFY(m_->mnuFileSave->isEnabled() && m_->mnuFilePrint->isEnabled());
        QVERIFY(m_->toolbarButton(3)->isEnabled() && m_->toolbarButton(5)->isEnabled());
        QVERIFY(!m_->toolbarButton(9)->isEnabled());
        // without the sweep the results are published at once
        QVERIFY(frmresult::isLoaded());
        QCOMPARE(resultText("txtlan"), QStringLiteral("0.2406"));
        QCOMPARE(resultText("txtryz"), QStringLiteral("7.0188"));

        // Show results
        test::click(m_->cmdshow);
        QVERIFY(!m_->cmdread->isEnabled() && !m_->cmdcalc->isEnabled());
        QVERIFY(!m_->mnusettingis->isEnabled() && !m_->mnusittingac->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
        QVERIFY(frmresult::instance()->isVisible());

        // Clear empties the Langelier and Ryznar results
        test::click(m_->cmdclear);
        QVERIFY(resultText("txtlan").isEmpty());
        QVERIFY(resultText("txtryz").isEmpty());
    }

    void activityChosenInItsDialog() {
        m_->mnusittingac->trigger();
        test::click(frmactivity::instance()->optdebye);
        test::click(frmactivity::instance()->cmdOK);
        QVERIFY(theOptions().equations.bldebye);
        QVERIFY(!theOptions().equations.bledebye);
        calculateWorkedSample();
        QNEAR(theEngine().sw.li(0), 0.24059);
        // Davies gives other activity coefficients, hence another index
        m_->mnusittingac->trigger();
        test::click(frmactivity::instance()->optdavies);
        test::click(frmactivity::instance()->cmdOK);
        test::typeInto(m_->txtt, QString()); // nothing typed: no change
        test::retype(m_->txtt, QStringLiteral("25"));
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QVERIFY(theOptions().equations.bldavies);
        QVERIFY(!near(theEngine().rec.lanm, 0.891251));
    }

    void workedSampleWithSweep() {
        applyOptions({opt()->chklr}, QStringLiteral("7"), QStringLiteral("0.5"),
                     QStringLiteral("5"));
        QVERIFY(m_->cmdread->isEnabled());
        QCOMPARE(theOptions().sweep.entry[0], 7.0);
        QCOMPARE(theOptions().sweep.entry[5], 9.5);
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QVERIFY(rec_->messages.isEmpty());
        const SweepArrays& s = theEngine().sw;
        QNEAR(s.li(0), 0.24059); // the measured point
        QCOMPARE(s.ph(0), 7.5);
        const double ph[] = {7.0, 7.5, 8.0, 8.5, 9.0};
        for (int i = 1; i <= 5; ++i)
            QNEAR(s.ph(i), ph[i - 1]);
        QNEAR(s.li(1), -0.30747);
        QNEAR(s.me(1), -3.38209e-6);
        QNEAR(s.li(2), 0.24059);
        QNEAR(s.li(5), 1.79247);
        QNEAR(s.me(5), 2.82893e-4);
        QVERIFY(near(s.alk(5), 2.252e-3, 1e-3));
        QNEAR(s.ct, 0.00421);
        QNEAR(s.phstart, 9.5);
        QCOMPARE(int(s.ipoint), 6);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
        QVERIFY(m_->toolbarButton(9)->isEnabled());
        // the sweep does not publish; Show results does
        QVERIFY(!frmresult::isLoaded());
        test::click(m_->cmdshow);
        QCOMPARE(resultText("txtlan"), QStringLiteral("0.2406"));
    }

    void sweepFromSixAndAHalf() {
        applyOptions({}, QStringLiteral("6.5"), QStringLiteral("0.5"), QStringLiteral("5"));
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        const double ph[] = {6.5, 7.0, 7.5, 8.0, 8.5};
        for (int i = 1; i <= 5; ++i)
            QNEAR(theEngine().sw.ph(i), ph[i - 1]);
        QNEAR(theEngine().sw.phstart, 9.0);
    }

    void emptyPhWithoutSweep() {
        // Russell reads without a pH; a sweep applied once enables Read Data
        chooseEquation(QStringLiteral("rus"));
        type({"txtt=25", "txtec=85", "txtalk=200", "txtca=80"});
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        test::click(opt()->chkphsweep); // unticked, not applied
        test::click(m_->cmdread);
        QVERIFY(m_->cmdcalc->isEnabled());
        theEngine().sw.li(0) = 42;
        test::click(m_->cmdcalc);
        QCOMPARE(rec_->texts(), QStringList{QStringLiteral(
                                    "you Should enter TDS,T,pH,Mg,Ca and Alk values at least !")});
        QCOMPARE(rec_->last().title, QStringLiteral("Velmora"));
        QCOMPARE(rec_->last().icon, Platform::Icon::None);
        QCOMPARE(theEngine().sw.li(0), 42.0);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
    }

    void emptyPhWithSweepComputesAtPhZero() {
        chooseEquation(QStringLiteral("rus"));
        type({"txtt=25", "txtec=85", "txtalk=200", "txtca=80"});
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        test::click(m_->cmdread);
        theEngine().sw.ph(0) = 5;
        test::click(m_->cmdcalc);
        QCOMPARE(theEngine().sw.ph(0), 0.0);
        QNEAR(theEngine().sw.ph(2), 7.5);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
    }

    // ---------------------------------------------------------------- failures
    void failureAtTheMeasuredPointKeepsEarlierResults() {
        calculateWorkedSample();
        const Engine& e = theEngine();
        const double li0 = e.sw.li(0), ph0 = e.sw.ph(0), ct = e.sw.ct, pck2 = e.rec.pck2,
                     mca = e.rec.mca, li1 = e.sw.li(1);
        test::click(m_->cmdclear);
        test::typeWorkedSample(m_);
        test::retype(m_->txtca, QStringLiteral("0"));
        test::retype(m_->txtph, QStringLiteral("8.2"));
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        rec_->clear();
        test::click(m_->cmdcalc);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(
                     QStringLiteral("Calculate failed: logarithm of a non-positive number")),
                 qPrintable(rec_->last().text));
        QCOMPARE(rec_->last().title, QStringLiteral("Velmora"));
        // the whole measured point of the last calculation stays, for Show
        // results and More results: pH, carbonate total and constants too
        QCOMPARE(e.sw.li(0), li0);
        QCOMPARE(e.sw.ph(0), ph0);
        QCOMPARE(e.sw.ct, ct);
        QCOMPARE(e.rec.pck2, pck2);
        QCOMPARE(e.sw.li(1), li1);
        QCOMPARE(e.rec.mca, mca);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QVERIFY(!m_->cmdshow->isEnabled());
    }

    void sweepTextsCalculateCannotConvert_data() {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("optionMessage");
        QTest::addColumn<QString>("failing");
        QTest::newRow("lone point increment") << "point"
                                              << ""
                                              << "pH increment";
        QTest::newRow("step box emptied by Apply")
            << "past14"
            << "Step numbers must be less than 5 , 3 is better."
            << "number of steps";
        QTest::newRow("empty box after a refused Apply")
            << "empty"
            << "you should enter initial pH,pH increment and step numbers values"
            << "start pH";
    }
    void sweepTextsCalculateCannotConvert() {
        QFETCH(QString, how);
        QFETCH(QString, optionMessage);
        QFETCH(QString, failing);
        applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), QStringLiteral("2"));
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
        const double li1 = theEngine().sw.li(1);
        test::click(m_->cmdread);
        QVERIFY(m_->cmdcalc->isEnabled());

        m_->mnuoptionoptions->trigger();
        frmOptions* o = opt();
        if (how == QLatin1String("point")) {
            test::retype(o->txtincrementph, QStringLiteral("."));
        } else if (how == QLatin1String("past14")) {
            test::retype(o->txtincrementph, QStringLiteral("2"));
            test::retype(o->txtstep, QStringLiteral("5"));
            test::click(o->cmdApply);
        } else {
            test::eraseBox(o->txtinitialph);
            test::click(o->cmdApply);
        }
        if (optionMessage.isEmpty()) {
            QVERIFY(rec_->messages.isEmpty());
        } else {
            QCOMPARE(rec_->texts(), QStringList{optionMessage});
            QVERIFY(o->isVisible());
        }
        // a refused Apply leaves the workflow buttons as they were
        QVERIFY(m_->cmdcalc->isEnabled());
        rec_->clear();
        test::click(m_->cmdcalc);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(QStringLiteral("Calculate failed: ")) &&
                     rec_->last().text.contains(failing),
                 qPrintable(rec_->last().text));
        QCOMPARE(rec_->last().title, QStringLiteral("Velmora"));
        QCOMPARE(theEngine().sw.li(1), li1);
    }

    // ---------------------------------------------------------------- workflow table
    void optionsOkAfterCalculation() {
        calculateWorkedSample();
        QVERIFY(m_->cmdcalc->isEnabled() && m_->cmdclear->isEnabled());
        m_->toolbarButton(9)->setEnabled(true);
        applyOptions({});
        QVERIFY(!m_->cmdcalc->isEnabled());
        QVERIFY(!m_->cmdaccuracy->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled());
        QVERIFY(!m_->cmdshow->isEnabled());
        QVERIFY(!m_->toolbarButton(9)->isEnabled());
        // Larson-Skold is still ticked: chloride and sulphate stay, Read waits
        QVERIFY(!m_->cmdread->isEnabled());
        QCOMPARE(m_->txtcl->text(), QStringLiteral("50"));
    }

    void lewisSessionFromTypingToEndOfAnalysis() {
        chooseEquation(QStringLiteral("lewis"));
        QCOMPARE(backColor(m_->txtco3), vb::Green);
        QCOMPARE(backColor(m_->txtmg), vb::Yellow);
        type(lewisSample);
        type({"txtna=14"});
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        test::click(m_->cmdaccuracy);
        QVERIFY(!m_->txtsuman->text().isEmpty());
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
        QVERIFY(rec_->messages.isEmpty());
        QVERIFY(theEngine().rec.mca > 0 && theEngine().rec.ionic > 0);
        QVERIFY(std::isfinite(theEngine().sw.li(0)));
        QCOMPARE(theEngine().rec.hco3in, 244.0);
    }
};

VELMORA_GUI_TEST_MAIN(WorkflowTest)
#include "tst_workflow.moc"
