// The sample properties dialog and the sample boxes of the main window.
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "mainwindow/properties.h"
#include "tests/results/resultstest.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace velmora;

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

} // namespace

// Every test starts the program afresh (sample boxes empty and disabled).
class TestProperties : public test::ProgramTest {
    Q_OBJECT

private slots:
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
        // the dialog keeps its entries for the next opening
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

    void newEmptiesMainBoxesButKeepsDialog() {
        enter({{"txtname", "Ada"}});
        test::trigger(m_->mnuFileNew);
        QVERIFY(mainText("txtnam").isEmpty());
        QVERIFY(!m_->frasample->isEnabled());
        openDialog();
        QCOMPARE(dialogBox("txtname")->text(), "Ada");
    }

    void placement() {
        rec_->useSmallScreen();
        openDialog();
        const QPoint placed = frmproperties::instance()->pos();
        QVERIFY(QRect(0, 0, 800, 600).contains(frmproperties::instance()->frameGeometry()));
        frmproperties::instance()->move(5, 5);
        openDialog();
        QCOMPARE(frmproperties::instance()->pos(), placed);
        rec_->screen = QSize(1024, 768);
        frmproperties::instance()->move(5, 5);
        openDialog();
        QCOMPARE(frmproperties::instance()->pos(), QPoint(5, 5));
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

VELMORA_GUI_TEST_MAIN(TestProperties)
#include "tst_properties.moc"
