#include "windowkit/windowsupport.h"

#include "platform/platform.h"

#include <QApplication>

namespace velmora {

void placeOnSmallScreen(QWidget* window, int topTwips, int leftTwips) {
    if (!window || !isSmallScreen()) return;
    window->move(twipsToPixelsX(leftTwips), twipsToPixelsY(topTwips));
}

void showInFront(QWidget* window) {
    window->show();
    // Window stacking means nothing to the offscreen test platform.
    if (QGuiApplication::platformName() != QLatin1String("offscreen")) {
        window->raise();
        window->activateWindow();
    }
}

} // namespace velmora
