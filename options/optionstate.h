// The published option flags and the sweep list. They belong to the option
// dialogs but outlive them: a dialog that is closed and reopened comes back
// in its design state while these keep their values.
#pragma once

#include "engine/engine.h"

namespace velmora {

struct IndexFlags {
    bool blli = false, blri = false, blpor = false, bllr = false;
    bool bldfi = false, blai = false, blme = false, blsl = false;
};

struct SweepList {
    double entry[141] = {}; // entry 0 the start pH, 1..steps the sweep points
};

struct OptionState {
    IndexFlags index;        // Options dialog
    EquationFlags equations; // ionic strength and activity dialogs
    SweepList sweep;         // Options dialog
};

// The program's one set of published options.
OptionState& theOptions();

} // namespace velmora
