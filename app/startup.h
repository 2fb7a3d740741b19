// The start procedure of the desktop program.
#pragma once

namespace velmora {

class frmMain;

// Links the windows below the main window's menus that live here (About).
void linkWindows();

// Shows the splash, builds and places the main window, sets the Langelier
// ionic strength equation, removes the splash, shows the main window with
// the focus in the temperature box, and returns it.
frmMain* startProgram();

// Quits the application once the main window has been painted for the
// first time (used to measure the start-up time).
void quitAfterFirstPaint(frmMain* main);

// Types the worked sample water into the main window, with every index and
// a pH sweep chosen, reads it and calculates (used for screenshots).
void runDemoSample(frmMain* main);

} // namespace velmora
