// The main window: its state at creation, its own commands (keys, View,
// Help, About, Clear, New, Exit), what it writes when it closes, the checks
// of the analysis boxes, and the workflow of Read Data, the accuracy test and
// Calculate with the states and commands each step and each edit leave.
#include "app/frmabout.h"
#include "app/startup.h"
#include "engine/engine.h"
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "numtext/numtext.h"
#include "options/frmactivity.h"
#include "options/frmionic.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "results/frmenterper.h"
#include "results/frmresult.h"
#include "tests/support/darkpalette.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"
#include "windowkit/formsupport.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <QToolTip>

using namespace velmora;

class MainWindowTest : public test::ProgramTest {
    Q_OBJECT

    // The worked sample typed, read and calculated: "End of analysis ".
    void calculateSample() {
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
    }
    QList<QPushButton*> workflowButtons() const {
        return {m_->cmdread, m_->cmdaccuracy, m_->cmdcalc, m_->cmdshow, m_->cmdclear};
    }

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
    void creationState() {
        const QStringList enabled = {"txtalk", "txtph", "txtt", "txttds", "txtca"};
        QCOMPARE(m_->analysisBoxes().size(), 20);
        for (QLineEdit* b : m_->analysisBoxes()) {
            QVERIFY(b->text().isEmpty());
            QCOMPARE(b->isEnabled(), enabled.contains(b->objectName()));
            QCOMPARE(paintedBackColor(b), vbColor(backColor(b)));
        }
        for (QPushButton* b : workflowButtons())
            QVERIFY(!b->isEnabled());
        for (QAction* a : {m_->mnuFileSave, m_->mnuFilePrint, m_->toolbarButton(3),
                           m_->toolbarButton(5), m_->toolbarButton(9)})
            QVERIFY(!a->isEnabled());
        QVERIFY(m_->toolbarButton(1)->isEnabled() && m_->toolbarButton(7)->isEnabled());
        QCOMPARE(m_->statusPanel(1)->text(), statusTextOf(Workflow::EnteringData));
        QCOMPARE(m_->statusPanel(2)->text(),
                 QLocale().toString(QDate(2024, 5, 17), QLocale::ShortFormat));
        QCOMPARE(m_->statusPanel(3)->text(),
                 QLocale().toString(QTime(10, 30), QLocale::ShortFormat));
        rec_->clock = QDateTime(QDate(2025, 12, 31), QTime(23, 59));
        QTRY_COMPARE_WITH_TIMEOUT(m_->statusPanel(2)->text(),
                                  QLocale().toString(QDate(2025, 12, 31), QLocale::ShortFormat),
                                  3000);
    }

    void blueGreenRedValuesBecomeColours() {
        QCOMPARE(vbColor(0x00FF8040), QColor(0x40, 0x80, 0xFF));
        QCOMPARE(vbColor(0x8000000F), QApplication::palette().color(QPalette::Button));
    }

    // Some keyboard schemes give Ctrl+E to the text box; a key that reaches
    // the box all the same still runs the menu command. Others stay there.
    void menuKeysReachingABoxRunTheirCommand() {
        QVERIFY(QTest::qWaitForWindowActive(m_));
        test::typeInto(m_->txtt, QStringLiteral("25"));
        m_->txtt->setCursorPosition(0);
        QKeyEvent endKey(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier);
        QApplication::sendEvent(m_->txtt, &endKey);
        QCOMPARE(m_->txtt->cursorPosition(), 2);
        QKeyEvent override(QEvent::ShortcutOverride, Qt::Key_E, Qt::ControlModifier);
        override.ignore();
        QApplication::sendEvent(m_->txtph, &override);
        QVERIFY(!override.isAccepted());
        QKeyEvent exitKey(QEvent::KeyPress, Qt::Key_E, Qt::ControlModifier);
        QApplication::sendEvent(m_->txtph, &exitKey);
        QVERIFY(!frmMain::isLoaded());
    }

    void viewMenuTogglesBars() {
        const std::pair<QAction*, QWidget*> views[] = {{m_->mnuViewToolbar, m_->tbToolBar},
                                                       {m_->mnuViewStatusBar, m_->sbStatusBar}};
        for (const auto& [action, bar] : views) {
            for (bool shown : {false, true}) {
                action->trigger();
                QCOMPARE(action->isChecked(), shown);
                QCOMPARE(bar->isVisible(), shown);
            }
        }
        m_->mnuViewStatusBar_Click(); // the handler itself turns the mark
        QVERIFY(!m_->mnuViewStatusBar->isChecked());
    }

    void helpAboutAndTheDialogs() {
        m_->mnuhelpcontents->trigger();
        QCOMPARE(rec_->messages.size(), 1);
        QCOMPARE(rec_->last().icon, Platform::Icon::Information);
        m_->mnuHelpAbout->trigger();
        QCOMPARE(rec_->modalDialogs.size(), 1);
        frmAbout* about = qobject_cast<frmAbout*>(rec_->modalDialogs.first().data());
        QVERIFY(about && about->isModal() && about->parentWidget() == m_);
        test::click(about->cmdOK);
        QVERIFY(!frmAbout::isLoaded());
        m_->mnuHelpAbout->trigger(); // loaded afresh
        QVERIFY(frmAbout::isLoaded());
        // the other dialogs open modeless
        rec_->useSmallScreen();
        m_->mnuoptionoptions->trigger();
        m_->mnusettingis->trigger();
        m_->mnusittingac->trigger();
        m_->mnuFileProperties->trigger();
        for (QWidget* d :
             std::initializer_list<QWidget*>{frmOptions::instance(), frmionic::instance(),
                                             frmactivity::instance(), frmproperties::instance()})
            QVERIFY(d->isVisible() && !d->isModal());
        QCOMPARE(rec_->modalDialogs.size(), 2);
        frmproperties::instance()->hide();
        m_->toolbarButton(7)->trigger();
        QVERIFY(frmproperties::instance()->isVisible());
    }

    // ---------------------------------------------------------------- Clear and New
    void clearAndNewAfterCalculation_data() {
        QTest::addColumn<bool>("isNew");
        QTest::newRow("Clear") << false;
        QTest::newRow("New") << true;
    }
    void clearAndNewAfterCalculation() {
        QFETCH(bool, isNew);
        frmOptions::instance()->chkli->setChecked(true);
        frmOptions::instance()->cmdApply_Click();
        calculateSample();
        const double li0 = theEngine().sw.li(0);
        m_->frasample->setEnabled(true);
        m_->txtnam->setText(QStringLiteral("operator name :A B"));
        m_->fraaccuracy->setEnabled(true);
        m_->txtsumca->setText(QStringLiteral("1.5"));
        setBackColor(m_->cmdaccuracy, vb::Red);
        if (isNew)
            m_->toolbarButton(1)->trigger();
        else
            test::click(m_->cmdclear);
        for (QLineEdit* b : m_->analysisBoxes())
            QVERIFY2(b->text().isEmpty(), qPrintable(b->objectName()));
        for (QPushButton* b : workflowButtons())
            QVERIFY2(!b->isEnabled(), qPrintable(b->objectName()));
        QVERIFY(!enabledFlag(m_->fraaccuracy) && m_->txtsumca->text().isEmpty());
        QCOMPARE(backColor(m_->cmdaccuracy), vb::ButtonFace);
        QVERIFY(m_->mnusettingis->isEnabled() && m_->mnusittingac->isEnabled());
        QCOMPARE(m_->statusText(), isNew ? statusTextOf(Workflow::EnteringDataNew)
                                         : statusTextOf(Workflow::EnteringData));
        QCOMPARE(m_->focusWidget(), m_->txtt);
        // New empties the sample boxes too; neither touches the results
        QCOMPARE(m_->txtnam->text().isEmpty(), isNew);
        QCOMPARE(enabledFlag(m_->frasample), !isNew);
        QCOMPARE(theEngine().sw.li(0), li0);
        QVERIFY(m_->mnuFileSave->isEnabled() && m_->toolbarButton(5)->isEnabled());
        QVERIFY(theOptions().index.blli && theOptions().equations.bllang);
        QVERIFY(rec_->messages.isEmpty());
    }

    void clearAndNewDisableGraphOnlyWithTheSweep() {
        for (bool sweep : {false, true}) {
            frmOptions::instance()->chkphsweep->setChecked(sweep);
            for (bool useNew : {false, true}) {
                m_->toolbarButton(9)->setEnabled(true);
                m_->cmdclear->setEnabled(true);
                if (useNew)
                    m_->mnuFileNew->trigger();
                else
                    test::click(m_->cmdclear);
                QCOMPARE(m_->toolbarButton(9)->isEnabled(), !sweep);
            }
        }
    }

    void closingMinimizedWritesNothing() {
        m_->showMinimized();
        m_->close();
        QVERIFY(!frmMain::isLoaded());
        QCOMPARE(rec_->settingWrites, 0);
    }

    void closingUnloadsEveryOtherWindow() {
        m_->mnusettingis->trigger();
        m_->mnusittingac->trigger();
        frmOptions::instance()->chkli->setChecked(true);
        frmOptions::instance()->cmdOK_Click(); // hidden, still loaded
        m_->mnuFileExit->trigger();
        QVERIFY(!frmMain::isLoaded() && !frmOptions::isLoaded() && !frmionic::isLoaded());
        test::flushDeletions();
        QVERIFY(theOptions().index.blli); // the published flags outlive the dialogs
        QVERIFY(!frmOptions::instance()->chkli->isChecked());
    }

    // On a dark desktop palette every box and button whose back colour the
    // program fixes fixes its text colour too, under each equation and with
    // the accuracy verdict's colours; the interpretation keeps a light back.
    void darkPaletteKeepsFixedColoursReadable() {
        const QPalette before = QApplication::palette();
        test::resetProgram();
        QApplication::setPalette(test::darkPalette());
        QToolTip::setPalette(test::darkPalette());
        m_ = startProgram();
        const std::pair<const char*, quint32> cases[] = {{"lang", vb::ButtonFace},
                                                         {"rus", vb::ButtonFace},
                                                         {"lewis", vb::Green},
                                                         {"lewis", vb::Red}};
        for (const auto& [equation, accuracy] : cases) {
            chooseEquation(QLatin1String(equation));
            setBackColor(m_->cmdaccuracy, accuracy);
            for (QWidget* w : m_->findChildren<QWidget*>()) {
                const bool box = qobject_cast<QLineEdit*>(w);
                if ((!box && !qobject_cast<QAbstractButton*>(w)) || (backColor(w) & 0x80000000u))
                    continue;
                const QPalette& p = w->palette();
                const QColor back =
                    p.color(QPalette::Active, box ? QPalette::Base : QPalette::Button);
                const auto text = box ? QPalette::Text : QPalette::ButtonText;
                QVERIFY2(test::contrastRatio(p.color(QPalette::Inactive, text), back) >= 4.5 &&
                             test::contrastRatio(p.color(QPalette::Disabled, text), back) >= 2.5,
                         qPrintable(w->objectName()));
            }
        }
        chooseEquation(QStringLiteral("lang"));
        calculateSample();
        test::click(m_->cmdshow);
        test::click(frmresult::instance()->findChild<QPushButton*>("cmdri"));
        const QPalette& p = frmenterper::instance()->text1()->palette();
        QVERIFY(test::contrastRatio(p.color(QPalette::Text), p.color(QPalette::Base)) >= 4.5);
        QApplication::setPalette(before);
        QToolTip::setPalette(before);
    }

    // ---------------------------------------------------------------- the boxes
    // Every box checks every keystroke: one message, the box emptied.
    void everyBoxRejectsLetters() {
        for (const char* equation : {"lewis", "lang", "rus"}) {
            chooseEquation(QLatin1String(equation));
            for (QLineEdit* b : m_->analysisBoxes()) {
                if (!b->isEnabled()) continue;
                rec_->clear();
                test::typeInto(b, QStringLiteral("12x"));
                QCOMPARE(rec_->messages.size(), 1);
                QCOMPARE(rec_->last().icon, Platform::Icon::Information);
                QVERIFY2(b->text().isEmpty(), qPrintable(b->objectName()));
            }
        }
    }

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
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(!m_->cmdcalc->isEnabled());
    }

    // ---------------------------------------------------------------- accuracy test
    void ionBalanceVerdictAndItsFrame() {
        chooseEquation(QStringLiteral("lewis"));
        type(lewisSample);
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisRejected));
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
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QCOMPARE(m_->txtsumca->text(),
                 QString::fromStdString(fmt::rounded(theEngine().rec.sumca, 5)));
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
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
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        // with the sweep ticked the measured point is computed at pH 0
        test::click(opt()->chkphsweep);
        theEngine().sw.ph(0) = 5;
        test::click(m_->cmdcalc);
        QCOMPARE(theEngine().sw.ph(0), 0.0);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
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
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QVERIFY(!m_->cmdshow->isEnabled());
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
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
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
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(!m_->cmdcalc->isEnabled() && !m_->mnusettingis->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled() && !m_->cmdshow->isEnabled());
        // an edit while ready for analysis turns Calculate off
        test::click(m_->cmdread);
        QVERIFY(m_->cmdcalc->isEnabled());
        test::typeInto(m_->txtno3, QStringLiteral("1"));
        QVERIFY(!m_->cmdcalc->isEnabled() && m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
    }
};

VELMORA_GUI_TEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
