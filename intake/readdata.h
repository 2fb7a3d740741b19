// Read Data: checks that the values the chosen ionic strength equation needs
// are present, stores the entered analysis in the engine and runs the
// conversion, the ionic strength and activity and the ion balance.
// Shared by the main window and the batch calculator.
#pragma once

#include "engine/engine.h"
#include "intake/fields.h"
#include "numtext/numtext.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

// A box as a number: whether its text is empty and the leading-number
// reading of that text (infinite when it is beyond a double).
struct BoxValue {
    bool empty = true;
    double value = 0;
};
using AnalysisValues = PerField<BoxValue>;

// Every box's text read as Read Data reads it.
AnalysisValues analysisValues(const AnalysisTexts& boxes);

struct ReadDataResult {
    enum class Outcome {
        Message,  // a required value is missing: show messageText / messageTitle
        Accepted, // accuracyok: enable Calculate, status "Ready for Analysis"
        Rejected, // not accurate: status "water analysis is unacceptable"
    };
    Outcome outcome = Outcome::Message;
    std::string messageText;
    std::string messageTitle;
};

// The whole of Read Data but the window effects of its last step, which the
// caller applies from the outcome. The ion balance's own effects leave through
// the engine's observer. A run-time error of the engine propagates; so does an
// EngineError(Overflow) for a box whose number is beyond the range of a double
// or a conductivity that overflows when multiplied by 100 (nothing of that
// step is stored).
ReadDataResult readAnalysis(Engine& engine, const AnalysisTexts& boxes, EquationFlags& flags,
                            bool bllr);
// The same from boxes already read (the batch calculator reads each cell
// once); `in` as calcInputs gives it for the boxes.
ReadDataResult readAnalysis(Engine& engine, const AnalysisValues& boxes, EquationFlags& flags,
                            bool bllr, const CalcInputs& in);

// The numbers the engine reads during Read Data and Calculate: the pH and
// the carbonate pair's emptiness from the boxes, without a sweep.
CalcInputs calcInputs(const AnalysisTexts& boxes);
// The same with the sweep on, from the texts of its start pH, pH increment
// and number of steps.
CalcInputs calcInputs(const AnalysisTexts& boxes, std::string_view start,
                      std::string_view increment, std::string_view steps);
// A text the engine converts strictly: its number when it is wholly one
// (surrounding blanks allowed), or else the error "the WHAT "TEXT" is not a
// number" for the engine to raise when it reads it.
EntryNumber strictEntry(std::string_view text, std::string_view what);

// The check an analysis box runs on its whole text: the message that rejects
// it ("You must enter a number!", or for the pH box "pH must be a positive
// number up to 14 ." when the number is 0 or less or above 14), nothing when
// the text is empty or acceptable. Shown with the information icon under
// kBoxMessageTitle.
std::optional<std::string> checkBoxText(std::string_view text, bool isPh);

// The check of checkBoxText and the box's number in one reading of the text.
enum class BoxCheck { Empty, Number, NotANumber, PhOutOfRange };
// `value` is the number for Number (and 0 for Empty), as Read Data reads it.
inline BoxCheck readBoxText(std::string_view text, bool isPh, double& value) {
    value = 0;
    if (text.empty()) return BoxCheck::Empty;
    // a text that is wholly a number reads the same as its leading number
    double v;
    if (!fmt::strictNumberTo(text, v)) return BoxCheck::NotANumber;
    if (isPh && (v <= 0 || v > 14)) return BoxCheck::PhOutOfRange;
    value = v;
    return BoxCheck::Number;
}
inline constexpr const char* kNotANumberMessage = "You must enter a number!";
inline constexpr const char* kPhRangeMessage = "pH must be a positive number up to 14 .";
inline constexpr const char* kBoxMessageTitle = "Invalid input data";

} // namespace velmora
