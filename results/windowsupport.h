// Small helpers shared by the result windows and the sample properties
// dialog: the 800 x 600 placement and the way to the main window's controls.
#pragma once

#include <QWidget>

namespace velmora {

// Moves `window` to the given position in twips when, and only when, the
// screen is exactly 800 by 600 pixels.
void placeOnSmallScreen(QWidget* window, int topTwips, int leftTwips);

// Shows a modeless window and brings it in front of the others.
void showInFront(QWidget* window);

// The main window; nullptr while it is not loaded.
QWidget* mainWindow();

// A control of the main window by its object name; nullptr when absent.
template <class T> T* mainControl(const char* name) {
    QWidget* main = mainWindow();
    return main ? main->findChild<T*>(QString::fromLatin1(name)) : nullptr;
}

} // namespace velmora
