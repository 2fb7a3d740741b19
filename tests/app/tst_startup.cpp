// The start procedure: splash, placement of the main window on an 800 x 600
// screen (and on others), the restored placement of the last session, the
// Langelier preset and the focus.
#include "app/frmsplash.h"
#include "app/startup.h"
#include "windowkit/formsupport.h"
#include "mainwindow/frmmain.h"
#include "options/frmionic.h"
#include "options/optionstate.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"

#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

using namespace velmora;
using velmora::test::RecordingPlatform;

namespace {

// Notes where and whether the splash was shown during the start.
class SplashWatcher : public QObject {
public:
    bool shown = false;
    QPoint pos;

protected:
    bool eventFilter(QObject* o, QEvent* e) override {
        if (e->type() == QEvent::Show && o->objectName() == QLatin1String("frmSplash")) {
            shown = true;
            pos = static_cast<QWidget*>(o)->pos();
        }
        return false;
    }
};

} // namespace

class StartupTest : public QObject {
    Q_OBJECT

    RecordingPlatform* rec_ = nullptr;

    void saved(int left, int top, int width, int height) {
        const std::pair<const char*, int> values[] = {
            {"MainLeft", left}, {"MainTop", top}, {"MainWidth", width}, {"MainHeight", height}};
        for (const auto& [key, v] : values)
            rec_->settings.insert(
                RecordingPlatform::settingKey("Velmora", "Settings", QLatin1String(key)),
                QString::number(v));
    }

private slots:
    void init() { rec_ = new RecordingPlatform; }
    void cleanup() {
        test::resetProgram();
        delete rec_;
    }

    void startOnAnOrdinaryScreen() {
        SplashWatcher watcher;
        qApp->installEventFilter(&watcher);
        frmMain* m = startProgram();
        qApp->removeEventFilter(&watcher);
        QVERIFY(watcher.shown);
        QVERIFY(!frmSplash::isLoaded());
        QCOMPARE(frmMain::instance(), m);
        QVERIFY(m->isVisible());
        // the designed placement
        QCOMPARE(m->pos(), QPoint(80, 60));
        QCOMPARE(m->size(), QSize(760, 547));
        QCOMPARE(twipsGeometry(m->frawater), QRect(360, 480, 8175, 4815));
        // the Langelier equation is in force without its dialog
        QVERIFY(theOptions().equations.bllang);
        QVERIFY(!theOptions().equations.bllewis && !theOptions().equations.blrus);
        QVERIFY(!frmionic::isLoaded());
        QVERIFY(QTest::qWaitForWindowActive(m));
        QCOMPARE(QApplication::focusWidget(), m->txtt);
        QCOMPARE(QDir::currentPath(), QCoreApplication::applicationDirPath());
    }

    void placementOnAnExactly800By600Screen_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QRect>("pixels");
        QTest::newRow("frawater") << "frawater" << QRect(24, 32, 545, 321);
        QTest::newRow("Frame4") << "Frame4" << QRect(8, 16, 257, 97);
        QTest::newRow("frmcations") << "frmcations" << QRect(272, 88, 257, 225);
        QTest::newRow("frmanions") << "frmanions" << QRect(8, 112, 257, 201);
        QTest::newRow("frasample") << "frasample" << QRect(24, 367, 440, 107);
        QTest::newRow("fraaccuracy") << "fraaccuracy" << QRect(472, 367, 225, 107);
    }
    void placementOnAnExactly800By600Screen() {
        QFETCH(QString, control);
        QFETCH(QRect, pixels);
        rec_->useSmallScreen();
        SplashWatcher watcher;
        qApp->installEventFilter(&watcher);
        frmMain* m = startProgram();
        qApp->removeEventFilter(&watcher);
        QCOMPARE(watcher.pos, QPoint(177, 200)); // 2655, 3000 twips
        QCOMPARE(m->pos(), QPoint(27, 7));       // 400, 100 twips
        QCOMPARE(m->height(), 567);              // 8500 twips
        QCOMPARE(m->findChild<QWidget*>(control)->geometry(), pixels);
    }

    void topsAndHeightsOnAnExactly800By600Screen() {
        rec_->useSmallScreen();
        frmMain* m = startProgram();
        const std::tuple<QWidget*, int, int> rows[] = {
            {m->fratdsec, 240, 1095},    {m->txtnam, 300, 400},    {m->txtorg, 300, 400},
            {m->txtdat, 850, 400},       {m->txtloc, 850, 400},    {m->cmdread, 2040, 375},
            {m->cmdcalc, 2520, 375},     {m->cmdclear, 3000, 375}, {m->cmdshow, 3480, 375},
            {m->cmdaccuracy, 4500, 450}, {m->Image1, 600, 1335}};
        for (const auto& [w, top, height] : rows) {
            QCOMPARE(w->y(), qRound(top / 15.0));
            QCOMPARE(w->height(), qRound(height / 15.0));
        }
    }

    void screenSizeIsTwipsOverTwipsPerPixel_data() {
        QTest::addColumn<QSize>("twips");
        QTest::addColumn<int>("tpp");
        QTest::addColumn<bool>("placed");
        QTest::newRow("800 x 600 at 15") << QSize(12000, 9000) << 15 << true;
        QTest::newRow("800 x 600 at 12 (large fonts)") << QSize(9600, 7200) << 12 << true;
        QTest::newRow("quotient not exact") << QSize(12010, 9000) << 15 << false;
        QTest::newRow("1024 x 768") << QSize(15360, 11520) << 15 << false;
        QTest::newRow("800 x 800") << QSize(12000, 12000) << 15 << false;
    }
    void screenSizeIsTwipsOverTwipsPerPixel() {
        QFETCH(QSize, twips);
        QFETCH(int, tpp);
        QFETCH(bool, placed);
        rec_->twipsOverride = twips;
        rec_->tppX = rec_->tppY = tpp;
        QCOMPARE(isSmallScreen(), placed);
        frmMain* m = startProgram();
        const QPoint expected = placed ? QPoint(qRound(400.0 / tpp), qRound(100.0 / tpp))
                                       : QPoint(qRound(1200.0 / tpp), qRound(900.0 / tpp));
        QCOMPARE(m->pos(), expected);
    }

    void restoresTheLastPlacementWhenItFits() {
        saved(3000, 1500, 9000, 7500);
        frmMain* m = startProgram();
        QCOMPARE(m->pos(), QPoint(200, 100));
        QCOMPARE(m->size(), QSize(600, 500));
    }

    void ignoresAPlacementThatDoesNotFit_data() {
        QTest::addColumn<QList<int>>("twips");
        QTest::newRow("off to the right") << QList<int>{12000, 0, 9000, 7500};
        QTest::newRow("taller than the screen") << QList<int>{0, 0, 9000, 12000};
        QTest::newRow("negative left") << QList<int>{-300, 0, 9000, 7500};
        QTest::newRow("too small") << QList<int>{0, 0, 300, 300};
    }
    void ignoresAPlacementThatDoesNotFit() {
        QFETCH(QList<int>, twips);
        saved(twips[0], twips[1], twips[2], twips[3]);
        frmMain* m = startProgram();
        QCOMPARE(m->pos(), QPoint(80, 60));
        QCOMPARE(m->size(), QSize(760, 547));
    }

    void ignoresSettingsThatAreNotNumbers() {
        saved(3000, 1500, 9000, 7500);
        rec_->settings.insert(RecordingPlatform::settingKey("Velmora", "Settings", "MainTop"),
                              QStringLiteral("high"));
        QCOMPARE(startProgram()->pos(), QPoint(80, 60));
    }

    void smallScreenPlacementWinsOverTheSavedOne() {
        saved(3000, 1500, 9000, 7500);
        rec_->useSmallScreen();
        frmMain* m = startProgram();
        QCOMPARE(m->pos(), QPoint(27, 7));
        QCOMPARE(m->height(), 567);
    }

    void closedPlacementComesBackAtTheNextStart() {
        frmMain* m = startProgram();
        m->move(150, 90);
        m->resize(700, 520);
        m->close();
        test::flushDeletions();
        m = startProgram();
        QCOMPARE(m->pos(), QPoint(150, 90));
        QCOMPARE(m->size(), QSize(700, 520));
    }

    void splashContents() {
        frmSplash* s = frmSplash::instance();
        QCOMPARE(s->lblProductName->text(), QStringLiteral("Velmora"));
        QCOMPARE(s->lblVersion->text(), QStringLiteral("Version 1.0.0"));
        QCOMPARE(s->lblPlatform->text(), QStringLiteral("Windows 98,2000,xp,vista"));
        QVERIFY(!s->Label1->text().isEmpty());
        QVERIFY(!s->Image1->pixmap().isNull());
        QVERIFY(s->findChild<QWidget*>(QStringLiteral("fraMainFrame")));
        frmSplash::unload();
        QVERIFY(!frmSplash::isLoaded());
    }

    void quitsAfterTheFirstPaintWhenAsked() {
        frmMain* m = startProgram();
        quitAfterFirstPaint(m);
        bool timedOut = false;
        QTimer::singleShot(10000, qApp, [&timedOut] {
            timedOut = true;
            qApp->quit();
        });
        QElapsedTimer t;
        t.start();
        QCoreApplication::exec();
        QVERIFY(!timedOut);
        QVERIFY(t.elapsed() < 5000);
    }
};

VELMORA_GUI_TEST_MAIN(StartupTest)
#include "tst_startup.moc"
