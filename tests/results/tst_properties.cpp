// The sample properties dialog and the sample boxes of the main window.
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "mainwindow/properties.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace velmora;

namespace {

void unloadWindow(QWidget* w) {
    if (!w) return;
    w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QLineEdit* dialogBox(const char* name) {
    return frmproperties::instance()->findChild<QLineEdit*>(name);
}
QLineEdit* mainBox(const char* name) {
    return frmMain::instance()->findChild<QLineEdit*>(name);
}
QGroupBox* sampleFrame() {
    return frmMain::instance()->findChild<QGroupBox*>("frasample");
}
void clickOk() {
    frmproperties::instance()->findChild<QPushButton*>("cmdOK")->click();
}
void clickCancel() {
    frmproperties::instance()->findChild<QPushButton*>("cmdCancel")->click();
}

void type(const char* box, const QString& text) {
    QLineEdit* b = dialogBox(box);
    b->clear();
    QTest::keyClicks(b, text);
}

} // namespace

class TestProperties : public QObject {
    Q_OBJECT

private:
    test::RecordingPlatform platform_;

private slots:
    void init() {
        platform_.screen = QSize(1024, 768);
        // A fresh main window: sample boxes empty and disabled.
        frmMain::instance()->mnuFileNew_Click();
    }
    void cleanup() {
        unloadWindow(frmproperties::isLoaded() ? frmproperties::instance() : nullptr);
    }
    void cleanupTestCase() {
        unloadWindow(frmproperties::isLoaded() ? frmproperties::instance() : nullptr);
        unloadWindow(frmMain::instance());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

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
};

void TestProperties::design() {
    openPropertiesDialog();
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
    openPropertiesDialog();
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
    QTest::newRow("operator") << "txtname"
                              << "X"
                              << "txtnam"
                              << "operator name :X ";
    QTest::newRow("organization") << "txtorgan"
                                  << "Water Board"
                                  << "txtorg"
                                  << "Organization name :Water Board";
    QTest::newRow("date") << "txtdate"
                          << "12 May 2024"
                          << "txtdat"
                          << "Date of samplling :12 May 2024";
    QTest::newRow("date not checked") << "txtdate"
                                      << "yesterday?"
                                      << "txtdat"
                                      << "Date of samplling :yesterday?";
    QTest::newRow("location") << "txtlocation"
                              << "Well 7"
                              << "txtloc"
                              << "sample location name :Well 7";
}

void TestProperties::okWritesPrefixedTexts() {
    QFETCH(QString, dialogBox);
    QFETCH(QString, typed);
    QFETCH(QString, mainBox);
    QFETCH(QString, shown);
    openPropertiesDialog();
    type(dialogBox.toLatin1().constData(), typed);
    clickOk();
    QCOMPARE(::mainBox(mainBox.toLatin1().constData())->text(), shown);
    QVERIFY(::mainBox(mainBox.toLatin1().constData())->font().bold());
    QVERIFY(sampleFrame()->isEnabled());
    // The other boxes stay empty.
    for (const char* name : {"txtnam", "txtorg", "txtdat", "txtloc"})
        if (mainBox != name) QVERIFY2(::mainBox(name)->text().isEmpty(), name);
}

void TestProperties::familyNameAloneIsNotShown() {
    openPropertiesDialog();
    type("txtfamily", "Y");
    clickOk();
    QVERIFY(mainBox("txtnam")->text().isEmpty());
    QVERIFY(!sampleFrame()->isEnabled());

    openPropertiesDialog();
    type("txtname", "X");
    clickOk();
    QCOMPARE(mainBox("txtnam")->text(), "operator name :X Y");
}

void TestProperties::emptyFieldKeepsEarlierText() {
    openPropertiesDialog();
    type("txtorgan", "Utility");
    type("txtlocation", "Plant");
    clickOk();
    openPropertiesDialog();
    dialogBox("txtorgan")->clear();
    type("txtlocation", "Reservoir");
    clickOk();
    QCOMPARE(mainBox("txtorg")->text(), "Organization name :Utility");
    QCOMPARE(mainBox("txtloc")->text(), "sample location name :Reservoir");
}

void TestProperties::reopenAfterOkKeepsEntries() {
    openPropertiesDialog();
    type("txtname", "Ada");
    type("txtfamily", "Lovelace");
    type("txtdate", "1 June");
    clickOk();
    openPropertiesDialog();
    QCOMPARE(dialogBox("txtname")->text(), "Ada");
    QCOMPARE(dialogBox("txtfamily")->text(), "Lovelace");
    QCOMPARE(dialogBox("txtdate")->text(), "1 June");
}

void TestProperties::cancelDiscardsEarlierOk() {
    openPropertiesDialog();
    type("txtname", "Ada");
    clickOk();
    openPropertiesDialog();
    type("txtorgan", "Typed then cancelled");
    clickCancel();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!frmproperties::isLoaded());
    // The main window keeps what the earlier OK wrote.
    QCOMPARE(mainBox("txtnam")->text(), "operator name :Ada ");
    QVERIFY(mainBox("txtorg")->text().isEmpty());
    openPropertiesDialog();
    for (const char* box : {"txtname", "txtfamily", "txtorgan", "txtdate", "txtlocation"})
        QVERIFY2(dialogBox(box)->text().isEmpty(), box);
}

void TestProperties::readersSeeTheDialogsBoxes() {
    QVERIFY(currentSampleProperties().operatorName.empty());
    openPropertiesDialog();
    type("txtname", "Ada");
    type("txtfamily", "Lovelace");
    type("txtorgan", "Org");
    type("txtdate", "d");
    type("txtlocation", "l");
    // Read from the boxes, OK or not.
    SampleProperties p = currentSampleProperties();
    QCOMPARE(p.operatorName, "Ada");
    QCOMPARE(p.familyName, "Lovelace");
    QCOMPARE(p.organization, "Org");
    QCOMPARE(p.date, "d");
    QCOMPARE(p.location, "l");
    clickCancel();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(currentSampleProperties().operatorName.empty());
}

void TestProperties::newEmptiesMainBoxesButKeepsDialog() {
    openPropertiesDialog();
    type("txtname", "Ada");
    clickOk();
    QVERIFY(sampleFrame()->isEnabled());
    frmMain::instance()->mnuFileNew_Click();
    QVERIFY(mainBox("txtnam")->text().isEmpty());
    QVERIFY(!sampleFrame()->isEnabled());
    openPropertiesDialog();
    QCOMPARE(dialogBox("txtname")->text(), "Ada");
}

void TestProperties::placement() {
    platform_.useSmallScreen();
    openPropertiesDialog();
    QCOMPARE(frmproperties::instance()->pos(), QPoint(133, 80));
    frmproperties::instance()->move(5, 5);
    openPropertiesDialog();
    QCOMPARE(frmproperties::instance()->pos(), QPoint(133, 80));
    QVERIFY(QRect(0, 0, 800, 600).contains(frmproperties::instance()->frameGeometry()));

    platform_.screen = QSize(1024, 768);
    frmproperties::instance()->move(5, 5);
    openPropertiesDialog();
    QCOMPARE(frmproperties::instance()->pos(), QPoint(5, 5));
}

VELMORA_GUI_TEST_MAIN(TestProperties)
#include "tst_properties.moc"
