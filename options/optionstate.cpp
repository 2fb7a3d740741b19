#include "options/optionstate.h"

namespace velmora {

OptionState& theOptions() {
    static OptionState options;
    return options;
}

} // namespace velmora
