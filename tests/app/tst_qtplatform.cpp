// The Qt platform itself, on an offscreen screen of exactly 800 x 600 pixels
// (the test runs with that screen configured): its screen facts, its
// settings store, and the start procedure using them.
#include "app/startup.h"
#include "mainwindow/frmmain.h"
#include "platform/platform.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"

#include <QSettings>

using namespace velmora;

class QtPlatformTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { test::resetProgram(); }

    void screenOf800By600() {
        QCOMPARE(platform().screenPixels(), QSize(800, 600));
        QCOMPARE(platform().twipsPerPixelX(), 15);
        QCOMPARE(platform().twipsPerPixelY(), 15);
        QCOMPARE(platform().screenTwips(), QSize(12000, 9000));
        QVERIFY(isSmallScreen());
        QCOMPARE(twipsToPixelsX(2655), 177);
        QCOMPARE(pixelsToTwipsY(7), 105);
    }

    void settingsRoundTrip() {
        platform().writeSetting(QStringLiteral("Velmora"), QStringLiteral("Settings"),
                                QStringLiteral("Probe"), QStringLiteral("1234"));
        QCOMPARE(platform().readSetting(QStringLiteral("Velmora"), QStringLiteral("Settings"),
                                        QStringLiteral("Probe")),
                 QStringLiteral("1234"));
        const QSettings s(QStringLiteral("Velmora"), QStringLiteral("Velmora"));
        QCOMPARE(s.value(QStringLiteral("Settings/Probe")).toString(), QStringLiteral("1234"));
    }

    void startAndCloseOnTheRealPlatform() {
        frmMain* m = startProgram();
        QCOMPARE(m->pos(), QPoint(27, 7));
        QCOMPARE(m->height(), 567);
        m->close();
        const QSettings s(QStringLiteral("Velmora"), QStringLiteral("Velmora"));
        QCOMPARE(s.value(QStringLiteral("Settings/MainLeft")).toString(), QStringLiteral("405"));
        QCOMPARE(s.value(QStringLiteral("Settings/MainTop")).toString(), QStringLiteral("105"));
        QCOMPARE(s.value(QStringLiteral("Settings/MainHeight")).toString(), QStringLiteral("8505"));
    }

    void clockIsTheSystemClock() {
        const QDateTime before = QDateTime::currentDateTime();
        const QDateTime now = platform().now();
        QVERIFY(now >= before.addSecs(-1) && now <= QDateTime::currentDateTime());
    }
};

VELMORA_GUI_TEST_MAIN(QtPlatformTest)
#include "tst_qtplatform.moc"
