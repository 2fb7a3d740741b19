// Small helpers shared by the result windows and the sample properties
// dialog: the 800 x 600 placement and showing a modeless window.
#pragma once

#include <QWidget>

namespace velmora {

// Moves `window` to the given position in twips when, and only when, the
// screen is exactly 800 by 600 pixels.
void placeOnSmallScreen(QWidget* window, int topTwips, int leftTwips);

// Shows a modeless window and brings it in front of the others.
void showInFront(QWidget* window);

} // namespace velmora
