// The Results window family as the main window drives it.
#pragma once

#include "engine/engine.h"
#include "options/optionstate.h"

namespace velmora {

// publishresults: loads the Results and equilibrium data windows if they are
// not loaded (without showing them) and fills them from element 0 of the
// sweep arrays and the analysis record.
void publishResultsWindows(const Engine& engine, const OptionState& options);

// The part of Show results after publishing: colours the interpretation
// buttons (Larson-Skold emptied and disabled when not chosen), shows the
// Results window modeless and places it on an 800 x 600 screen.
void showResultsWindow(const Engine& engine, const OptionState& options);

// Clear's effect on the Results window: empties txtlan and txtryz.
void clearLangelierRyznar();

} // namespace velmora
