// Which analysis boxes an analysis uses, by the chosen ionic strength
// equation and the Larson-Skold index: one pure function that the main
// window's colours, its enabling of boxes and of Read Data all follow.
//
// To change what an equation requires, change arrangement() below: the
// main window and its dialogs take every list of boxes from it.
#pragma once

#include "engine/engine.h"
#include "intake/fields.h"

namespace velmora {

enum class Role {
    Required,      // Read Data needs a value (cyan)
    Optional,      // used when given, or asked for by the Larson-Skold index (yellow)
    CarbonatePair, // bicarbonate and carbonate under Lewis and Randall (green)
    Unused,        // disabled and emptied (light blue)
};

enum class Equation { Langelier, Russell, Lewis };

// The equation the flags choose; Lewis and Randall first, Langelier when
// none is set.
Equation equationOf(const EquationFlags& flags);

struct Arrangement {
    PerField<Role> role;
    // Read Data's required set: the boxes that must all hold a value before
    // Read Data is offered (the Required boxes, and chloride and sulphate
    // when the Larson-Skold index asks for them).
    PerField<bool> needed;
};

Arrangement arrangement(Equation equation, bool larsonSkold);
inline Arrangement arrangement(const EquationFlags& flags, bool larsonSkold) {
    return arrangement(equationOf(flags), larsonSkold);
}

} // namespace velmora
