// What the documentation's picture programs share: their output folder, the
// program started as the user starts it with the worked sample (every index,
// a short pH sweep) read and calculated, and pictures of windows.
#pragma once

#include <QDir>
#include <QString>

class QWidget;

namespace velmora {
class frmMain;
}

namespace velmora::test {

// The folder named by the first argument, made absolute (the program may
// change the current folder as it starts); exits with a usage message when
// there is none.
QDir pictureFolder(int argc, char** argv);

// Starts the program (test mode: the user's settings are left alone) and
// calculates the worked sample; nullptr, with a message, when that failed.
frmMain* startWithWorkedSample();

// A picture of the window `w` in `file`; says what it wrote.
bool savePicture(QWidget* w, const QString& file);

// Closes every window; the exit status for `ok`.
int finishPictures(bool ok);

} // namespace velmora::test
