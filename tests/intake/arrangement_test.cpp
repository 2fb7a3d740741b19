#include "intake/arrangement.h"
#include "intake/readdata.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora {
namespace {

// Roles and the required set written as one letter a field, in the order of
// Field: tds ec t ph alk ca mg k na zn mn fe al hco3 co3 no2 no3 f cl so4.
// R required, O optional, C carbonate pair, U unused; capitals mark the
// fields of Read Data's required set.
std::string written(const Arrangement& a) {
    std::string s;
    for (const FieldInfo& fi : kFields) {
        const char c = "rocu"[static_cast<int>(a.role[fi.field])];
        s += a.needed[fi.field] ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return s;
}

TEST(Arrangement, RolesAndRequiredSetByEquationAndIndex) {
    struct Row {
        const char* name;
        Equation equation;
        bool larsonSkold;
        const char* expected;
    };
    const Row rows[] = {
        //                                     tds ec t ph alk ca mg..al hco3 co3 no2..f cl so4
        {"langelier", Equation::Langelier, false, "RuRRRRuuuuuuuuuuuuuu"},
        {"langelier_ls", Equation::Langelier, true, "RuRRRRuuuuuuuuuuuuOO"},
        {"russell", Equation::Russell, false, "uRRRRRuuuuuuuuuuuuuu"},
        {"russell_ls", Equation::Russell, true, "uRRRRRuuuuuuuuuuuuOO"},
        // Lewis and Randall offers every ion and never asks for them
        {"lewis", Equation::Lewis, false, "uuRRRRoooooooccooooo"},
        {"lewis_ls", Equation::Lewis, true, "uuRRRRoooooooccooooo"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(written(arrangement(r.equation, r.larsonSkold)), r.expected) << r.name;
}

TEST(Arrangement, EquationOfTheFlags) {
    EquationFlags none, lewis, russell, both;
    lewis.bllewis = russell.blrus = true;
    both.bllewis = both.blrus = true;
    EXPECT_EQ(equationOf(none), Equation::Langelier);
    EXPECT_EQ(equationOf(russell), Equation::Russell);
    EXPECT_EQ(equationOf(lewis), Equation::Lewis);
    EXPECT_EQ(equationOf(both), Equation::Lewis);
}

// The entries Calculate reads: a text that is no number fails when it is read,
// naming the text.
TEST(CalcInputs, EntriesThatAreNoNumberFailWhenRead) {
    AnalysisTexts boxes;
    boxes[Field::ph] = "7.5x";
    const CalcInputs in = calcInputs(boxes, "6", "0,5", "");
    EXPECT_EQ(in.ph, 7.5);
    EXPECT_EQ(in.sweepStart.read(), 6);
    const std::pair<const EntryNumber*, const char*> failing[] = {
        {&in.phStrict, "the pH text \"7.5x\" is not a number"},
        {&in.sweepIncrement, "the pH increment \"0,5\" is not a number"},
        {&in.sweepSteps, "the number of steps \"\" is not a number"}};
    for (const auto& [entry, message] : failing) {
        try {
            entry->read();
            ADD_FAILURE() << message;
        } catch (const EngineError& e) {
            EXPECT_EQ(e.kind(), EngineError::Kind::BadConversion);
            EXPECT_NE(std::string(e.what()).find(message), std::string::npos) << e.what();
        }
    }
}

} // namespace
} // namespace velmora
