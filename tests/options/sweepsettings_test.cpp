#include "options/sweepsettings.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace velmora;
using Outcome = SweepApplyResult::Outcome;

namespace {

constexpr const char* kPositive = "You must enter a positive number!";
constexpr const char* kStartRange = "initial pH must be between 1 to 14 .";
constexpr const char* kIncrementRange = " pH increment must be between 0.1  up to 2 .";
constexpr const char* kInteger = "You must enter an integer positive number!";
constexpr const char* kStepsRange = "initial pH must be an integer number between 1 to 140 .";

TEST(SweepBoxes, Checks) {
    const auto start = checkInitialPh, increment = checkIncrementPh, steps = checkSteps;
    const struct {
        const char* name;
        std::optional<std::string> (*check)(std::string_view);
        const char* text;
        const char* message; // empty: accepted
    } cases[] = {
        {"start_empty", start, "", ""},
        {"start_below_one", start, "0.5", kStartRange},
        {"start_above_14", start, "14.5", kStartRange},
        {"start_out_of_range", start, "1e400", kPositive},
        {"increment_lone_point_allowed", increment, ".", ""},
        {"increment_negative_raises_nothing", increment, "-0.5", ""},
        {"increment_below_0_1", increment, "0.05", kIncrementRange},
        {"increment_above_2", increment, "2.5", kIncrementRange},
        {"steps_fraction", steps, "2.5", kInteger},
        {"steps_zero", steps, "0", kStepsRange},
        {"steps_past_140", steps, "141", kStepsRange},
        {"steps_letters", steps, "ten", kPositive},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.check(c.text).value_or(""), c.message) << c.name;
}

// What Apply leaves: its outcome, message, whether the steps box is cleared,
// the start pH and the list entries written (those before the first -1).
std::string apply(const char* start, const char* increment, const char* steps) {
    SweepList list;
    for (double& e : list.entry)
        e = -1;
    double phstart = -1;
    std::ostringstream shown;
    try {
        const SweepApplyResult r = applySweep(start, increment, steps, list, phstart);
        const char* outcome[] = {"applied", "missing", "past 14"};
        shown << outcome[static_cast<int>(r.outcome)] << "|" << r.message << "|"
              << (r.clearStepBox ? "clear|" : "|");
    } catch (const EngineError& e) {
        shown << (e.kind() == EngineError::Kind::IndexOutOfRange ? "index error|"
                                                                 : "not a number|");
    }
    shown << phstart << "|";
    for (std::size_t i = 0; i < std::size(list.entry) && list.entry[i] != -1; ++i)
        shown << (i ? " " : "") << list.entry[i];
    return shown.str();
}

TEST(SweepApply, Cases) {
    const std::string missing =
        "missing|you should enter initial pH,pH increment and step numbers values||-1|";
    std::string sevens = "7";
    for (int i = 0; i < 140; ++i)
        sevens += " 7";
    const struct {
        const char *name, *start, *increment, *steps;
        std::string shown;
    } cases[] = {
        {"by_halves", "6.5", "0.5", "5", "applied|||6.5|6.5 7 7.5 8 8.5 9"},
        {"steps_rounded_half_up", "7", "0.5", "3.5", "applied|||7|7 7.5 8 8.5 9"},
        {"past_14_after_140_steps", "1", "2", "140",
         "past 14|Step numbers must be less than 140 , 6 is better.|clear|1|1 3 5 7 9 11 13 15"},
        {"past_14_after_5_steps", "7", "2", "5",
         "past 14|Step numbers must be less than 5 , 3 is better.|clear|7|7 9 11 13 15"},
        {"start_14", "14", "0.5", "3", "past 14|pH should not be more than 14||14|14 14.5"},
        {"start_empty", "", "0.5", "3", missing},
        // the start is stored before the increment is read
        {"increment_lone_point", "7", ".", "5", "not a number|7|7"},
        {"steps_out_of_range", "7", "0.5", "1e400", "not a number|7|7"},
        {"more_than_140_steps", "7", "0", "141", "index error|7|" + sevens},
    };
    for (const auto& c : cases)
        EXPECT_EQ(apply(c.start, c.increment, c.steps), c.shown) << c.name;
}

} // namespace
