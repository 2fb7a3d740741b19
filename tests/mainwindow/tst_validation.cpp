// The change handlers of the twenty analysis boxes: every keystroke checked,
// the pH range, and when the analysis is complete enough to be read under
// each ionic strength equation, with and without the Larson-Skold index.
#include "app/startup.h"
#include "mainwindow/frmmain.h"
#include "options/frmionic.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace velmora;
using velmora::test::RecordingPlatform;

class ValidationTest : public test::ProgramTest {
    Q_OBJECT

    // Ticks the Larson-Skold box of the options dialog, applied or not.
    void tickLarsonSkold(bool apply) {
        frmOptions* o = frmOptions::instance();
        o->chklr->setChecked(true);
        if (apply) test::click(o->cmdApply);
    }
    void typeAll(const QStringList& names, const QString& text = QStringLiteral("7")) {
        for (const QString& n : names)
            test::typeInto(box(n), text);
    }
    int numberMessages() const {
        return int(rec_->texts().count(QStringLiteral("You must enter a number!")));
    }

private slots:
    // ---------------------------------------------------------------- numbers
    void everyBoxRejectsLetters_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("equation");
        for (const char* n :
             {"txtmg", "txtk", "txtna", "txtzn", "txtmn", "txtfe", "txtal", "txthco3", "txtco3",
              "txtno2", "txtno3", "txtf", "txtcl", "txtso4", "txtt", "txtph", "txtalk", "txtca"})
            QTest::newRow(n) << n << "lewis";
        QTest::newRow("txttds") << "txttds"
                                << "lang";
        QTest::newRow("txtec") << "txtec"
                               << "rus";
    }
    void everyBoxRejectsLetters() {
        QFETCH(QString, name);
        QFETCH(QString, equation);
        chooseEquation(equation);
        QLineEdit* b = box(name);
        QVERIFY(b && b->isEnabled());
        test::typeInto(b, QStringLiteral("12"));
        QVERIFY(rec_->messages.isEmpty());
        QTest::keyClick(b, Qt::Key_X);
        // one message: the emptied box re-enters the handler without another
        QCOMPARE(rec_->messages.size(), 1);
        QCOMPARE(rec_->last().text, QStringLiteral("You must enter a number!"));
        QCOMPARE(rec_->last().title, QStringLiteral("Invalid input data"));
        QCOMPARE(rec_->last().icon, Platform::Icon::Information);
        QCOMPARE(rec_->last().buttons, Platform::Buttons::Ok);
        QVERIFY(b->text().isEmpty());
    }

    void partialEntriesAreRejectedAtTheirKeystroke_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("messages");
        QTest::addColumn<QString>("left");
        QTest::newRow("decimal") << "7.25" << 0 << "7.25";
        QTest::newRow("leading zero") << "0.5" << 0 << "0.5";
        QTest::newRow("exponent typed whole") << "2e" << 1 << "";
        QTest::newRow("bare exponent then digit") << "1e5" << 1 << "5";
        QTest::newRow("lone minus") << "-4" << 1 << "4";
        QTest::newRow("lone point") << ".5" << 1 << "5";
        QTest::newRow("leading blank") << " 12" << 1 << "12";
        QTest::newRow("two points") << "1.2.3" << 1 << "3";
        QTest::newRow("comma") << "1,5" << 1 << "5";
    }
    void partialEntriesAreRejectedAtTheirKeystroke() {
        QFETCH(QString, typed);
        QFETCH(int, messages);
        QFETCH(QString, left);
        test::typeInto(m_->txtca, typed);
        QCOMPARE(numberMessages(), messages);
        QCOMPARE(m_->txtca->text(), left);
    }

    void phRange_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("left");
        const QString range = QStringLiteral("pH must be a positive number up to 14 .");
        auto row = [](const char* name, const char* typed, const QString& message,
                      const char* left) {
            QTest::newRow(name) << QString::fromLatin1(typed) << message
                                << QString::fromLatin1(left);
        };
        row("14 accepted", "14", {}, "14");
        row("14.0 accepted", "14.0", {}, "14.0");
        row("14.01 rejected", "14.01", range, "");
        row("0 rejected", "0", range, "");
        row("15 rejected at the 5", "15", range, "");
        row("7.5 accepted", "7.5", {}, "7.5");
        row("letters", "ph", QStringLiteral("You must enter a number!"), "");
    }
    void phRange() {
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, left);
        test::typeInto(m_->txtph, typed);
        if (message.isEmpty()) {
            QVERIFY(rec_->messages.isEmpty());
        } else {
            QVERIFY(!rec_->messages.isEmpty());
            QCOMPARE(rec_->messages.first().text, message);
            QCOMPARE(rec_->messages.first().title, QStringLiteral("Invalid input data"));
            QCOMPARE(rec_->messages.first().icon, Platform::Icon::Information);
        }
        QCOMPARE(m_->txtph->text(), left);
    }

    void codeSettingTheTextRunsTheHandler() {
        m_->txtph->setText(QStringLiteral("20"));
        QCOMPARE(rec_->texts(),
                 QStringList{QStringLiteral("pH must be a positive number up to 14 .")});
        QVERIFY(m_->txtph->text().isEmpty());
        m_->txtca->setText(QStringLiteral("80"));
        m_->txtca->setText(QStringLiteral("80")); // same text: no change, no handler
        QCOMPARE(rec_->messages.size(), 1);
        // a number out of the range of the program cannot be set either
        m_->txtalk->setText(QStringLiteral("1e400"));
        QCOMPARE(rec_->messages.size(), 2);
        QCOMPARE(rec_->last().text, QStringLiteral("You must enter a number!"));
        QVERIFY(m_->txtalk->text().isEmpty());
    }

    // ---------------------------------------------------------------- required sets
    void langelierAtStartNeedsFiveBoxes() {
        const QStringList order = {"txtca", "txtalk", "txtt", "txttds", "txtph"};
        for (int i = 0; i < order.size(); ++i) {
            test::typeInto(box(order[i]), QStringLiteral("8"));
            const bool last = i == order.size() - 1;
            QCOMPARE(m_->cmdread->isEnabled(), last);
            QCOMPARE(m_->statusText(), last ? statusTextOf(Workflow::ReadyToRead) : statusTextOf(Workflow::EnteringData));
        }
        QVERIFY(m_->txtec->text().isEmpty());
        QVERIFY(!m_->cmdcalc->isEnabled());
    }

    void lewisNeedsFourBoxesInAnyOrder_data() {
        QTest::addColumn<QStringList>("order");
        QTest::newRow("t ph alk ca") << QStringList{"txtt", "txtph", "txtalk", "txtca"};
        QTest::newRow("ca alk ph t") << QStringList{"txtca", "txtalk", "txtph", "txtt"};
        QTest::newRow("ph ca t alk") << QStringList{"txtph", "txtca", "txtt", "txtalk"};
    }
    void lewisNeedsFourBoxesInAnyOrder() {
        QFETCH(QStringList, order);
        chooseEquation(QStringLiteral("lewis"));
        for (int i = 0; i < order.size(); ++i) {
            test::typeInto(box(order[i]), QStringLiteral("8"));
            QCOMPARE(m_->cmdread->isEnabled(), i == order.size() - 1);
        }
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        // emptying any of the four disables Read Data; the state text stays
        for (const QString& name : order) {
            test::eraseBox(box(name));
            QVERIFY2(!m_->cmdread->isEnabled(), qPrintable(name));
            QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
            test::typeInto(box(name), QStringLiteral("8"));
            QVERIFY(m_->cmdread->isEnabled());
        }
    }

    void russellNeedsConductivity() {
        chooseEquation(QStringLiteral("rus"));
        QVERIFY(!m_->txttds->isEnabled());
        typeAll({"txtt", "txtph", "txtalk", "txtca"});
        QVERIFY(!m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::EnteringData));
        test::typeInto(m_->txtec, QStringLiteral("85"));
        QVERIFY(m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        test::eraseBox(m_->txtec);
        QVERIFY(!m_->cmdread->isEnabled());
    }

    // Chloride and sulphate join the required set: under Russell when the
    // Larson-Skold box is ticked (applied or not), under Langelier when the
    // flag has been applied.
    void chlorideAndSulphateJoinTheRequiredSet_data() {
        QTest::addColumn<QString>("equation");
        QTest::addColumn<bool>("applied");
        QTest::addColumn<QString>("salinity");
        QTest::addColumn<QString>("stateBeforeTheAnions");
        QTest::addColumn<bool>("readAfterErasingChloride");
        // the conductivity handler's own first test sets the state text on
        // the base set; the chloride handler has no emptying step of its own
        QTest::newRow("Russell, ticked only")
            << "rus" << false << "txtec" << statusTextOf(Workflow::ReadyToRead) << true;
        QTest::newRow("Langelier, applied")
            << "lang" << true << "txttds" << statusTextOf(Workflow::EnteringData) << false;
    }
    void chlorideAndSulphateJoinTheRequiredSet() {
        QFETCH(QString, equation);
        QFETCH(bool, applied);
        QFETCH(QString, salinity);
        QFETCH(QString, stateBeforeTheAnions);
        QFETCH(bool, readAfterErasingChloride);
        tickLarsonSkold(applied);
        QCOMPARE(theOptions().index.bllr, applied);
        chooseEquation(equation);
        QVERIFY(m_->txtcl->isEnabled() && m_->txtso4->isEnabled());
        typeAll({"txtt", "txtph", "txtalk", "txtca", salinity});
        QVERIFY(!m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), stateBeforeTheAnions);
        test::typeInto(m_->txtcl, QStringLiteral("50"));
        QVERIFY(!m_->cmdread->isEnabled());
        test::typeInto(m_->txtso4, QStringLiteral("60"));
        QVERIFY(m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        test::eraseBox(m_->txtcl);
        QCOMPARE(m_->cmdread->isEnabled(), readAfterErasingChloride);
    }

    void larsonSkoldEmptiedRequiredBox_data() {
        QTest::addColumn<QString>("name");
        for (const char* n : {"txtt", "txtph", "txtalk", "txtca", "txttds"})
            QTest::newRow(n) << n;
    }
    void larsonSkoldEmptiedRequiredBox() {
        QFETCH(QString, name);
        tickLarsonSkold(true);
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        test::eraseBox(box(name));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(!m_->cmdread->isEnabled());
        // the Langelier block leaves Calculate alone, and the state has moved
        // on from "Ready for Analysis" before the analysis-ready test
        QVERIFY(m_->cmdcalc->isEnabled());
    }

    void lewisWithLarsonSkoldLoneChlorideDisablesRead() {
        tickLarsonSkold(true);
        chooseEquation(QStringLiteral("lewis"));
        typeAll({"txtt", "txtph", "txtalk", "txtca"});
        QVERIFY(m_->cmdread->isEnabled());
        // the chloride test runs whatever the equation while the index is applied
        test::typeInto(m_->txtcl, QStringLiteral("50"));
        QVERIFY(!m_->cmdread->isEnabled());
    }

    // ---------------------------------------------------------------- workflow on edits
    void editAfterCalculationOfAnOptionalBox() {
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80"});
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        test::click(m_->cmdcalc);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::AnalysisDone));
        test::click(m_->cmdshow);
        QVERIFY(!m_->cmdread->isEnabled() && !m_->mnusettingis->isEnabled());
        test::typeInto(m_->txtmg, QStringLiteral("2"));
        QVERIFY(m_->cmdread->isEnabled());
        QVERIFY(!m_->cmdcalc->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled());
        QVERIFY(!m_->cmdshow->isEnabled());
        QVERIFY(m_->mnusettingis->isEnabled() && m_->mnusittingac->isEnabled());
    }

    void editAfterCalculationThatCompletesASet() {
        // the requirement block moves the state first, so the analysed-state
        // step does not run: the Setting items stay as Show results left them
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        test::click(m_->cmdshow);
        test::typeInto(m_->txtt, QStringLiteral("1"));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(m_->cmdread->isEnabled());
        QVERIFY(!m_->cmdcalc->isEnabled());
        QVERIFY(!m_->mnusettingis->isEnabled() && !m_->mnusittingac->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled() && !m_->cmdshow->isEnabled());
    }

    void langelierEditLeavesCalculateAlone() {
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QVERIFY(m_->cmdcalc->isEnabled());
        test::typeInto(m_->txttds, QStringLiteral("0"));
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyToRead));
        QVERIFY(m_->cmdcalc->isEnabled());
        QVERIFY(!m_->cmdclear->isEnabled() && !m_->cmdshow->isEnabled());
    }

    void editWhileReadyForAnalysisDisablesCalculate() {
        chooseEquation(QStringLiteral("lewis"));
        type({"txtt=25", "txtph=7.5", "txtalk=200", "txtca=80"});
        test::click(m_->cmdread);
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
        QVERIFY(m_->cmdcalc->isEnabled());
        test::typeInto(m_->txtno3, QStringLiteral("1"));
        QVERIFY(!m_->cmdcalc->isEnabled());
        QVERIFY(m_->cmdread->isEnabled());
        QCOMPARE(m_->statusText(), statusTextOf(Workflow::ReadyForAnalysis));
    }

    void validEditDisablesGraphOnlyWithTheSweep() {
        m_->toolbarButton(9)->setEnabled(true);
        test::typeInto(m_->txtca, QStringLiteral("1"));
        QVERIFY(m_->toolbarButton(9)->isEnabled());
        frmOptions::instance()->chkphsweep->setChecked(true);
        test::typeInto(m_->txtca, QStringLiteral("2"));
        QVERIFY(!m_->toolbarButton(9)->isEnabled());
        // a rejected keystroke also ends in a valid (empty) edit
        m_->toolbarButton(9)->setEnabled(true);
        test::typeInto(m_->txtca, QStringLiteral("q"));
        QVERIFY(!m_->toolbarButton(9)->isEnabled());
    }
};

VELMORA_GUI_TEST_MAIN(ValidationTest)
#include "tst_validation.moc"
