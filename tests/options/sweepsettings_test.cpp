#include "options/sweepsettings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace velmora;
using Outcome = SweepApplyResult::Outcome;

namespace {

struct BoxCase {
    const char* name;
    const char* text;
    const char* message; // nullptr: accepted
};

void expectBox(std::optional<std::string> (*check)(std::string_view),
               const std::vector<BoxCase>& cases) {
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto m = check(c.text);
        if (c.message) {
            ASSERT_TRUE(m.has_value());
            EXPECT_EQ(*m, c.message);
        } else {
            EXPECT_FALSE(m.has_value()) << *m;
        }
    }
}

constexpr const char* kPositive = "You must enter a positive number!";

TEST(SweepBoxes, InitialPh) {
    const char* range = "initial pH must be between 1 to 14 .";
    expectBox(checkInitialPh, {
                                  {"empty", "", nullptr},
                                  {"lowest", "1", nullptr},
                                  {"highest", "14", nullptr},
                                  {"inside", "6.5", nullptr},
                                  {"below_one", "0.5", range},
                                  {"above_14", "14.5", range},
                                  {"negative", "-3", range},
                                  {"lone_point", ".", kPositive},
                                  {"lone_minus", "-", kPositive},
                                  {"letters", "seven", kPositive},
                                  {"out_of_range", "1e400", kPositive},
                              });
}

TEST(SweepBoxes, IncrementPh) {
    // the doubled blank and the leading blank are part of the message
    const char* range = " pH increment must be between 0.1  up to 2 .";
    expectBox(checkIncrementPh, {
                                    {"empty", "", nullptr},
                                    {"lone_point_allowed", ".", nullptr},
                                    {"lowest", "0.1", nullptr},
                                    {"highest", "2", nullptr},
                                    {"zero_raises_nothing", "0", nullptr},
                                    {"negative_raises_nothing", "-0.5", nullptr},
                                    {"below_0_1", "0.05", range},
                                    {"above_2", "2.5", range},
                                    {"letters", "x", kPositive},
                                    {"lone_minus", "-", kPositive},
                                    {"point_with_blank", ". ", kPositive},
                                });
}

TEST(SweepBoxes, Steps) {
    const char* integer = "You must enter an integer positive number!";
    const char* range = "initial pH must be an integer number between 1 to 140 .";
    expectBox(checkSteps, {
                              {"empty", "", nullptr},
                              {"one", "1", nullptr},
                              {"most", "140", nullptr},
                              {"whole_with_point", "5.0", nullptr},
                              {"whole_in_exponent_form", "1e2", nullptr},
                              {"fraction", "2.5", integer},
                              {"negative_fraction", "-2.5", integer},
                              {"zero", "0", range},
                              {"past_140", "141", range},
                              {"negative_whole", "-3", range},
                              {"letters", "ten", kPositive},
                              {"lone_point", ".", kPositive},
                          });
}

struct ApplyCase {
    const char* name;
    const char* start;
    const char* increment;
    const char* steps;
    Outcome outcome;
    const char* message;
    bool clearStepBox;
    std::vector<double> entries; // entries 0.. that the list must hold
};

TEST(SweepApply, Cases) {
    const std::vector<ApplyCase> cases = {
        {"six_and_a_half_by_half",
         "6.5",
         "0.5",
         "5",
         Outcome::Applied,
         "",
         false,
         {6.5, 7.0, 7.5, 8.0, 8.5, 9.0}},
        {"entry_of_exactly_14_is_kept", "10", "2", "2", Outcome::Applied, "", false, {10, 12, 14}},
        {"increment_zero_gives_equal_entries",
         "7",
         "0",
         "4",
         Outcome::Applied,
         "",
         false,
         {7, 7, 7, 7, 7}},
        {"negative_increment", "8", "-0.5", "3", Outcome::Applied, "", false, {8, 7.5, 7, 6.5}},
        {"start_1_by_2_for_140_steps",
         "1",
         "2",
         "140",
         Outcome::PastPh14,
         "Step numbers must be less than 140 , 6 is better.",
         true,
         {1, 3, 5, 7, 9, 11, 13, 15}},
        {"start_7_by_2_for_5_steps",
         "7",
         "2",
         "5",
         Outcome::PastPh14,
         "Step numbers must be less than 5 , 3 is better.",
         true,
         {7, 9, 11, 13, 15}},
        {"start_14",
         "14",
         "0.5",
         "3",
         Outcome::PastPh14,
         "pH should not be more than 14",
         false,
         {14, 14.5}},
        {"start_empty",
         "",
         "0.5",
         "3",
         Outcome::MissingBox,
         "you should enter initial pH,pH increment and step numbers values",
         false,
         {}},
        {"increment_empty",
         "7",
         "",
         "3",
         Outcome::MissingBox,
         "you should enter initial pH,pH increment and step numbers values",
         false,
         {}},
        {"steps_empty",
         "7",
         "0.5",
         "",
         Outcome::MissingBox,
         "you should enter initial pH,pH increment and step numbers values",
         false,
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SweepList list;
        for (double& e : list.entry)
            e = -1;
        double phstart = -1;
        const SweepApplyResult r = applySweep(c.start, c.increment, c.steps, list, phstart);
        EXPECT_EQ(r.outcome, c.outcome);
        EXPECT_EQ(r.message, c.message);
        EXPECT_EQ(r.clearStepBox, c.clearStepBox);
        for (std::size_t i = 0; i < c.entries.size(); ++i)
            EXPECT_DOUBLE_EQ(list.entry[i], c.entries[i]) << "entry " << i;
        // nothing written past the entry that stopped the list
        EXPECT_EQ(list.entry[c.entries.size()], -1);
        if (c.outcome == Outcome::MissingBox) {
            EXPECT_EQ(phstart, -1);
        } else {
            EXPECT_EQ(phstart, c.entries[0]);
        }
    }
}

TEST(SweepApply, TextsThatAreNotNumbersThrow) {
    struct Case {
        const char* name;
        const char* start;
        const char* increment;
        const char* steps;
        double phstartAfter; // the start is stored before the increment is read
    };
    const std::vector<Case> cases = {
        {"lone_point_increment", "7", ".", "5", 7},
        {"start_letters", "x", "0.5", "5", -1},
        {"steps_out_of_range", "7", "0.5", "1e400", 7},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SweepList list;
        double phstart = -1;
        try {
            applySweep(c.start, c.increment, c.steps, list, phstart);
            ADD_FAILURE() << "expected a conversion error";
        } catch (const EngineError& e) {
            EXPECT_EQ(e.kind(), EngineError::Kind::BadConversion);
        }
        EXPECT_EQ(phstart, c.phstartAfter);
    }
}

TEST(SweepApply, StepsAreRoundedHalvesToEven) {
    SweepList list;
    double phstart = 0;
    // 2.5 steps -> 2, 3.5 steps -> 4 (the box refuses both; Apply rounds what it gets)
    for (double& e : list.entry)
        e = -1;
    applySweep("7", "0.5", "2.5", list, phstart);
    EXPECT_EQ(list.entry[2], 8);
    EXPECT_EQ(list.entry[3], -1);
    applySweep("7", "0.5", "3.5", list, phstart);
    EXPECT_EQ(list.entry[4], 9);
    EXPECT_EQ(list.entry[5], -1);
}

TEST(SweepApply, MoreThan140StepsRunPastTheList) {
    SweepList list;
    double phstart = 0;
    try {
        applySweep("7", "0", "141", list, phstart);
        FAIL() << "expected an index error";
    } catch (const EngineError& e) {
        EXPECT_EQ(e.kind(), EngineError::Kind::IndexOutOfRange);
    }
    EXPECT_EQ(list.entry[140], 7);
}

} // namespace
