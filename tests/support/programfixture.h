// Helpers for tests that drive the whole program: starting it afresh,
// typing into boxes and clicking buttons as a user does, and returning the
// program to its start state between tests.
#pragma once

#include <QString>

class QAbstractButton;
class QAction;
class QLineEdit;
class QWidget;

namespace velmora {
class frmMain;
}

namespace velmora::test {

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

} // namespace velmora::test
