// The start procedure: splash, placement of the main window on an 800 x 600
// screen (and on others), the restored placement of the last session, the
// Langelier preset and the focus.
#include "app/frmsplash.h"
#include "app/startup.h"
#include "mainwindow/frmmain.h"
#include "options/frmionic.h"
#include "options/optionstate.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"
#include "windowkit/formsupport.h"

#include <QDir>
#include <QGroupBox>
#include <QLineEdit>

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

    void saved(const QList<int>& twips) {
        const char* keys[] = {"MainLeft", "MainTop", "MainWidth", "MainHeight"};
        for (int i = 0; i < 4; ++i)
            rec_->settings.insert(RecordingPlatform::settingKey(QLatin1String(keys[i])),
                                  QString::number(twips[i]));
    }
    QRect startedAt() {
        frmMain* m = startProgram();
        return QRect(m->pos(), m->size());
    }
    void restart() {
        test::resetProgram();
        delete rec_;
        rec_ = new RecordingPlatform;
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
        QVERIFY(watcher.shown && !frmSplash::isLoaded());
        QVERIFY(frmSplash::instance()); // loaded afresh when asked for, and let go
        frmSplash::unload();
        QVERIFY(!frmSplash::isLoaded());
        QCOMPARE(frmMain::instance(), m);
        QVERIFY(m->isVisible());
        // the Langelier equation is in force without its dialog
        QVERIFY(theOptions().equations.bllang && !theOptions().equations.bllewis);
        QVERIFY(!frmionic::isLoaded());
        QVERIFY(QTest::qWaitForWindowActive(m));
        QCOMPARE(QApplication::focusWidget(), m->txtt);
        QCOMPARE(QDir::currentPath(), QCoreApplication::applicationDirPath());
    }

    // On an 800 x 600 screen the splash and the window are placed so that
    // the window and every frame fit on the screen.
    void placementOnAnExactly800By600Screen() {
        rec_->useSmallScreen();
        SplashWatcher watcher;
        qApp->installEventFilter(&watcher);
        frmMain* m = startProgram();
        qApp->removeEventFilter(&watcher);
        QVERIFY(watcher.pos != QPoint(0, 0));
        const QRect placed(m->pos(), m->size());
        QVERIFY(QRect(0, 0, 800, 600).contains(placed));
        const QRect inside(QPoint(), twipsGeometry(m).size());
        for (QGroupBox* f : m->findChildren<QGroupBox*>())
            QVERIFY2(inside.contains(twipsGeometry(f)), qPrintable(f->objectName()));
        restart();
        QVERIFY(startedAt() != placed);
    }

    // The placement of the last session comes back when it fits the screen
    // (not on an 800 x 600 screen, which has its own).
    void restoredPlacement() {
        const QRect designed = startedAt();
        const QList<QList<int>> ignored = {
            {12000, 0, 9000, 7500}, {0, 0, 9000, 12000}, {-300, 0, 9000, 7500}, {0, 0, 300, 300}};
        for (const QList<int>& twips : ignored) {
            restart();
            saved(twips);
            QCOMPARE(startedAt(), designed);
        }
        restart();
        saved({3000, 1500, 9000, 7500});
        QCOMPARE(startedAt(), QRect(200, 100, 600, 500));
        restart();
        saved({3000, 1500, 9000, 7500});
        rec_->settings.insert(RecordingPlatform::settingKey("MainTop"), "high");
        QCOMPARE(startedAt(), designed);
        restart();
        saved({3000, 1500, 9000, 7500});
        rec_->useSmallScreen();
        QVERIFY(startedAt().topLeft() != QPoint(200, 100));
    }

    void closedPlacementComesBackAtTheNextStart() {
        frmMain* m = startProgram();
        m->move(150, 90);
        m->resize(700, 520);
        m->close();
        test::flushDeletions();
        QCOMPARE(startedAt(), QRect(150, 90, 700, 520));
    }
};

VELMORA_GUI_TEST_MAIN(StartupTest)
#include "tst_startup.moc"
