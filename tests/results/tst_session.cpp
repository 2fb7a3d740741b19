// Whole sessions through the main window: the worked sample typed, read,
// calculated and shown down to the interpretations and the equilibrium data;
// and the sample properties dialog with the sample boxes of the main window.
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "mainwindow/properties.h"
#include "options/frmactivity.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "tests/results/resultstest.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace velmora;
using interp::Index;

namespace {

// File > Properties.
void openDialog() {
    test::trigger(frmMain::instance()->mnuFileProperties);
}
QLineEdit* dialogBox(const char* name) {
    return test::control<QLineEdit>(frmproperties::instance(), name);
}
QString mainText(const char* name) {
    return test::control<QLineEdit>(frmMain::instance(), name)->text();
}
void click(const char* button) {
    test::click(test::control<QPushButton>(frmproperties::instance(), button));
}
// Opens the dialog, retypes the given boxes and presses OK.
void enter(const std::vector<std::pair<const char*, const char*>>& texts,
           const char* button = "cmdOK") {
    openDialog();
    for (const auto& [box, text] : texts)
        test::retype(dialogBox(box), QString::fromUtf8(text));
    click(button);
}

const char* const kDialogBoxes[] = {"txtname", "txtfamily", "txtorgan", "txtdate", "txtlocation"};
const char* const kMainBoxes[] = {"txtnam", "txtorg", "txtdat", "txtloc"};

QString resultText(const char* name) {
    return test::control<QLineEdit>(frmresult::instance(), name)->text();
}
QString moreText(const char* name) {
    return test::control<QLineEdit>(frmmore::instance(), name)->text();
}

} // namespace

class TestSession : public test::ProgramTest {
    Q_OBJECT

private slots:
    void workedSample() {
        frmOptions* o = openOptions();
        applyOptions(
            {o->chkli, o->chkri, o->chkpor, o->chklr, o->chkdfi, o->chkai, o->chkme, o->chksl});
        test::trigger(m_->mnusittingac);
        test::click(frmactivity::instance()->optdebye);
        test::click(frmactivity::instance()->cmdOK);
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        test::click(m_->cmdshow);
        QVERIFY(rec_->messages.isEmpty());
        QVERIFY(frmresult::instance()->isVisible());
        const std::pair<const char*, const char*> values[] = {
            {"txtlan", "0.2406"},    {"txtryz", "7.0188"},   {"txtpor", "6.6078"},
            {"txtdfi", "7.7177E-1"}, {"txtme", "3.2734E-6"}, {"txtai", "1.2101E1"},
            {"txtsl", "3.687E-1"},   {"txtlr", "6.6866E-1"},
        };
        for (const auto& [box, text] : values)
            QCOMPARE(resultText(box), QString(text));
        for (Index i : interp::allIndices()) {
            m_->cmdcalc->setEnabled(true); // an interpretation turns Calculate off again
            test::click(test::interpretationButton(i));
            QVERIFY(!m_->cmdcalc->isEnabled());
            QCOMPARE(frmenterper::instance()->backColour(), frmresult::instance()->buttonColour(i));
        }
        test::click(test::control<QPushButton>(frmresult::instance(), "cmdmore"));
        QVERIFY(frmmore::instance()->isVisible());
        QCOMPARE(moreText("txtphs"), "7.2594E0");
        QCOMPARE(moreText("txtlanmh"), "0.89125");
        QVERIFY(moreText("txtlanmd").isEmpty());
    }

    // Under a locale with a decimal comma the user types and reads commas.
    void decimalCommaLocale() {
        setDecimalSeparator(QLatin1Char(','));
        struct Restore {
            ~Restore() { setDecimalSeparator(QChar()); }
        } restore;
        applyOptions({openOptions()->chkli}, QStringLiteral("6,5"), QStringLiteral("0,5"), "5");
        QVERIFY(rec_->messages.isEmpty());
        QCOMPARE(theOptions().sweep.entry[1], 7.0);
        test::typeInto(m_->txtph, QStringLiteral("7.5")); // a point is rejected
        QCOMPARE(rec_->messages.size(), 1);
        type({"txtt=25", "txtph=7,5", "txtalk=200", "txtca=80", "txttds=400"});
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QCOMPARE(theEngine().sw.ph(0), 7.5);
        test::click(m_->cmdshow);
        QCOMPARE(resultText("txtlan"), "0,2406");
        QCOMPARE(resultText("txtdfi"), "7,7177E-1");
        test::click(test::control<QPushButton>(frmresult::instance(), "cmdmore"));
        QCOMPARE(moreText("txtlanmh"), "0,89125");
    }

    // ---------------------------------------------------------------- sample properties
    void okShowsTheTexts() {
        enter({{"txtname", "Ada"},
               {"txtorgan", "Water Board"},
               {"txtdate", "yesterday?"},
               {"txtlocation", "Well 7"}});
        QVERIFY(m_->frasample->isEnabled() && m_->txtloc->font().bold());
        const std::pair<const char*, const char*> shown[] = {{"txtnam", "Ada "},
                                                             {"txtorg", "Water Board"},
                                                             {"txtdat", "yesterday?"},
                                                             {"txtloc", "Well 7"}};
        for (const auto& [box, text] : shown)
            QVERIFY2(mainText(box).endsWith(QLatin1String(":") + text), qPrintable(mainText(box)));
        // the family name alone is not shown; with a name it follows it
        enter({{"txtname", ""}, {"txtfamily", "Lovelace"}});
        QVERIFY(mainText("txtnam").endsWith(":Ada ")); // an empty box keeps the earlier text
        enter({{"txtname", "Ada"}});
        QVERIFY(mainText("txtnam").endsWith(":Ada Lovelace"));
        // New empties the main window's boxes; the dialog keeps its entries
        test::trigger(m_->mnuFileNew);
        QVERIFY(mainText("txtnam").isEmpty() && !m_->frasample->isEnabled());
        openDialog();
        QCOMPARE(dialogBox("txtorgan")->text(), "Water Board");
    }

    void familyNameAloneIsNotShown() {
        enter({{"txtfamily", "Y"}});
        QVERIFY(mainText("txtnam").isEmpty());
        QVERIFY(!m_->frasample->isEnabled());
    }

    void cancelDiscardsTheDialog() {
        enter({{"txtname", "Ada"}});
        enter({{"txtorgan", "Typed then cancelled"}}, "cmdCancel");
        QVERIFY(!frmproperties::isLoaded());
        QVERIFY(mainText("txtnam").endsWith(":Ada ")); // what the earlier OK wrote
        QVERIFY(mainText("txtorg").isEmpty());
        openDialog();
        for (const char* box : kDialogBoxes)
            QVERIFY2(dialogBox(box)->text().isEmpty(), box);
    }

    void readersSeeTheDialogsBoxes() {
        QVERIFY(currentSampleProperties().operatorName.empty());
        openDialog();
        for (const char* box : kDialogBoxes)
            test::typeInto(dialogBox(box), QString::fromLatin1(box));
        // read from the boxes, OK or not
        const SampleProperties p = currentSampleProperties();
        QCOMPARE(QStringList({QString::fromStdString(p.operatorName),
                              QString::fromStdString(p.familyName),
                              QString::fromStdString(p.organization),
                              QString::fromStdString(p.date), QString::fromStdString(p.location)}),
                 QStringList({"txtname", "txtfamily", "txtorgan", "txtdate", "txtlocation"}));
        click("cmdCancel");
        QVERIFY(currentSampleProperties().operatorName.empty());
    }

    // As in any dialog: Enter presses the focused button, else the default
    // one (OK); Escape cancels wherever the focus is.
    void keys_data() {
        QTest::addColumn<QString>("focus");
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("Return in a box") << "txtname" << int(Qt::Key_Return) << true;
        QTest::newRow("keypad Enter in a box") << "txtlocation" << int(Qt::Key_Enter) << true;
        QTest::newRow("Return on OK") << "cmdOK" << int(Qt::Key_Return) << true;
        QTest::newRow("Return on Cancel") << "cmdCancel" << int(Qt::Key_Return) << false;
        QTest::newRow("Escape in a box") << "txtorgan" << int(Qt::Key_Escape) << false;
        QTest::newRow("Escape on OK") << "cmdOK" << int(Qt::Key_Escape) << false;
    }
    void keys() {
        QFETCH(QString, focus);
        QFETCH(int, key);
        QFETCH(bool, accepted);
        openDialog();
        test::typeInto(dialogBox("txtname"), QStringLiteral("Ada"));
        QWidget* target = frmproperties::instance()->findChild<QWidget*>(focus);
        target->setFocus();
        QTest::keyClick(target, Qt::Key(key),
                        key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
        QCOMPARE(frmproperties::isLoaded(), accepted); // OK hides, Cancel unloads
        QCOMPARE(mainText("txtnam").isEmpty(), !accepted);
    }
};

VELMORA_GUI_TEST_MAIN(TestSession)
#include "tst_session.moc"
