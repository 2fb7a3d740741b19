#include "options/sweepsettings.h"

#include "numtext/numtext.h"

#include <cmath>
#include <iterator>
#include <string>

namespace velmora {

namespace {

constexpr const char* kNotPositive = "You must enter a positive number!";

double strict(std::string_view text, const char* box) {
    const auto v = fmt::strictNumber(text);
    if (!v)
        throw EngineError(EngineError::Kind::BadConversion, std::string("the ") + box + " \"" +
                                                                std::string(text) +
                                                                "\" is not a number");
    return *v;
}

} // namespace

std::optional<std::string> checkInitialPh(std::string_view text) {
    if (text.empty()) return std::nullopt;
    const auto v = fmt::strictNumber(text);
    if (!v) return std::string(kNotPositive);
    if (*v < 1 || *v > 14) return std::string("initial pH must be between 1 to 14 .");
    return std::nullopt;
}

std::optional<std::string> checkIncrementPh(std::string_view text) {
    if (text.empty() || text == ".") return std::nullopt;
    const auto v = fmt::strictNumber(text);
    if (!v) return std::string(kNotPositive);
    if (*v > 0 && (*v < 0.1 || *v > 2))
        return std::string(" pH increment must be between 0.1  up to 2 .");
    return std::nullopt;
}

std::optional<std::string> checkSteps(std::string_view text) {
    if (text.empty()) return std::nullopt;
    const auto v = fmt::strictNumber(text);
    if (!v) return std::string(kNotPositive);
    if (std::floor(*v) != *v) return std::string("You must enter an integer positive number!");
    if (*v < 1 || *v > 140)
        return std::string("initial pH must be an integer number between 1 to 140 .");
    return std::nullopt;
}

SweepApplyResult applySweep(std::string_view initial, std::string_view increment,
                            std::string_view steps, SweepList& list, double& phstart) {
    SweepApplyResult result;
    if (initial.empty() || increment.empty() || steps.empty()) {
        result.outcome = SweepApplyResult::Outcome::MissingBox;
        result.message = "you should enter initial pH,pH increment and step numbers values";
        return result;
    }

    const double start = strict(initial, "start pH");
    phstart = start;
    list.entry[0] = start;
    const double inc = strict(increment, "pH increment");
    // the number of steps as a whole number, halves to even
    const double stepValue = strict(steps, "number of steps");
    const double whole = stepValue - std::remainder(stepValue, 1.0);
    const long long n = whole > 1e6 ? 1000000 : (whole < -1e6 ? -1000000 : std::llround(whole));

    for (long long i = 1; i <= n; ++i) {
        if (i >= static_cast<long long>(std::size(list.entry)))
            throw EngineError(EngineError::Kind::IndexOutOfRange,
                              "sweep list entry " + std::to_string(i) + " outside 0 to 140");
        list.entry[i] = list.entry[i - 1] + inc;
        if (list.entry[i] > 14) {
            result.outcome = SweepApplyResult::Outcome::PastPh14;
            if (i - 1 == 0) {
                result.message = "pH should not be more than 14";
            } else {
                result.message = "Step numbers must be less than " + std::to_string(n) + " , " +
                                 std::to_string(i - 1) + " is better.";
                result.clearStepBox = true;
            }
            return result;
        }
    }
    return result;
}

} // namespace velmora
