// Driving the whole program as a user does, offscreen on a recording
// platform, and returning it to its start state between tests.
#pragma once

#include <QApplication>
#include <QtTest>

class QAbstractButton;
class QCheckBox;
class QLineEdit;

namespace velmora {
class frmMain;
class frmOptions;
class frmionic;
} // namespace velmora

namespace velmora::test {

class RecordingPlatform;

// Offscreen (unless set), a private XDG_RUNTIME_DIR and QStandardPaths'
// test mode, so no test touches the user's settings. Call before QApplication.
void prepareGuiTestEnvironment();
// Closes every window, resets the published options and the engine.
void resetProgram();
// Deletes the windows already closed.
void flushDeletions();

// Keys typed at the end of the box; the box emptied by keys; both.
void typeInto(QLineEdit* box, const QString& text);
void eraseBox(QLineEdit* box);
void retype(QLineEdit* box, const QString& text);
// A click on the button, a menu entry triggered when it is enabled.
void click(QAbstractButton* button);
void trigger(QAction* action);
// The worked sample typed into the enabled boxes: 25 degrees C, pH 7.5,
// alkalinity 200, calcium 80, TDS 400, chloride 50, sulphate 60.
void typeWorkedSample(frmMain* main);

// Every test starts the real program on a recording platform and leaves a
// fresh start behind.
class ProgramTest : public QObject {
    Q_OBJECT

protected:
    RecordingPlatform* rec_ = nullptr;
    frmMain* m_ = nullptr;

    QLineEdit* box(const QString& name) const;
    // "name=value" entries: each box retyped with its value.
    void type(const QStringList& entries);
    // The ionic strength equation "lewis", "rus" or "lang" chosen, then OK.
    void chooseEquation(const QString& equation);
    frmionic* openIonic();
    frmOptions* openOptions();
    // The sweep ticked and its three boxes retyped.
    void fillSweep(frmOptions* options, const QString& start, const QString& increment,
                   const QString& steps);
    // Options opened, the boxes ticked, the sweep filled when given, then OK.
    void applyOptions(const QList<QCheckBox*>& ticks, const QString& start = QString(),
                      const QString& increment = QString(), const QString& steps = QString());

private slots:
    void init();
    void cleanup();
};

} // namespace velmora::test

#define VELMORA_GUI_TEST_MAIN(TestObject)                                                          \
    int main(int argc, char** argv) {                                                              \
        velmora::test::prepareGuiTestEnvironment();                                                \
        QApplication app(argc, argv);                                                              \
        app.setQuitOnLastWindowClosed(false);                                                      \
        TestObject tc;                                                                             \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&tc, argc, argv);                                                      \
    }
