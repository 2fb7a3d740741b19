// Helpers for tests that drive the whole program: starting it afresh,
// typing into boxes and clicking buttons as a user does, and returning the
// program to its start state between tests.
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class QAbstractButton;
class QAction;
class QCheckBox;
class QLineEdit;
class QWidget;

namespace velmora {
class frmMain;
class frmOptions;
class frmionic;
} // namespace velmora

namespace velmora::test {

class RecordingPlatform;

// Closes and deletes every window of the program, then resets the published
// options and the engine's record and arrays, as a fresh start has them.
void resetProgram();

// Deletes the windows already closed (their deferred deletions).
void flushDeletions();

// Types `text` into `box` key by key at the end of its text.
void typeInto(QLineEdit* box, const QString& text);
// Empties `box` with the keyboard (select all, delete).
void eraseBox(QLineEdit* box);
// Replaces the text of `box` by typing (erase, then type).
void retype(QLineEdit* box, const QString& text);
// A left click in the middle of `button` (nothing happens when disabled).
void click(QAbstractButton* button);
// Triggers a menu entry or toolbar button as a click would (only when enabled).
void trigger(QAction* action);

// Typing the worked sample water into the main window's enabled boxes:
// 25 degrees C, pH 7.5, alkalinity 200, calcium 80, TDS 400 (and chloride 50,
// sulphate 60 where their boxes are enabled).
void typeWorkedSample(frmMain* main);

// A test object whose every test starts the real program on a recording
// platform (init) and leaves a fresh start behind (cleanup), with the
// user's ways into the main window and its dialogs.
class ProgramTest : public QObject {
    Q_OBJECT

protected:
    RecordingPlatform* rec_ = nullptr;
    frmMain* m_ = nullptr;

    // A box of the main window by its name.
    QLineEdit* box(const QString& name) const;
    // "name=value" entries: each box retyped with its value.
    void type(const QStringList& entries);
    // Setting > ionic strength equations: "lewis", "rus" or "lang", then OK.
    void chooseEquation(const QString& equation);
    frmionic* openIonic();
    // Options > options.
    frmOptions* openOptions();
    // The sweep page: chkphsweep ticked and the three boxes retyped.
    void fillSweep(frmOptions* options, const QString& start, const QString& increment,
                   const QString& steps);
    // Opens Options, ticks the check boxes, fills the sweep when a start is
    // given and presses OK.
    void applyOptions(const QList<QCheckBox*>& ticks, const QString& start = QString(),
                      const QString& increment = QString(), const QString& steps = QString());

private slots:
    void init();
    void cleanup();
};

} // namespace velmora::test
