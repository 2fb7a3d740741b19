#include "results/results.h"

#include "platform/platform.h"
#include "results/frmmore.h"
#include "results/frmresult.h"
#include "windowkit/windowsupport.h"

namespace velmora {

void publishResultsWindows(const Engine& engine, const OptionState& options) {
    frmresult::instance()->publishIndices(engine);
    frmmore* more = frmmore::instance();
    more->publishEquilibrium(engine);
    if (options.equations.bldebye) more->publishDebye(engine.rec);
    if (options.equations.bldavies) more->publishDavies(engine.rec);
}

void showResultsWindow(const Engine& engine, const OptionState& options) {
    frmresult* w = frmresult::instance();
    w->colourButtons(engine, options.index);
    showInFront(w);
    placeOnSmallScreen(w, 1995, 2520);
}

void clearLangelierRyznar() {
    // A Results window that is not loaded has empty boxes already.
    if (frmresult::isLoaded()) frmresult::instance()->clearLangelierRyznar();
}

} // namespace velmora
