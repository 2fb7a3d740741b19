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
QLineEdit* mainBox(const char* name) {
    return test::control<QLineEdit>(frmMain::instance(), name);
}
QGroupBox* sampleFrame() {
    return frmMain::instance()->frasample;
}
void clickOk() {
    test::click(test::control<QPushButton>(frmproperties::instance(), "cmdOK"));
}
void clickCancel() {
    test::click(test::control<QPushButton>(frmproperties::instance(), "cmdCancel"));
}

void typeIn(const char* box, const QString& text) {
    test::retype(dialogBox(box), text);
}

} // namespace

// Every test starts the program afresh (sample boxes empty and disabled) on
// a 1024 x 768 screen.
class TestProperties : public test::ProgramTest {
    Q_OBJECT

private slots:
    void design();
    void okWithEveryBoxEmpty();
    void okWritesPrefixedTexts_data();
    void okWritesPrefixedTexts();
    void familyNameAloneIsNotShown();
    void emptyFieldKeepsEarlierText();
    void reopenAfterOkKeepsEntries();
    void cancelDiscardsEarlierOk();
    void readersSeeTheDialogsBoxes();
    void newEmptiesMainBoxesButKeepsDialog();
    void placement();
    void keys_data();
    void keys();
};

void TestProperties::design() {
    openDialog();
    frmproperties* d = frmproperties::instance();
    QVERIFY(d->isVisible());
    QCOMPARE(d->windowTitle(), "Sample properties");
    QCOMPARE(d->findChild<QGroupBox*>("Frame1")->title(), "Operator and organization :");
    QCOMPARE(d->findChild<QGroupBox*>("Frame2")->title(), "Date and location :");
    QStringList labels;
    for (QLabel* l : d->findChildren<QLabel*>())
        labels << l->text();
    for (const char* text : {"Operator name :", "Operator family name :", "Organization name :",
                             "Date of sampling :", "Location name :"})
        QVERIFY2(labels.contains(text), text);
    for (const char* box : {"txtname", "txtfamily", "txtorgan", "txtdate", "txtlocation"}) {
        QVERIFY2(dialogBox(box), box);
        QVERIFY(dialogBox(box)->text().isEmpty());
    }
    QCOMPARE(d->findChild<QPushButton*>("cmdOK")->text(), "OK");
    QCOMPARE(d->findChild<QPushButton*>("cmdCancel")->text(), "Cancel");
}

void TestProperties::okWithEveryBoxEmpty() {
    QVERIFY(!sampleFrame()->isEnabled());
    openDialog();
    clickOk();
    QVERIFY(!frmproperties::instance()->isVisible());
    QVERIFY(frmproperties::isLoaded()); // hidden, not unloaded
    for (const char* name : {"txtnam", "txtorg", "txtdat", "txtloc"}) {
        QLineEdit* b = mainBox(name);
        QVERIFY2(b->isEnabledTo(sampleFrame()), name);
        QVERIFY2(b->font().bold(), name);
        QVERIFY2(b->text().isEmpty(), name);
    }
    QVERIFY(!sampleFrame()->isEnabled());
}

void TestProperties::okWritesPrefixedTexts_data() {
    QTest::addColumn<QString>("dialogBox");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("mainBox");
    QTest::addColumn<QString>("shown");
    const struct {
        const char *name, *dialogBox, *typed, *mainBox, *shown;
    } rows[] = {
        {"operator", "txtname", "X", "txtnam", "operator name :X "},
        {"organization", "txtorgan", "Water Board", "txtorg", "Organization name :Water Board"},
        {"date", "txtdate", "12 May 2024", "txtdat", "Date of samplling :12 May 2024"},
        {"date not checked", "txtdate", "yesterday?", "txtdat", "Date of samplling :yesterday?"},
        {"location", "txtlocation", "Well 7", "txtloc", "sample location name :Well 7"},
    };
    for (const auto& r : rows)
        QTest::newRow(r.name) << r.dialogBox << r.typed << r.mainBox << r.shown;
}

void TestProperties::okWritesPrefixedTexts() {
    QFETCH(QString, dialogBox);
    QFETCH(QString, typed);
    QFETCH(QString, mainBox);
    QFETCH(QString, shown);
    openDialog();
    typeIn(dialogBox.toLatin1().constData(), typed);
    clickOk();
    QCOMPARE(::mainBox(mainBox.toLatin1().constData())->text(), shown);
    QVERIFY(::mainBox(mainBox.toLatin1().constData())->font().bold());
    QVERIFY(sampleFrame()->isEnabled());
    // The other boxes stay empty.
    for (const char* name : {"txtnam", "txtorg", "txtdat", "txtloc"})
        if (mainBox != name) QVERIFY2(::mainBox(name)->text().isEmpty(), name);
}

void TestProperties::familyNameAloneIsNotShown() {
    openDialog();
    typeIn("txtfamily", "Y");
    clickOk();
    QVERIFY(mainBox("txtnam")->text().isEmpty());
    QVERIFY(!sampleFrame()->isEnabled());

    openDialog();
    typeIn("txtname", "X");
    clickOk();
    QCOMPARE(mainBox("txtnam")->text(), "operator name :X Y");
}

void TestProperties::emptyFieldKeepsEarlierText() {
    openDialog();
    typeIn("txtorgan", "Utility");
    typeIn("txtlocation", "Plant");
    clickOk();
    openDialog();
    dialogBox("txtorgan")->clear();
    typeIn("txtlocation", "Reservoir");
    clickOk();
    QCOMPARE(mainBox("txtorg")->text(), "Organization name :Utility");
    QCOMPARE(mainBox("txtloc")->text(), "sample location name :Reservoir");
}

void TestProperties::reopenAfterOkKeepsEntries() {
    openDialog();
    typeIn("txtname", "Ada");
    typeIn("txtfamily", "Lovelace");
    typeIn("txtdate", "1 June");
    clickOk();
    openDialog();
    QCOMPARE(dialogBox("txtname")->text(), "Ada");
    QCOMPARE(dialogBox("txtfamily")->text(), "Lovelace");
    QCOMPARE(dialogBox("txtdate")->text(), "1 June");
}

void TestProperties::cancelDiscardsEarlierOk() {
    openDialog();
    typeIn("txtname", "Ada");
    clickOk();
    openDialog();
    typeIn("txtorgan", "Typed then cancelled");
    clickCancel();
    QVERIFY(!frmproperties::isLoaded());
    // The main window keeps what the earlier OK wrote.
    QCOMPARE(mainBox("txtnam")->text(), "operator name :Ada ");
    QVERIFY(mainBox("txtorg")->text().isEmpty());
    openDialog();
    for (const char* box : {"txtname", "txtfamily", "txtorgan", "txtdate", "txtlocation"})
        QVERIFY2(dialogBox(box)->text().isEmpty(), box);
}

void TestProperties::readersSeeTheDialogsBoxes() {
    QVERIFY(currentSampleProperties().operatorName.empty());
    openDialog();
    typeIn("txtname", "Ada");
    typeIn("txtfamily", "Lovelace");
    typeIn("txtorgan", "Org");
    typeIn("txtdate", "d");
    typeIn("txtlocation", "l");
    // Read from the boxes, OK or not.
    SampleProperties p = currentSampleProperties();
    QCOMPARE(p.operatorName, "Ada");
    QCOMPARE(p.familyName, "Lovelace");
    QCOMPARE(p.organization, "Org");
    QCOMPARE(p.date, "d");
    QCOMPARE(p.location, "l");
    clickCancel();
    QVERIFY(currentSampleProperties().operatorName.empty());
}

void TestProperties::newEmptiesMainBoxesButKeepsDialog() {
    openDialog();
    typeIn("txtname", "Ada");
    clickOk();
    QVERIFY(sampleFrame()->isEnabled());
    test::trigger(m_->mnuFileNew);
    QVERIFY(mainBox("txtnam")->text().isEmpty());
    QVERIFY(!sampleFrame()->isEnabled());
    openDialog();
    QCOMPARE(dialogBox("txtname")->text(), "Ada");
}

void TestProperties::placement() {
    rec_->useSmallScreen();
    openDialog();
    QCOMPARE(frmproperties::instance()->pos(), QPoint(133, 80));
    frmproperties::instance()->move(5, 5);
    openDialog();
    QCOMPARE(frmproperties::instance()->pos(), QPoint(133, 80));
    QVERIFY(QRect(0, 0, 800, 600).contains(frmproperties::instance()->frameGeometry()));

    rec_->screen = QSize(1024, 768);
    frmproperties::instance()->move(5, 5);
    openDialog();
    QCOMPARE(frmproperties::instance()->pos(), QPoint(5, 5));
}

// As in any dialog: Enter presses the focused button, else the default one
// (OK); Escape cancels wherever the focus is.
void TestProperties::keys_data() {
    QTest::addColumn<QString>("focus");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("accepted");
    const struct {
        const char *name, *focus;
        int key, modifiers;
        bool accepted;
    } rows[] = {
        {"Return in a box", "txtname", Qt::Key_Return, Qt::NoModifier, true},
        {"keypad Enter in a box", "txtlocation", Qt::Key_Enter, Qt::KeypadModifier, true},
        {"Return on OK", "cmdOK", Qt::Key_Return, Qt::NoModifier, true},
        {"Return on Cancel", "cmdCancel", Qt::Key_Return, Qt::NoModifier, false},
        {"Escape in a box", "txtorgan", Qt::Key_Escape, Qt::NoModifier, false},
        {"Escape on OK", "cmdOK", Qt::Key_Escape, Qt::NoModifier, false},
    };
    for (const auto& r : rows)
        QTest::newRow(r.name) << r.focus << r.key << r.modifiers << r.accepted;
}

void TestProperties::keys() {
    QFETCH(QString, focus);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, accepted);
    openDialog();
    typeIn("txtname", "Ada");
    QWidget* target = frmproperties::instance()->findChild<QWidget*>(focus);
    QVERIFY(target);
    target->setFocus();
    QTest::keyClick(target, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    if (accepted) {
        QVERIFY(frmproperties::isLoaded()); // OK hides the dialog
        QVERIFY(!frmproperties::instance()->isVisible());
        QCOMPARE(mainBox("txtnam")->text(), "operator name :Ada ");
    } else {
        QVERIFY(!frmproperties::isLoaded()); // Cancel unloads it
        QVERIFY(mainBox("txtnam")->text().isEmpty());
    }
}

VELMORA_GUI_TEST_MAIN(TestProperties)
#include "tst_properties.moc"
