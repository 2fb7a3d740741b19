// The pH sweep settings of the Options dialog: the checks of its three boxes
// and the sweep list that Apply builds. Shared by the dialog and the batch
// calculator.
#pragma once

#include "options/optionstate.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

// The check each sweep box runs on every change of its text. A message means
// the text is rejected: show it (title "Velmora", OK, no icon) and empty the box.
std::optional<std::string> checkInitialPh(std::string_view text);
std::optional<std::string> checkIncrementPh(std::string_view text);
std::optional<std::string> checkSteps(std::string_view text);

struct SweepApplyResult {
    enum class Outcome {
        Applied,    // the list is complete: Read Data may be enabled
        MissingBox, // a sweep box is empty
        PastPh14,   // an entry passed pH 14
    };
    Outcome outcome = Outcome::Applied;
    std::string message;       // the message to show when not Applied
    bool clearStepBox = false; // empty txtstep after the message
};

// Step 3 of Apply (only when chkphsweep is checked): builds the list from the
// three box texts and stores the start pH into `phstart`. A text that is not
// a number throws EngineError(BadConversion); more than 140 steps that stay
// within pH 14 run past the list and throw EngineError(IndexOutOfRange).
SweepApplyResult applySweep(std::string_view initial, std::string_view increment,
                            std::string_view steps, SweepList& list, double& phstart);

} // namespace velmora
