// The Options dialog and the two equation dialogs, driven through their real
// controls: keystroke checks, Apply and OK with their messages and effects on
// the main window, and Cancel.
#include "app/startup.h"
#include "engine/engine.h"
#include "mainwindow/frmmain.h"
#include "options/frmactivity.h"
#include "options/frmionic.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"
#include "windowkit/formsupport.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>

using namespace velmora;

class DialogsTest : public test::ProgramTest {
    Q_OBJECT

    const QStringList fiveRequired = {"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80",
                                      "txttds=400"};
    void calculateFive() {
        type(fiveRequired);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QVERIFY(m_->cmdcalc->isEnabled() && m_->cmdclear->isEnabled());
    }
    QList<QLineEdit*> enabledBoxes() const {
        QList<QLineEdit*> on;
        for (QLineEdit* b : m_->analysisBoxes())
            if (enabledFlag(b)) on << b;
        return on;
    }

private slots:
    // ================================================================ Options
    void tabsSwapThePages() {
        frmOptions* o = openOptions();
        for (int page : {1, 0}) {
            o->tbsOptions->setCurrentIndex(page);
            QVERIFY(o->picoptions[page]->isEnabled() && !o->picoptions[1 - page]->isEnabled());
            QVERIFY(o->picoptions[page]->x() >= 0 && o->picoptions[1 - page]->x() < 0);
        }
        // Ctrl+Tab moves to the next tab, wrapping round, from a sweep box too
        QTest::keyClick(o->chkli, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(o->tbsOptions->currentIndex(), 1);
        fillSweep(o, "7", "0.5", "3");
        QTest::keyClick(o->txtincrementph, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(o->tbsOptions->currentIndex(), 0);
        QCOMPARE(o->txtincrementph->text(), QStringLiteral("0.5"));
        o->tbsOptions->setCurrentIndex(1);
        QTest::keyClick(o->txtincrementph, Qt::Key_Tab); // Tab alone moves the focus
        QCOMPARE(o->tbsOptions->currentIndex(), 1);
    }

    void sweepBoxesCheckEveryKeystroke() {
        const struct {
            int box; // start, increment, steps
            const char *typed, *left;
            bool message;
        } cases[] = {{0, "14", "14", false}, {0, "15", "", true},      {0, "0", "", true},
                     {0, "a", "", true},     {0, ".", "", true},       {1, ".5", ".5", false},
                     {1, "0", "0", false},   {1, "0.05", "", true},    {1, "3", "", true},
                     {1, "-", "", true},     {2, "140", "140", false}, {2, "141", "", true},
                     {2, "0", "", true},     {2, "2.5", "", true},     {2, "x", "", true}};
        frmOptions* o = openOptions();
        o->tbsOptions->setCurrentIndex(1);
        test::click(o->chkphsweep);
        for (const auto& c : cases) {
            QLineEdit* b = QList<QLineEdit*>{o->txtinitialph, o->txtincrementph, o->txtstep}[c.box];
            rec_->clear();
            test::retype(b, QLatin1String(c.typed));
            QVERIFY2(rec_->messages.size() == int(c.message), c.typed);
            QCOMPARE(b->text(), QLatin1String(c.left));
        }
    }

    // A refused OK says why, stops early and leaves the workflow alone.
    void sweepMessages() {
        const struct {
            const char *start, *inc, *steps, *message;
            bool stepsCleared;
        } cases[] = {{"7", "2", "5", "Step numbers must be less than 5 , 3 is better.", true},
                     {"1", "2", "140", "Step numbers must be less than 140 , 6 is better.", true},
                     {"14", "0.5", "3", "pH should not be more than 14", false},
                     {"7", "", "3",
                      "you should enter initial pH,pH increment and step numbers values", false}};
        calculateFive();
        for (const auto& c : cases) {
            frmOptions* o = openOptions();
            test::click(o->chkai);
            fillSweep(o, c.start, c.inc, c.steps);
            rec_->clear();
            test::click(o->cmdOK);
            QCOMPARE(rec_->texts(), QStringList{c.message});
            QCOMPARE(o->txtstep->text().isEmpty(), c.stepsCleared);
            QVERIFY(o->isVisible() && theOptions().index.blai);
            QVERIFY(m_->cmdcalc->isEnabled() && m_->cmdclear->isEnabled());
            test::click(o->cmdCancel);
        }
        // a lone point gets through the box but not through Apply
        frmOptions* o = openOptions();
        fillSweep(o, "7", ".", "3");
        rec_->clear();
        test::click(o->cmdOK);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(QStringLiteral("Apply failed: ")) &&
                     rec_->last().text.contains(QStringLiteral("pH increment")),
                 qPrintable(rec_->last().text));
        QVERIFY(o->isVisible());
    }

    void applyAndOkMoveTheWorkflowBack() {
        calculateFive();
        m_->toolbarButton(9)->setEnabled(true);
        frmOptions* o = openOptions();
        test::click(o->cmdApply);
        for (QPushButton* b : {m_->cmdcalc, m_->cmdaccuracy, m_->cmdclear, m_->cmdshow})
            QVERIFY(!b->isEnabled());
        QVERIFY(!m_->toolbarButton(9)->isEnabled()); // sweep not checked
        QVERIFY(m_->cmdread->isEnabled());           // the five boxes are filled
        m_->toolbarButton(9)->setEnabled(true);      // with a valid sweep Graph stays
        fillSweep(o, "7", "0.5", "3");
        test::click(o->cmdApply);
        QVERIFY(m_->toolbarButton(9)->isEnabled());
        // OK hides the dialog before it moves the workflow back
        test::click(m_->cmdread);
        struct Watch : QObject {
            QWidget* dialog = nullptr;
            int changes = 0;
            bool dialogShown = false;
            bool eventFilter(QObject*, QEvent* e) override {
                if (e->type() == QEvent::EnabledChange && changes++ == 0)
                    dialogShown = dialog->isVisible();
                return false;
            }
        } watch;
        watch.dialog = o;
        m_->cmdcalc->installEventFilter(&watch);
        test::click(o->cmdOK);
        m_->cmdcalc->removeEventFilter(&watch);
        QCOMPARE(watch.changes, 1);
        QVERIFY(!watch.dialogShown && !m_->cmdcalc->isEnabled());
        // and keeps its controls for the next opening
        QCOMPARE(openOptions(), o);
        QCOMPARE(o->txtincrementph->text(), QStringLiteral("0.5"));
    }

    void larsonSkoldBringsChlorideAndSulphate() {
        frmOptions* o = openOptions();
        type(fiveRequired);
        test::click(o->chklr);
        test::click(o->cmdApply);
        for (QWidget* w : std::initializer_list<QWidget*>{m_->frmanions, m_->txtcl, m_->txtso4})
            QVERIFY(w->isEnabled());
        QVERIFY(!m_->cmdread->isEnabled());
        type({"txtcl=50", "txtso4=60"});
        QVERIFY(m_->cmdread->isEnabled());
        // unticked: the boxes go, emptied; Read follows the five required boxes
        test::click(o->chklr);
        test::click(o->cmdApply);
        QVERIFY(!enabledFlag(m_->frmanions) && !enabledFlag(m_->txtcl));
        QVERIFY(m_->txtcl->text().isEmpty() && m_->cmdread->isEnabled());
        test::eraseBox(m_->txttds);
        test::click(o->cmdApply);
        QVERIFY(!m_->cmdread->isEnabled());
        // under Russell, unticking keeps the texts
        test::click(o->chklr);
        chooseEquation(QStringLiteral("rus"));
        type({"txtcl=50", "txtso4=60"});
        test::click(o->chklr);
        test::click(o->cmdApply);
        QVERIFY(!enabledFlag(m_->txtcl) && m_->txtcl->text() == "50");
        test::click(o->chklr);
        m_->cmdread->setEnabled(true);
        test::click(o->cmdApply);
        QVERIFY(m_->txtcl->isEnabled() && !m_->cmdread->isEnabled());
    }

    void cancelUnloadsButKeepsTheFlags() {
        frmOptions* o = openOptions();
        test::click(o->chkli);
        fillSweep(o, "7", "0.5", "3");
        test::click(o->cmdApply);
        test::click(o->cmdCancel);
        QVERIFY(!frmOptions::isLoaded());
        QVERIFY(theOptions().index.blli);
        QCOMPARE(theOptions().sweep.entry[3], 8.5);
        test::flushDeletions();
        o = openOptions();
        QVERIFY(!o->chkli->isChecked() && !o->chkphsweep->isChecked());
        QTest::keyClick(o, Qt::Key_Escape); // Escape cancels as well
        QVERIFY(!frmOptions::isLoaded());
    }

    // ================================================================ ionic strength
    // Each equation enables its own boxes; those it leaves are emptied.
    void equationsEnableTheirBoxes() {
        const QList<QLineEdit*> lang = enabledBoxes();
        chooseEquation(QStringLiteral("lewis"));
        QVERIFY(frmionic::isLoaded() && frmionic::instance()->isHidden());
        QCOMPARE(enabledBoxes().size(), 18);
        QVERIFY(!enabledFlag(m_->txttds) && !enabledFlag(m_->txtec) && !enabledFlag(m_->fratdsec));
        QCOMPARE(paintedBackColor(m_->txtco3), QColor(0, 255, 0));
        QVERIFY(theOptions().equations.bllewis && !theOptions().equations.bllang);
        chooseEquation(QStringLiteral("rus"));
        QVERIFY(theOptions().equations.blrus && !theOptions().equations.bllewis);
        QVERIFY(m_->txtec->isEnabled() && !enabledFlag(m_->txttds));
        chooseEquation(QStringLiteral("lewis"));
        type({"txtmg=24", "txtco3=0", "txtcl=50"});
        chooseEquation(QStringLiteral("lang"));
        QCOMPARE(enabledBoxes(), lang);
        QVERIFY(m_->txtmg->text().isEmpty() && m_->txtcl->text().isEmpty());
        QCOMPARE(backColor(m_->txtmg), vb::LightBlue);
    }

    void lewisOkMovesTheWorkflow() {
        type({"txtt=25", "txtph=7.5"});
        chooseEquation(QStringLiteral("lewis"));
        QVERIFY(!m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
        chooseEquation(QStringLiteral("lang"));
        type({"txtalk=200", "txtca=80", "txttds=4"});
        chooseEquation(QStringLiteral("lewis"));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(m_->cmdread->isEnabled() && m_->txttds->text().isEmpty());
    }

    void russellOkAfterAnAccuracyTest() {
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80"});
        test::click(m_->cmdread);
        test::click(m_->cmdaccuracy);
        test::click(m_->cmdcalc);
        chooseEquation(QStringLiteral("rus"));
        for (QPushButton* b :
             {m_->cmdcalc, m_->cmdclear, m_->cmdshow, m_->cmdread, m_->cmdaccuracy})
            QVERIFY2(!b->isEnabled(), qPrintable(b->objectName()));
        QCOMPARE(backColor(m_->cmdaccuracy), vb::ButtonFace);
        QVERIFY(!enabledFlag(m_->fraaccuracy) && m_->txtsumca->text().isEmpty());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
        type({"txtec=85"});
        QVERIFY(m_->cmdread->isEnabled());
    }

    // ================================================================ Cancel
    void equationCancelKeepsTheFlags() {
        chooseEquation(QStringLiteral("rus"));
        frmionic* d = openIonic();
        QVERIFY(d->optrus->isChecked()); // hidden by OK, so kept
        test::click(d->optlewis);
        test::click(d->cmdCancel);
        QVERIFY(!frmionic::isLoaded());
        QVERIFY(theOptions().equations.blrus && !theOptions().equations.bllewis);
        test::flushDeletions();
        QVERIFY(openIonic()->optlang->isChecked());
        m_->mnusittingac->trigger();
        test::click(frmactivity::instance()->optgun);
        test::click(frmactivity::instance()->cmdOK);
        m_->mnusittingac->trigger();
        test::click(frmactivity::instance()->optdavies);
        test::click(frmactivity::instance()->cmdCancel);
        QVERIFY(!frmactivity::isLoaded());
        QVERIFY(theOptions().equations.blgun && !theOptions().equations.bldavies);
        test::flushDeletions();
        m_->mnusittingac->trigger();
        QVERIFY(frmactivity::instance()->optedebye->isChecked());
    }
};

VELMORA_GUI_TEST_MAIN(DialogsTest)
#include "dialogs_test.moc"
