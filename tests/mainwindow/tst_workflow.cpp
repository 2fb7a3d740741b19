// Reading the analysis, the accuracy test and the calculation as the user
// runs them from the main window: when Read Data becomes possible, the
// workflow states and commands each step and each edit leave, and the
// failures reported without losing the earlier results.
#include "app/startup.h"
#include "engine/engine.h"
#include "mainwindow/formsupport.h"
#include "mainwindow/frmmain.h"
#include "numtext/numtext.h"
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

using namespace velmora;

class WorkflowTest : public test::ProgramTest {
    Q_OBJECT

    frmOptions* opt() { return frmOptions::instance(); }
    void sweep() { applyOptions({}, QStringLiteral("7"), QStringLiteral("0.5"), "2"); }
    void readAndCalculate() {
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
    }
    QString resultText(const char* name) {
        return frmresult::instance()->findChild<QLineEdit*>(QLatin1String(name))->text();
    }
    const QStringList lewisSample = {"txtt=25",   "txtph=7.5",   "txtalk=200", "txtca=80",
                                     "txtmg=24",  "txtna=46",    "txtk=3.9",   "txtcl=50",
                                     "txtso4=60", "txthco3=244", "txtco3=0"};

private slots:
    // ---------------------------------------------------------------- Read Data
    void readDataMessageKeepsTheState() {
        chooseEquation(QStringLiteral("rus"));
        type({"txtt=25", "txtph=7", "txtalk=200", "txtca=80"});
        QVERIFY(!m_->cmdread->isEnabled());
        sweep(); // a valid sweep enables Read Data whatever the boxes hold
        QVERIFY(m_->cmdread->isEnabled());
        const QString state = m_->statusText();
        test::click(m_->cmdread);
        QCOMPARE(rec_->messages.size(), 1);
        QCOMPARE(m_->statusText(), state);
        QVERIFY(!m_->cmdcalc->isEnabled());
    }

    void readDataArithmeticFailureIsReported() {
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=0", "txtca=0", "txthco3=0", "txtco3=0"});
        test::click(m_->cmdread);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(QStringLiteral("Read Data failed: division by zero")),
                 qPrintable(rec_->last().text));
        QCOMPARE(m_->statusText(), workflow::ReadyToRead);
        QVERIFY(!m_->cmdcalc->isEnabled());
    }

    // ---------------------------------------------------------------- accuracy test
    void ionBalanceVerdictAndItsFrame() {
        chooseEquation(QStringLiteral("lewis"));
        type(lewisSample);
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), workflow::AnalysisRejected);
        QVERIFY(!m_->cmdcalc->isEnabled() && m_->cmdaccuracy->isEnabled());
        QCOMPARE(paintedBackColor(m_->cmdaccuracy), QColor(255, 0, 0));
        QVERIFY(!enabledFlag(m_->fraaccuracy));
        test::click(m_->cmdaccuracy);
        for (QWidget* w : std::initializer_list<QWidget*>{m_->fraaccuracy, m_->lblsumca,
                                                          m_->txtsumca, m_->txtdiff})
            QVERIFY(w->isEnabled());
        QCOMPARE(m_->txtsumca->text(), QStringLiteral("8.05603"));
        // less sodium balances the analysis; the open frame follows the reading
        type({"txtna=14"});
        test::click(m_->cmdread);
        QCOMPARE(paintedBackColor(m_->cmdaccuracy), QColor(0, 255, 0));
        QCOMPARE(m_->statusText(), workflow::ReadyForAnalysis);
        QCOMPARE(m_->txtsumca->text(),
                 QString::fromStdString(fmt::rounded(theEngine().rec.sumca, 5)));
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), workflow::AnalysisDone);
    }

    // ---------------------------------------------------------------- calculation
    void workedSampleWithSweep() {
        applyOptions({opt()->chklr}, QStringLiteral("7"), QStringLiteral("0.5"), "5");
        test::typeWorkedSample(m_);
        readAndCalculate();
        QVERIFY(rec_->messages.isEmpty());
        QCOMPARE(theEngine().sw.ph(0), 7.5); // the measured point, then the sweep
        QCOMPARE(theEngine().sw.ph(5), 9.0);
        QCOMPARE(m_->statusText(), workflow::AnalysisDone);
        QVERIFY(m_->cmdclear->isEnabled() && m_->mnuFileSave->isEnabled());
        QVERIFY(m_->toolbarButton(9)->isEnabled() && m_->toolbarButton(5)->isEnabled());
        // the sweep does not publish; Show results does
        QVERIFY(!frmresult::isLoaded());
        test::click(m_->cmdshow);
        QCOMPARE(resultText("txtlan"), QStringLiteral("0.2406"));
        QVERIFY(!m_->cmdread->isEnabled() && !m_->mnusettingis->isEnabled());
    }

    void emptyPh() {
        // Russell reads without a pH; a sweep applied once enables Read Data
        chooseEquation(QStringLiteral("rus"));
        type({"txtt=25", "txtec=85", "txtalk=200", "txtca=80"});
        sweep();
        test::click(opt()->chkphsweep); // unticked, not applied
        test::click(m_->cmdread);
        theEngine().sw.li(0) = 42;
        test::click(m_->cmdcalc);
        QCOMPARE(rec_->messages.size(), 1);
        QCOMPARE(theEngine().sw.li(0), 42.0);
        QCOMPARE(m_->statusText(), workflow::ReadyForAnalysis);
        // with the sweep ticked the measured point is computed at pH 0
        test::click(opt()->chkphsweep);
        theEngine().sw.ph(0) = 5;
        test::click(m_->cmdcalc);
        QCOMPARE(theEngine().sw.ph(0), 0.0);
        QCOMPARE(m_->statusText(), workflow::AnalysisDone);
    }

    void failureAtTheMeasuredPointKeepsEarlierResults() {
        applyOptions({opt()->chklr});
        test::typeWorkedSample(m_);
        readAndCalculate();
        const Engine before = theEngine();
        test::click(m_->cmdclear);
        test::typeWorkedSample(m_);
        test::retype(m_->txtca, QStringLiteral("0"));
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(
                     QStringLiteral("Calculate failed: logarithm of a non-positive number")),
                 qPrintable(rec_->last().text));
        // the whole measured point of the last calculation stays
        const Engine& e = theEngine();
        QCOMPARE(e.sw.li(0), before.sw.li(0));
        QCOMPARE(e.sw.ct, before.sw.ct);
        QCOMPARE(e.rec.pck2, before.rec.pck2);
        QCOMPARE(e.rec.mca, before.rec.mca);
        QCOMPARE(m_->statusText(), workflow::ReadyForAnalysis);
        QVERIFY(!m_->cmdshow->isEnabled());
    }

    // Sweep texts a refused Apply leaves in the Options dialog reach Calculate.
    void sweepTextsCalculateCannotConvert_data() {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("failing");
        QTest::newRow("lone point increment") << "point"
                                              << "pH increment";
        QTest::newRow("step box emptied by Apply") << "past14"
                                                   << "number of steps";
        QTest::newRow("empty box after a refused Apply") << "empty"
                                                         << "start pH";
    }
    void sweepTextsCalculateCannotConvert() {
        QFETCH(QString, how);
        QFETCH(QString, failing);
        sweep();
        test::typeWorkedSample(m_);
        readAndCalculate();
        const double li1 = theEngine().sw.li(1);
        test::click(m_->cmdread);
        frmOptions* o = openOptions();
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
        QVERIFY(m_->cmdcalc->isEnabled()); // a refused Apply leaves the workflow
        rec_->clear();
        test::click(m_->cmdcalc);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(QStringLiteral("Calculate failed: ")) &&
                     rec_->last().text.contains(failing),
                 qPrintable(rec_->last().text));
        QCOMPARE(theEngine().sw.li(1), li1);
    }

    // ---------------------------------------------------------------- required sets
    void requiredSets_data() {
        QTest::addColumn<QString>("equation");
        QTest::addColumn<int>("larsonSkold"); // 0 not ticked, 1 ticked, 2 applied
        QTest::addColumn<QStringList>("required");
        const QStringList four = {"txtca", "txtalk", "txtt", "txtph"};
        QTest::newRow("Langelier") << "lang" << 0 << four + QStringList{"txttds"};
        QTest::newRow("Lewis") << "lewis" << 0 << four;
        QTest::newRow("Russell") << "rus" << 0 << four + QStringList{"txtec"};
        QTest::newRow("Russell, Larson-Skold ticked")
            << "rus" << 1 << four + QStringList{"txtec", "txtcl", "txtso4"};
        QTest::newRow("Langelier, Larson-Skold applied")
            << "lang" << 2 << four + QStringList{"txttds", "txtcl", "txtso4"};
    }
    void requiredSets() {
        QFETCH(QString, equation);
        QFETCH(int, larsonSkold);
        QFETCH(QStringList, required);
        opt()->chklr->setChecked(larsonSkold > 0);
        if (larsonSkold == 2) test::click(opt()->cmdApply);
        chooseEquation(equation);
        for (const QString& name : required) {
            QVERIFY(!m_->cmdread->isEnabled());
            test::typeInto(box(name), QStringLiteral("8"));
        }
        QVERIFY(m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), workflow::ReadyToRead);
        // emptying a required box disables Read Data again; under Russell
        // the chloride and sulphate handlers have no emptying step of their own
        for (const QString& name : required) {
            test::eraseBox(box(name));
            QCOMPARE(m_->cmdread->isEnabled(),
                     (name == "txtcl" || name == "txtso4") && equation == "rus");
            test::typeInto(box(name), QStringLiteral("8"));
        }
        QVERIFY(m_->cmdread->isEnabled());
    }

    // ---------------------------------------------------------------- edits
    void editsAfterCalculation() {
        // an optional box: back to reading, the Setting items come back
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80"});
        readAndCalculate();
        test::click(m_->cmdshow);
        test::typeInto(m_->txtmg, QStringLiteral("2"));
        QVERIFY(m_->cmdread->isEnabled() && !m_->cmdcalc->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled() && !m_->cmdshow->isEnabled());
        QVERIFY(m_->mnusettingis->isEnabled() && m_->mnusittingac->isEnabled());
        // one that completes a set moves the state first: the Setting items stay
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        test::click(m_->cmdshow);
        test::typeInto(m_->txtt, QStringLiteral("1"));
        QCOMPARE(m_->statusText(), workflow::ReadyToRead);
        QVERIFY(!m_->cmdcalc->isEnabled() && !m_->mnusettingis->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled() && !m_->cmdshow->isEnabled());
        // an edit while ready for analysis turns Calculate off
        test::click(m_->cmdread);
        QVERIFY(m_->cmdcalc->isEnabled());
        test::typeInto(m_->txtno3, QStringLiteral("1"));
        QVERIFY(!m_->cmdcalc->isEnabled() && m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), workflow::ReadyForAnalysis);
    }
};

VELMORA_GUI_TEST_MAIN(WorkflowTest)
#include "tst_workflow.moc"
