// The Options dialog and the two equation dialogs, driven through their real
// controls: design state, keystroke checks, Apply and OK with their messages
// and effects on the main window, and Cancel.
#include "app/startup.h"
#include "engine/engine.h"
#include "windowkit/formsupport.h"
#include "mainwindow/frmmain.h"
#include "options/frmactivity.h"
#include "options/frmionic.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
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

class DialogsTest : public test::ProgramTest {
    Q_OBJECT

    const QStringList fiveRequired = {"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80",
                                      "txttds=400"};

private slots:
    // ================================================================ Options
    void optionsDesignState() {
        frmOptions* o = openOptions();
        QCOMPARE(o->objectName(), QStringLiteral("frmOptions"));
        QCOMPARE(o->windowTitle(), QStringLiteral("Options"));
        QCOMPARE(o->tbsOptions->count(), 2);
        QCOMPARE(o->tbsOptions->tabText(0), QStringLiteral("Corrosion indices"));
        QCOMPARE(o->tbsOptions->tabText(1), QStringLiteral("Sweep "));
        QCOMPARE(o->fraSample2->title(), QStringLiteral("Indices :"));
        QCOMPARE(o->lblindex->text(),
                 QStringLiteral("Please choose corrosion or scaling indices. "));
        const std::pair<const char*, const char*> checks[] = {
            {"chkli", "Langelier index (suitable for  6.5< pH<9.5 )"},
            {"chkri", "Ryznar index"},
            {"chkpor", "porcorius index    (suitable for pH<8.3)"},
            {"chklr", "Larson and Scold index (for cast-iron and low-carbon steel)"},
            {"chkdfi", "Driving Force index"},
            {"chkai", "Aggressiveness index (for asbestos-cement pipe)"},
            {"chkme", "Momentary Excess index"},
            {"chksl", "Sturation Level index"},
            {"chkphsweep", "pH sweep"}};
        for (const auto& [name, caption] : checks) {
            auto* c = o->findChild<QCheckBox*>(QLatin1String(name));
            QVERIFY2(c, name);
            QCOMPARE(c->text(), QString::fromLatin1(caption));
            QVERIFY(!c->isChecked());
        }
        QCOMPARE(o->frasweep->title(), QStringLiteral("pH sweep :"));
        QCOMPARE(o->Label3->text(), QStringLiteral("Please choose pH sweep component.  "));
        const std::pair<const char*, const char*> labels[] = {
            {"lblini", "Start pH         ="}, {"lblstep", "pH increment  ="},
            {"lblnum", "Step numbers ="},     {"lblini2", "Between 1.0 to 14"},
            {"lblstep2", "Between 0.1 to 2"}, {"lblnum2", "Between 1 to 140"}};
        for (const auto& [name, caption] : labels) {
            auto* l = o->findChild<QLabel*>(QLatin1String(name));
            QVERIFY2(l, name);
            QCOMPARE(l->text(), QString::fromLatin1(caption));
            QVERIFY(!enabledFlag(l));
        }
        QVERIFY(!enabledFlag(o->frasweep));
        for (QLineEdit* b : {o->txtinitialph, o->txtincrementph, o->txtstep}) {
            QVERIFY(!enabledFlag(b));
            QVERIFY(b->text().isEmpty());
        }
        QCOMPARE(o->cmdOK->text(), QStringLiteral("OK"));
        QCOMPARE(o->cmdCancel->text(), QStringLiteral("Cancel"));
        QCOMPARE(o->cmdApply->text(), QStringLiteral("&Apply"));
        // page 0 shown, page 1 parked far to the left
        QCOMPARE(o->picoptions[0]->geometry(), QRect(8, 32, 331, 212));
        QVERIFY(o->picoptions[0]->isEnabled());
        QCOMPARE(o->picoptions[1]->x(), -1333);
        QVERIFY(!o->picoptions[1]->isEnabled());
    }

    void tabsSwapThePages() {
        frmOptions* o = openOptions();
        o->tbsOptions->setCurrentIndex(1);
        QCOMPARE(o->picoptions[1]->geometry(), QRect(8, 32, 331, 212));
        QVERIFY(o->picoptions[1]->isEnabled());
        QCOMPARE(o->picoptions[0]->x(), -1333);
        QVERIFY(!o->picoptions[0]->isEnabled());
        // Ctrl+Tab moves to the next tab, wrapping round
        QTest::keyClick(o->chkphsweep, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(o->tbsOptions->currentIndex(), 0);
        QVERIFY(o->picoptions[0]->isEnabled());
        QTest::keyClick(o->chkli, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(o->tbsOptions->currentIndex(), 1);
        // from a sweep box too, which leaves its text alone
        fillSweep(o, "7", "0.5", "3");
        QTest::keyClick(o->txtincrementph, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(o->tbsOptions->currentIndex(), 0);
        QCOMPARE(o->txtincrementph->text(), QStringLiteral("0.5"));
        // Tab alone only moves the focus
        o->tbsOptions->setCurrentIndex(1);
        QTest::keyClick(o->txtincrementph, Qt::Key_Tab);
        QCOMPARE(o->tbsOptions->currentIndex(), 1);
    }

    void sweepCheckBoxEnablesItsControls() {
        frmOptions* o = openOptions();
        fillSweep(o, "7", "0.5", "4");
        const QList<QWidget*> controls = {
            o->frasweep, o->txtinitialph, o->txtincrementph, o->txtstep, o->lblini,
            o->lblnum,   o->lblstep,      o->lblini2,        o->lblnum2, o->lblstep2};
        for (QWidget* w : controls)
            QVERIFY(w->isEnabled());
        test::click(o->chkphsweep);
        for (QWidget* w : controls)
            QVERIFY(!enabledFlag(w));
        QCOMPARE(o->txtinitialph->text(), QStringLiteral("7"));
        QCOMPARE(o->txtstep->text(), QStringLiteral("4"));
    }

    void sweepBoxesCheckEveryKeystroke_data() {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QString>("left");
        const QString positive = QStringLiteral("You must enter a positive number!");
        const QString start = QStringLiteral("initial pH must be between 1 to 14 .");
        const QString inc = QStringLiteral(" pH increment must be between 0.1  up to 2 .");
        const QString steps =
            QStringLiteral("initial pH must be an integer number between 1 to 140 .");
        const QString integer = QStringLiteral("You must enter an integer positive number!");
        auto row = [](const char* name, const char* box, const char* typed,
                      const QStringList& messages, const char* left) {
            QTest::newRow(name) << QString::fromLatin1(box) << QString::fromLatin1(typed)
                                << messages << QString::fromLatin1(left);
        };
        const char *initial = "txtinitialph", *increment = "txtincrementph", *number = "txtstep";
        row("start 7.5", initial, "7.5", {}, "7.5");
        row("start 14", initial, "14", {}, "14");
        row("start 15", initial, "15", {start}, "");
        row("start 0", initial, "0", {start}, "");
        row("start letter", initial, "a", {positive}, "");
        row("start lone point", initial, ".", {positive}, "");
        row("increment lone point", increment, ".", {}, ".");
        row("increment .5", increment, ".5", {}, ".5");
        row("increment 0", increment, "0", {}, "0");
        row("increment 0.05", increment, "0.05", {inc}, "");
        row("increment 3", increment, "3", {inc}, "");
        row("increment 2", increment, "2", {}, "2");
        row("increment minus", increment, "-", {positive}, "");
        row("steps 140", number, "140", {}, "140");
        row("steps 141", number, "141", {steps}, "");
        row("steps 0", number, "0", {steps}, "");
        row("steps 2.5", number, "2.5", {integer}, "");
        row("steps letter", number, "x", {positive}, "");
    }
    void sweepBoxesCheckEveryKeystroke() {
        QFETCH(QString, box);
        QFETCH(QString, typed);
        QFETCH(QStringList, messages);
        QFETCH(QString, left);
        frmOptions* o = openOptions();
        o->tbsOptions->setCurrentIndex(1);
        test::click(o->chkphsweep);
        auto* b = o->findChild<QLineEdit*>(box);
        test::typeInto(b, typed);
        QCOMPARE(rec_->texts(), messages);
        for (const auto& msg : rec_->messages) {
            QCOMPARE(msg.title, QStringLiteral("Velmora"));
            QCOMPARE(msg.icon, Platform::Icon::None);
        }
        QCOMPARE(b->text(), left);
    }

    void applyPublishesTheIndexFlags() {
        frmOptions* o = openOptions();
        test::click(o->chkri);
        test::click(o->chkme);
        QVERIFY(!theOptions().index.blri); // only Apply publishes
        test::click(o->cmdApply);
        const IndexFlags& f = theOptions().index;
        QVERIFY(f.blri && f.blme);
        QVERIFY(!f.blli && !f.blpor && !f.bllr && !f.bldfi && !f.blai && !f.blsl);
        QVERIFY(o->isVisible());
        // OK with nothing ticked publishes eight false flags and hides the dialog
        test::click(o->chkri);
        test::click(o->chkme);
        test::click(o->cmdOK);
        QVERIFY(!f.blri && !f.blme);
        QVERIFY(frmOptions::isLoaded() && o->isHidden());
    }

    void sweepMessages_data() {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("inc");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("stepsCleared");
        QTest::newRow("7 by 2, 5 steps")
            << "7"
            << "2"
            << "5"
            << "Step numbers must be less than 5 , 3 is better." << true;
        QTest::newRow("1 by 2, 140 steps")
            << "1"
            << "2"
            << "140"
            << "Step numbers must be less than 140 , 6 is better." << true;
        QTest::newRow("start 14") << "14"
                                  << "0.5"
                                  << "3"
                                  << "pH should not be more than 14" << false;
        QTest::newRow("empty increment")
            << "7"
            << ""
            << "3"
            << "you should enter initial pH,pH increment and step numbers values" << false;
    }
    void sweepMessages() {
        QFETCH(QString, start);
        QFETCH(QString, inc);
        QFETCH(QString, steps);
        QFETCH(QString, message);
        QFETCH(bool, stepsCleared);
        // a finished calculation leaves Calculate, Clear and Show results on
        type(fiveRequired);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QVERIFY(m_->cmdcalc->isEnabled() && m_->cmdclear->isEnabled());
        frmOptions* o = openOptions();
        test::click(o->chkai);
        fillSweep(o, start, inc, steps);
        QVERIFY(rec_->messages.isEmpty());
        test::click(o->cmdOK);
        QCOMPARE(rec_->texts(), QStringList{message});
        QCOMPARE(rec_->last().title, QStringLiteral("Velmora"));
        QCOMPARE(rec_->last().icon, Platform::Icon::None);
        QCOMPARE(o->txtstep->text().isEmpty(), stepsCleared);
        QVERIFY(o->isVisible()); // OK stopped early
        QVERIFY(theOptions().index.blai);
        QVERIFY(m_->cmdcalc->isEnabled() && m_->cmdclear->isEnabled() && m_->cmdshow->isEnabled());
    }

    void applyWithALonePointIncrementSaysWhatFailed() {
        frmOptions* o = openOptions();
        fillSweep(o, "7", ".", "3");
        QVERIFY(rec_->messages.isEmpty()); // the box itself lets "." through
        test::click(o->cmdOK);
        QCOMPARE(rec_->messages.size(), 1);
        QVERIFY2(rec_->last().text.startsWith(QStringLiteral("Apply failed: ")) &&
                     rec_->last().text.contains(QStringLiteral("pH increment")),
                 qPrintable(rec_->last().text));
        QCOMPARE(rec_->last().title, QStringLiteral("Velmora"));
        QCOMPARE(rec_->last().icon, Platform::Icon::None);
        QCOMPARE(rec_->last().buttons, Platform::Buttons::Ok);
        QVERIFY(o->isVisible());
        QVERIFY(!m_->cmdread->isEnabled());
    }

    void validSweepBuildsTheList_data() {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("inc");
        QTest::addColumn<int>("steps");
        QTest::newRow("6.5 by 0.5") << "6.5"
                                    << "0.5" << 5;
        QTest::newRow("ends on 14") << "13"
                                    << "1" << 1;
        QTest::newRow("increment 0") << "8"
                                     << "0" << 4;
        QTest::newRow("140 points") << "1"
                                    << "0.1" << 129;
    }
    void validSweepBuildsTheList() {
        QFETCH(QString, start);
        QFETCH(QString, inc);
        QFETCH(int, steps);
        frmOptions* o = openOptions();
        fillSweep(o, start, inc, QString::number(steps));
        test::click(o->cmdApply);
        QVERIFY(rec_->messages.isEmpty());
        const double s = start.toDouble(), d = inc.toDouble();
        QCOMPARE(theOptions().sweep.entry[0], s);
        QCOMPARE(theEngine().sw.phstart, s);
        double expected = s;
        for (int i = 1; i <= steps; ++i) {
            expected += d;
            QCOMPARE(theOptions().sweep.entry[i], expected);
        }
        QVERIFY(m_->cmdread->isEnabled());
    }

    void applyMovesTheWorkflowBack() {
        type(fiveRequired);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        m_->toolbarButton(9)->setEnabled(true);
        frmOptions* o = openOptions();
        test::click(o->cmdApply);
        for (QPushButton* b : {m_->cmdcalc, m_->cmdaccuracy, m_->cmdclear, m_->cmdshow})
            QVERIFY(!b->isEnabled());
        QVERIFY(!m_->toolbarButton(9)->isEnabled()); // sweep not checked
        QVERIFY(m_->cmdread->isEnabled());           // the five boxes are filled
        // with a valid sweep, Graph is left as it is
        m_->toolbarButton(9)->setEnabled(true);
        fillSweep(o, "7", "0.5", "3");
        test::click(o->cmdApply);
        QVERIFY(m_->toolbarButton(9)->isEnabled());
    }

    void larsonSkoldUnderLangelier() {
        frmOptions* o = openOptions();
        type(fiveRequired);
        QVERIFY(m_->cmdread->isEnabled());
        test::click(o->chklr);
        test::click(o->cmdApply);
        for (QWidget* w : std::initializer_list<QWidget*>{m_->frmanions, m_->txtcl, m_->txtso4,
                                                          m_->lblcl, m_->lblso4})
            QVERIFY(w->isEnabled());
        QCOMPARE(backColor(m_->txtcl), vb::Yellow);
        QCOMPARE(backColor(m_->txtso4), vb::Yellow);
        QVERIFY(!m_->cmdread->isEnabled());
        type({"txtcl=50", "txtso4=60"});
        QVERIFY(m_->cmdread->isEnabled());
        // unticked: the boxes go, emptied; Read follows the five required boxes
        test::click(o->chklr);
        test::click(o->cmdApply);
        for (QWidget* w : std::initializer_list<QWidget*>{m_->frmanions, m_->txtcl, m_->txtso4,
                                                          m_->lblcl, m_->lblso4})
            QVERIFY(!enabledFlag(w));
        QVERIFY(m_->txtcl->text().isEmpty() && m_->txtso4->text().isEmpty());
        QCOMPARE(backColor(m_->txtcl), vb::Yellow);
        QVERIFY(m_->cmdread->isEnabled());
        test::eraseBox(m_->txttds);
        test::click(o->cmdApply);
        QVERIFY(!m_->cmdread->isEnabled());
    }

    void larsonSkoldUnderRussellKeepsTheTexts() {
        frmOptions* o = openOptions();
        test::click(o->chklr);
        chooseEquation(QStringLiteral("rus"));
        type({"txtcl=50", "txtso4=60"});
        test::click(o->chklr);
        test::click(o->cmdApply);
        QVERIFY(!enabledFlag(m_->txtcl) && !enabledFlag(m_->frmanions));
        QCOMPARE(m_->txtcl->text(), QStringLiteral("50"));
        QCOMPARE(m_->txtso4->text(), QStringLiteral("60"));
        test::click(o->chklr);
        m_->cmdread->setEnabled(true);
        test::click(o->cmdApply);
        QVERIFY(m_->txtcl->isEnabled());
        QVERIFY(!m_->cmdread->isEnabled());
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
        QVERIFY(!o->chkli->isChecked());
        QVERIFY(!o->chkphsweep->isChecked());
        QVERIFY(o->txtinitialph->text().isEmpty());
        // Escape cancels as well
        QTest::keyClick(o, Qt::Key_Escape);
        QVERIFY(!frmOptions::isLoaded());
    }

    void okHidesTheDialogBeforeMovingTheWorkflowBack() {
        type(fiveRequired);
        test::click(m_->cmdread);
        QVERIFY(m_->cmdcalc->isEnabled());
        frmOptions* o = openOptions();
        fillSweep(o, "7", "0.5", "3");
        // notes whether the dialog was still shown when Calculate went off
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
        QVERIFY(!watch.dialogShown);
        QVERIFY(o->isHidden() && !m_->cmdcalc->isEnabled());
    }

    void okKeepsTheControlsForTheNextOpening() {
        frmOptions* o = openOptions();
        test::click(o->chksl);
        fillSweep(o, "7", "0.5", "3");
        test::click(o->cmdOK);
        QVERIFY(o->isHidden());
        QCOMPARE(openOptions(), o);
        QVERIFY(o->isVisible());
        QVERIFY(o->chksl->isChecked());
        QCOMPARE(o->txtincrementph->text(), QStringLiteral("0.5"));
    }

    // ================================================================ ionic strength
    void ionicDesignState() {
        frmionic* d = openIonic();
        QCOMPARE(d->windowTitle(), QStringLiteral("Ionic strength equations"));
        auto* frame = d->findChild<QGroupBox*>(QStringLiteral("frmionic"));
        QVERIFY(frame);
        QCOMPARE(frame->title(), QStringLiteral("Ionic strength equations :"));
        QCOMPARE(d->findChild<QLabel*>(QStringLiteral("lblionic"))->text(),
                 QStringLiteral("Please specify ionic strength equation "));
        QCOMPARE(d->optrus->text(), QStringLiteral("Russell"));
        QCOMPARE(d->optlang->text(), QStringLiteral("Langelier"));
        QCOMPARE(d->optlewis->text(), QStringLiteral("Lewis and Randall"));
        QVERIFY(d->optlang->isChecked());
        QCOMPARE(d->cmdOK->text(), QStringLiteral("&OK"));
        QCOMPARE(d->cmdCancel->text(), QStringLiteral("&Cancel"));
        QVERIFY(!d->isModal());
    }

    void lewisOk() {
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80", "txttds=400"});
        chooseEquation(QStringLiteral("lewis"));
        QVERIFY(frmionic::isLoaded() && frmionic::instance()->isHidden());
        const EquationFlags& eq = theOptions().equations;
        QVERIFY(eq.bllewis && !eq.bllang && !eq.blrus);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(m_->cmdread->isEnabled());
        QVERIFY(m_->txttds->text().isEmpty());
        QVERIFY(!enabledFlag(m_->txttds) && !enabledFlag(m_->txtec) && !enabledFlag(m_->fratdsec));
        for (QLineEdit* b : {m_->txtal, m_->txtfe, m_->txtmn, m_->txtzn, m_->txtmg, m_->txtso4,
                             m_->txtcl, m_->txtf, m_->txtna, m_->txtno3, m_->txtno2, m_->txtk}) {
            QVERIFY2(b->isEnabled(), qPrintable(b->objectName()));
            QCOMPARE(backColor(b), vb::Yellow);
        }
        for (QLineEdit* b : {m_->txtco3, m_->txthco3}) {
            QVERIFY(b->isEnabled());
            QCOMPARE(backColor(b), vb::Green);
            QCOMPARE(paintedBackColor(b), QColor(0, 255, 0));
        }
        QVERIFY(m_->lblmg->isEnabled() && m_->lblhco3->isEnabled());
        QVERIFY(!m_->cmdcalc->isEnabled() && !m_->cmdshow->isEnabled() &&
                !m_->cmdclear->isEnabled());
    }

    void lewisOkWithMissingBoxLeavesTheStateText() {
        type({"txtt=25", "txtph=7.5"});
        chooseEquation(QStringLiteral("lewis"));
        QVERIFY(!m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
    }

    void langelierAfterLewis_data() {
        QTest::addColumn<bool>("larsonSkold");
        QTest::newRow("Larson-Skold ticked") << true;
        QTest::newRow("Larson-Skold not ticked") << false;
    }
    void langelierAfterLewis() {
        QFETCH(bool, larsonSkold);
        if (larsonSkold) frmOptions::instance()->chklr->setChecked(true);
        chooseEquation(QStringLiteral("lewis"));
        type({"txtmg=24", "txtna=14", "txtk=3", "txtf=1", "txtco3=0", "txthco3=244", "txtcl=50",
              "txtso4=60"});
        chooseEquation(QStringLiteral("lang"));
        const EquationFlags& eq = theOptions().equations;
        QVERIFY(!eq.bllewis && eq.bllang && !eq.blrus);
        for (QLineEdit* b : {m_->txtmg, m_->txtna, m_->txtk, m_->txtf, m_->txtco3, m_->txthco3}) {
            QVERIFY2(b->text().isEmpty(), qPrintable(b->objectName()));
            QVERIFY(!enabledFlag(b));
            QCOMPARE(backColor(b), vb::LightBlue);
        }
        QCOMPARE(m_->txtcl->text().isEmpty(), !larsonSkold);
        QCOMPARE(m_->txtso4->text().isEmpty(), !larsonSkold);
        QCOMPARE(enabledFlag(m_->txtcl), larsonSkold);
        QCOMPARE(enabledFlag(m_->frmanions), larsonSkold);
        QCOMPARE(backColor(m_->txtcl), larsonSkold ? vb::Yellow : vb::LightBlue);
        QVERIFY(m_->txttds->isEnabled() && m_->fratdsec->isEnabled());
        QCOMPARE(backColor(m_->txttds), vb::Cyan);
        QCOMPARE(backColor(m_->txtec), vb::LightBlue);
        QVERIFY(!enabledFlag(m_->txtec));
    }

    void russellOk() {
        // an analysis read under Lewis, with the accuracy frame open
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80"});
        test::click(m_->cmdread);
        test::click(m_->cmdaccuracy);
        QVERIFY(!m_->txtsumca->text().isEmpty());
        test::click(m_->cmdcalc);
        QVERIFY(m_->cmdclear->isEnabled());

        chooseEquation(QStringLiteral("rus"));
        const EquationFlags& eq = theOptions().equations;
        QVERIFY(eq.blrus && !eq.bllang && !eq.bllewis);
        for (QPushButton* b :
             {m_->cmdcalc, m_->cmdclear, m_->cmdshow, m_->cmdread, m_->cmdaccuracy})
            QVERIFY2(!b->isEnabled(), qPrintable(b->objectName()));
        QCOMPARE(backColor(m_->cmdaccuracy), vb::ButtonFace);
        QVERIFY(!enabledFlag(m_->fraaccuracy));
        QVERIFY(m_->txtsumca->text().isEmpty() && m_->txtdiff->text().isEmpty());
        QVERIFY(m_->txtec->isEnabled() && m_->lblec->isEnabled());
        QCOMPARE(backColor(m_->txtec), vb::Cyan);
        QCOMPARE(backColor(m_->txttds), vb::LightBlue);
        QVERIFY(!enabledFlag(m_->txttds));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
        QVERIFY(m_->txtcl->text().isEmpty()); // Larson-Skold not ticked
        type({"txtec=85"});
        QVERIFY(m_->cmdread->isEnabled());
    }

    void langelierOkDisablesTheAccuracyTestButNotCalculate() {
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80"});
        test::click(m_->cmdread);
        test::click(m_->cmdaccuracy);
        QVERIFY(m_->cmdcalc->isEnabled());
        // the carbonate pair was empty, so nothing changes Calculate on the way
        chooseEquation(QStringLiteral("lang"));
        QVERIFY(!m_->cmdaccuracy->isEnabled());
        QCOMPARE(backColor(m_->cmdaccuracy), vb::ButtonFace);
        QVERIFY(!enabledFlag(m_->fraaccuracy));
        QVERIFY(m_->txtsuman->text().isEmpty());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
        QVERIFY(m_->cmdcalc->isEnabled());
    }

    void langelierOkAfterALewisCalculationRunsTheEmptiedBoxesHandlers() {
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80", "txtmg=24", "txtna=14", "txtk=3.9",
              "txtcl=50", "txtso4=60", "txthco3=244", "txtco3=0"});
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
        m_->mnusettingis->setEnabled(false);
        QVERIFY(m_->cmdcalc->isEnabled() && m_->cmdclear->isEnabled());
        // the first emptied ion box finds "End of analysis ": Calculate goes,
        // Read Data and the Setting items come; the dialog's own later steps
        // then decide Read Data and the state
        chooseEquation(QStringLiteral("lang"));
        QVERIFY(!m_->cmdcalc->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled() && !m_->cmdshow->isEnabled());
        QVERIFY(m_->mnusettingis->isEnabled() && m_->mnusittingac->isEnabled());
        QVERIFY(!m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
        QVERIFY(rec_->messages.isEmpty());
    }

    void ionicCancelKeepsTheFlags() {
        chooseEquation(QStringLiteral("rus"));
        frmionic* d = openIonic();
        QVERIFY(d->optrus->isChecked()); // hidden by OK, so kept
        test::click(d->optlewis);
        test::click(d->cmdCancel);
        QVERIFY(!frmionic::isLoaded());
        QVERIFY(theOptions().equations.blrus && !theOptions().equations.bllewis);
        test::flushDeletions();
        QVERIFY(openIonic()->optlang->isChecked());
    }

    // ================================================================ activity
    void activityDesignState() {
        m_->mnusittingac->trigger();
        frmactivity* d = frmactivity::instance();
        QCOMPARE(d->windowTitle(), QStringLiteral("Activity coefficient equations"));
        auto* frame = d->findChild<QGroupBox*>(QStringLiteral("frmactivity"));
        QVERIFY(frame);
        QCOMPARE(frame->title(), QStringLiteral("Activity coefficients :"));
        QCOMPARE(d->findChild<QLabel*>(QStringLiteral("lblactivity"))->text(),
                 QStringLiteral("Please specify activity coefficient  equation"));
        QCOMPARE(d->optdebye->text(),
                 QStringLiteral("Debye - Huckel                      I<0.005"));
        QCOMPARE(d->optgun->text(), QStringLiteral("Guntelberg                             I<0.1"));
        QCOMPARE(d->optedebye->text(), QStringLiteral("Extended Debye - Huckel      I<0.1"));
        QCOMPARE(d->optdavies->text(),
                 QStringLiteral("Davies                                   I<0.5"));
        QVERIFY(d->optedebye->isChecked());
        QCOMPARE(d->cmdOK->text(), QStringLiteral("&Ok"));
        QCOMPARE(d->cmdCancel->text(), QStringLiteral("&Cancel"));
    }

    void activityOkPublishesOneFlag_data() {
        QTest::addColumn<QString>("option");
        QTest::addColumn<int>("flag"); // 0 davies, 1 extended, 2 guntelberg, 3 debye
        QTest::newRow("Davies") << "optdavies" << 0;
        QTest::newRow("extended Debye-Huckel") << "optedebye" << 1;
        QTest::newRow("Guntelberg") << "optgun" << 2;
        QTest::newRow("Debye-Huckel") << "optdebye" << 3;
    }
    void activityOkPublishesOneFlag() {
        QFETCH(QString, option);
        QFETCH(int, flag);
        m_->mnusittingac->trigger();
        frmactivity* d = frmactivity::instance();
        test::click(d->findChild<QRadioButton*>(option));
        test::click(d->cmdOK);
        QVERIFY(d->isHidden());
        const EquationFlags& eq = theOptions().equations;
        const bool flags[] = {eq.bldavies, eq.bledebye, eq.blgun, eq.bldebye};
        for (int i = 0; i < 4; ++i)
            QCOMPARE(flags[i], i == flag);
        // the activity dialog touches nothing else
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
        QVERIFY(eq.bllang);
    }

    void activityCancelKeepsTheFlags() {
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
