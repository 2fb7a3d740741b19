#include "intake/readdata.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace velmora;
using Outcome = ReadDataResult::Outcome;

namespace {

constexpr const char* kTdsMessage = "you Should enter TDS,T,pH,Ca and Alk values at least !";
constexpr const char* kEcMessage = "you Should enter ec,T,pH,Ca and Alk values at least !";
constexpr const char* kLewisMessage = "you Should enter T,pH,Ca and Alk values at least !";
constexpr const char* kAlkMessage = "you Should enter TDS,T,pH,Ca and Alk values at least ! !";

using Box = Field;

// The boxes by their names without "txt".
Box boxNamed(std::string_view name) {
    for (const FieldInfo& fi : kFields)
        if (name == fi.name) return fi.field;
    ADD_FAILURE() << "no box " << name;
    return Field::tds;
}

// The boxes typed in, as "box=text" entries; the others are left empty.
AnalysisTexts typed(std::initializer_list<std::string_view> entries) {
    AnalysisTexts b;
    for (std::string_view e : entries) {
        const std::size_t eq = e.find('=');
        b[boxNamed(e.substr(0, eq))] = e.substr(eq + 1);
    }
    return b;
}

// The worked sample: 25 degrees, pH 7.5, alkalinity 200, calcium 80, TDS 400
// (magnesium, chloride and sulphate typed too).
AnalysisTexts workedSample() {
    return typed({"tds=400", "t=25", "ph=7.5", "alk=200", "ca=80", "mg=24", "cl=50", "so4=60"});
}

// The ion-balance example (Lewis and Randall): carbonate typed as 0.
AnalysisTexts ionBalanceSample() {
    return typed({"t=25", "ph=7.5", "alk=200", "ca=80", "mg=24", "k=3.9", "na=46", "hco3=244",
                  "co3=0", "cl=50", "so4=60"});
}

EquationFlags langelier() {
    EquationFlags f;
    f.bllang = true;
    return f;
}
EquationFlags russell() {
    EquationFlags f;
    f.blrus = true;
    return f;
}
EquationFlags lewis() {
    EquationFlags f;
    f.bllewis = true;
    return f;
}

// Marks every entered field so that a test can tell what Read Data wrote.
void poison(AnalysisRecord& r) {
    for (double* p : {&r.tds,    &r.ec,    &r.ec100, &r.temp, &r.tk, &r.alkin, &r.ca,
                      &r.mg,     &r.k,     &r.na,    &r.zn,   &r.mn, &r.fe,    &r.al,
                      &r.hco3in, &r.co3in, &r.no2,   &r.no3,  &r.f,  &r.cl,    &r.so4})
        *p = -99;
}

class ReadData : public ::testing::Test {
protected:
    Engine engine;
    void SetUp() override { poison(engine.rec); }
};

struct MessageCase {
    const char* name;
    EquationFlags flags;
    Box emptyBox; // the box of the worked sample left empty
    const char* text;
    const char* title;
};

AnalysisTexts withEmpty(AnalysisTexts b, Box box) {
    b[box].clear();
    return b;
}

TEST_F(ReadData, MissingValueMessages) {
    // the worked sample with a conductivity, so that the Russell branch gets past its own check
    AnalysisTexts full = workedSample();
    full[Field::ec] = "85";
    const std::vector<MessageCase> cases = {
        {"langelier_t", langelier(), Field::t, kTdsMessage, "Velmora"},
        {"langelier_ph", langelier(), Field::ph, kTdsMessage, "Velmora"},
        {"langelier_ca", langelier(), Field::ca, kTdsMessage, "Velmora"},
        // the Langelier branch checks alkalinity first, with its own message
        {"langelier_alk", langelier(), Field::alk, kTdsMessage, "Velmora"},
        {"russell_ec", russell(), Field::ec, kEcMessage, "Velmora"},
        {"russell_t", russell(), Field::t, kTdsMessage, "Velmora"},
        {"russell_ca", russell(), Field::ca, kTdsMessage, "Velmora"},
        // only the Russell branch reaches the alkalinity step's message
        {"russell_alk", russell(), Field::alk, kAlkMessage, "Velmora!!"},
        {"lewis_t", lewis(), Field::t, kLewisMessage, "Velmora"},
        {"lewis_ph", lewis(), Field::ph, kLewisMessage, "Velmora"},
        {"lewis_alk", lewis(), Field::alk, kLewisMessage, "Velmora"},
        {"no_equation_t", EquationFlags{}, Field::t, kTdsMessage, "Velmora"},
        {"no_equation_ca", EquationFlags{}, Field::ca, kTdsMessage, "Velmora"},
        {"no_equation_alk", EquationFlags{}, Field::alk, kAlkMessage, "Velmora!!"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Engine e;
        EquationFlags flags = c.flags;
        const ReadDataResult r = readAnalysis(e, withEmpty(full, c.emptyBox), flags, false);
        EXPECT_EQ(r.outcome, Outcome::Message);
        EXPECT_EQ(r.messageText, c.text);
        EXPECT_EQ(r.messageTitle, c.title);
    }
}

TEST_F(ReadData, LangelierWithEmptyTdsReadsZero) {
    AnalysisTexts b = withEmpty(workedSample(), Field::tds);
    EquationFlags flags = langelier();
    const ReadDataResult r = readAnalysis(engine, b, flags, false);
    EXPECT_EQ(r.outcome, Outcome::Accepted);
    EXPECT_EQ(engine.rec.tds, 0);
    EXPECT_EQ(engine.rec.ionic, 0);
    EXPECT_EQ(engine.rec.lanm, 1);
}

TEST_F(ReadData, RussellWithoutConductivityStoresNothing) {
    AnalysisTexts b = workedSample();
    EquationFlags flags = russell();
    const ReadDataResult r = readAnalysis(engine, b, flags, false);
    EXPECT_EQ(r.messageText, kEcMessage);
    for (double v : {engine.rec.ec, engine.rec.ec100, engine.rec.temp, engine.rec.tk, engine.rec.ca,
                     engine.rec.alkin, engine.rec.tds})
        EXPECT_EQ(v, -99);
}

TEST_F(ReadData, RussellStoresConductivityBeforeTheTemperatureMessage) {
    AnalysisTexts b = withEmpty(workedSample(), Field::t);
    b[Field::ec] = "85";
    EquationFlags flags = russell();
    const ReadDataResult r = readAnalysis(engine, b, flags, false);
    EXPECT_EQ(r.messageText, kTdsMessage);
    EXPECT_EQ(r.messageTitle, "Velmora");
    EXPECT_EQ(engine.rec.ec, 85);
    EXPECT_EQ(engine.rec.ec100, 8500);
    EXPECT_EQ(engine.rec.temp, -99);
    EXPECT_EQ(engine.rec.tds, -99); // the TDS box is not read with Russell
}

TEST_F(ReadData, RussellDoesNotCheckThePh) {
    AnalysisTexts b = withEmpty(workedSample(), Field::ph);
    b[Field::ec] = "6";
    EquationFlags flags = russell();
    const ReadDataResult r = readAnalysis(engine, b, flags, false);
    EXPECT_EQ(r.outcome, Outcome::Accepted);
    EXPECT_DOUBLE_EQ(engine.rec.ionic, 0.0096); // 1.6e-5 x 600
}

TEST_F(ReadData, MessagesKeepEarlierStepsStored) {
    // calcium empty: temperature is already stored, alkalinity is not
    AnalysisTexts b = withEmpty(workedSample(), Field::ca);
    EquationFlags flags = russell();
    b[Field::ec] = "85";
    readAnalysis(engine, b, flags, false);
    EXPECT_EQ(engine.rec.temp, 25);
    EXPECT_EQ(engine.rec.tk, 298.15);
    EXPECT_EQ(engine.rec.ca, -99);
    EXPECT_EQ(engine.rec.alkin, -99);
}

TEST_F(ReadData, LangelierStoresOnlyItsFields) {
    EquationFlags flags = langelier();
    const ReadDataResult r = readAnalysis(engine, workedSample(), flags, false);
    EXPECT_EQ(r.outcome, Outcome::Accepted);
    EXPECT_EQ(engine.rec.tds, 400);
    EXPECT_EQ(engine.rec.temp, 25);
    EXPECT_EQ(engine.rec.tk, 298.15);
    EXPECT_EQ(engine.rec.ca, 80);
    EXPECT_EQ(engine.rec.alkin, 200);
    // not named for these options: left as they were
    for (double v : {engine.rec.mg, engine.rec.cl, engine.rec.so4, engine.rec.ec, engine.rec.na,
                     engine.rec.hco3in, engine.rec.co3in})
        EXPECT_EQ(v, -99);
    // activity by the default limiting law at I = 0.01, which the default flag now records
    EXPECT_DOUBLE_EQ(engine.rec.ionic, 0.01);
    EXPECT_NEAR(engine.rec.lanm, 0.891251, 1e-6);
    EXPECT_NEAR(engine.rec.land, 0.630957, 1e-6);
    EXPECT_TRUE(flags.bldebye);
    EXPECT_TRUE(engine.rec.accuracyok);
}

TEST_F(ReadData, LarsonSkoldStoresChlorideAndSulphate) {
    EquationFlags flags = langelier();
    AnalysisTexts b = workedSample();
    b[Field::cl] = "";
    readAnalysis(engine, b, flags, true);
    EXPECT_EQ(engine.rec.so4, 60);
    EXPECT_EQ(engine.rec.cl, 0); // an empty optional box stores 0
    EXPECT_EQ(engine.rec.mg, -99);
}

TEST_F(ReadData, LewisIonBalanceExampleIsUnacceptable) {
    EquationFlags flags = lewis();
    const ReadDataResult r = readAnalysis(engine, ionBalanceSample(), flags, true);
    EXPECT_EQ(r.outcome, Outcome::Rejected);
    EXPECT_TRUE(r.messageText.empty());
    const AnalysisRecord& rec = engine.rec;
    // every ion stored, empty boxes as 0; chloride and sulphate (twice) the same
    EXPECT_EQ(rec.mg, 24);
    EXPECT_EQ(rec.na, 46);
    EXPECT_EQ(rec.k, 3.9);
    EXPECT_EQ(rec.cl, 50);
    EXPECT_EQ(rec.so4, 60);
    EXPECT_EQ(rec.hco3in, 244);
    EXPECT_EQ(rec.co3in, 0);
    for (double v : {rec.al, rec.fe, rec.mn, rec.zn, rec.f, rec.no3, rec.no2})
        EXPECT_EQ(v, 0);
    // the conversion ran, the TDS became the ion sum
    EXPECT_DOUBLE_EQ(rec.mca, 80.0 / 40080);
    EXPECT_DOUBLE_EQ(rec.tds, 80 + 50 + 24 + 3.9 + 46 + 60 + 244);
    EXPECT_NEAR(rec.sumca, 8.05603, 1e-5);
    EXPECT_NEAR(rec.suman, 6.65952, 1e-5);
    EXPECT_NEAR(rec.diff, 9.48998, 1e-5);
    EXPECT_FALSE(rec.accuracyok);
}

TEST_F(ReadData, LewisBalancedAnalysisIsAccepted) {
    // calcium 1 meq/L and sodium 1 meq/L against chloride 2 meq/L
    const AnalysisTexts b =
        typed({"t=25", "ph=7", "alk=50", "ca=20.1", "na=22.99", "hco3=0", "co3=0", "cl=70.906"});
    EquationFlags flags = lewis();
    const ReadDataResult r = readAnalysis(engine, b, flags, false);
    EXPECT_EQ(r.outcome, Outcome::Accepted);
    EXPECT_NEAR(engine.rec.diff, 0, 1e-9);
}

TEST_F(ReadData, LewisWithCarbonateEmptyReadsThePhStrictly) {
    AnalysisTexts b = ionBalanceSample();
    b[Field::co3] = "";
    b[Field::ph] = "7.5x"; // cannot come from a box, but Read Data itself does not guard it
    EquationFlags flags = lewis();
    try {
        readAnalysis(engine, b, flags, false);
        FAIL() << "expected a conversion error";
    } catch (const EngineError& e) {
        EXPECT_EQ(e.kind(), EngineError::Kind::BadConversion);
    }
}

TEST_F(ReadData, BlanksAreNotEmptyAndReadAsZero) {
    AnalysisTexts b = workedSample();
    b[Field::t] = " ";
    EquationFlags flags = langelier();
    const ReadDataResult r = readAnalysis(engine, b, flags, false);
    EXPECT_EQ(r.outcome, Outcome::Accepted);
    EXPECT_EQ(engine.rec.temp, 0);
    EXPECT_EQ(engine.rec.tk, 273.15);
}

TEST_F(ReadData, LeadingNumberReading) {
    AnalysisTexts b = workedSample();
    b[Field::ca] = " 80 mg";
    b[Field::alk] = "2e2";
    b[Field::tds] = "abc";
    EquationFlags flags = langelier();
    readAnalysis(engine, b, flags, false);
    EXPECT_EQ(engine.rec.ca, 80);
    EXPECT_EQ(engine.rec.alkin, 200);
    EXPECT_EQ(engine.rec.tds, 0);
}

TEST_F(ReadData, AllBranchesRunWhenSeveralFlagsAreSet) {
    AnalysisTexts b = workedSample();
    EquationFlags flags;
    flags.bllang = true;
    flags.blrus = true;
    const ReadDataResult r = readAnalysis(engine, b, flags, false);
    EXPECT_EQ(r.messageText, kEcMessage); // after the Langelier branch stored the TDS
    EXPECT_EQ(engine.rec.tds, 400);
}

TEST_F(ReadData, OutOfRangeValuesAreOverflowErrors) {
    struct Case {
        const char* name;
        EquationFlags flags;
        Box box;
        const char* text;
    };
    const std::vector<Case> cases = {
        {"calcium_beyond_double", langelier(), Field::ca, "1e400"},
        {"conductivity_times_100", russell(), Field::ec, "1e307"},
        {"temperature_beyond_double", langelier(), Field::t, "-1e999"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Engine e;
        poison(e.rec);
        AnalysisTexts b = workedSample();
        b[Field::ec] = "85";
        b[c.box] = c.text;
        EquationFlags flags = c.flags;
        try {
            readAnalysis(e, b, flags, false);
            ADD_FAILURE() << "expected an overflow";
        } catch (const EngineError& err) {
            EXPECT_EQ(err.kind(), EngineError::Kind::Overflow);
        }
        EXPECT_NE(e.rec.ec100, HUGE_VAL);
        EXPECT_NE(e.rec.ca, HUGE_VAL);
    }
}

// The number an entry gives the engine, or the message of its error.
std::string entry(const EntryNumber& n) {
    try {
        return std::to_string(n.read());
    } catch (const EngineError& e) {
        EXPECT_EQ(e.kind(), EngineError::Kind::BadConversion);
        return e.what();
    }
}

TEST(CalcInputsFromBoxes, ThePhBothWaysAndTheCarbonatePair) {
    struct Case {
        const char* name;
        const char* ph;
        bool empty;
        double leading;
        const char* strict;
    };
    const Case cases[] = {
        {"number", " 7.5", false, 7.5, "7.500000"},
        {"trailing_text", "7.5x", false, 7.5, "the pH text \"7.5x\" is not a number"},
        {"beyond_a_double", "1e400", false, HUGE_VAL, "the pH text \"1e400\" is not a number"},
        {"empty", "", true, 0, "the pH text \"\" is not a number"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AnalysisTexts b;
        b[Field::ph] = c.ph;
        b[Field::co3] = "0";
        const CalcInputs in = calcInputs(b);
        EXPECT_EQ(in.phEmpty, c.empty);
        EXPECT_EQ(in.ph, c.leading);
        EXPECT_EQ(entry(in.phStrict), c.strict);
        EXPECT_TRUE(in.hco3Empty);
        EXPECT_FALSE(in.co3Empty);
        EXPECT_FALSE(in.sweep);
    }
    AnalysisTexts b;
    b[Field::hco3] = " ";
    EXPECT_FALSE(calcInputs(b).hco3Empty);
}

TEST(CalcInputsFromBoxes, SweepNumbersCarryTheirOwnMessages) {
    const CalcInputs in = calcInputs(AnalysisTexts{}, " 6.5 ", "x", "");
    EXPECT_TRUE(in.sweep);
    EXPECT_EQ(entry(in.sweepStart), "6.500000");
    EXPECT_EQ(entry(in.sweepIncrement), "the pH increment \"x\" is not a number");
    EXPECT_EQ(entry(in.sweepSteps), "the number of steps \"\" is not a number");
    EXPECT_EQ(entry(calcInputs(AnalysisTexts{}, "1e400", "0", "3").sweepStart),
              "the start pH \"1e400\" is not a number");
}

TEST(BoxCheck, NumbersAndPhRange) {
    struct Case {
        const char* name;
        const char* text;
        bool isPh;
        const char* message; // nullptr: accepted
    };
    const char* number = "You must enter a number!";
    const char* ph = "pH must be a positive number up to 14 .";
    const std::vector<Case> cases = {
        {"empty_is_valid", "", false, nullptr},
        {"empty_ph_is_valid", "", true, nullptr},
        {"number", "80", false, nullptr},
        {"letters", "abc", false, number},
        {"lone_minus", "-", false, number},
        {"lone_point", ".", false, number},
        {"bare_exponent", "1e", false, number},
        {"out_of_range", "1e400", false, number},
        {"negative_is_a_number", "-5", false, nullptr},
        {"ph_14_accepted", "14", true, nullptr},
        {"ph_above_14", "14.01", true, ph},
        {"ph_zero", "0", true, ph},
        {"ph_negative", "-1", true, ph},
        {"ph_letters", "x", true, number},
        {"ph_small_positive", "0.5", true, nullptr},
        {"ph_with_blanks", " 7.5 ", true, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto m = checkBoxText(c.text, c.isPh);
        if (c.message) {
            ASSERT_TRUE(m.has_value());
            EXPECT_EQ(*m, c.message);
        } else {
            EXPECT_FALSE(m.has_value());
        }
    }
}

} // namespace
