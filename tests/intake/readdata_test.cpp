#include "intake/readdata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>

using namespace velmora;
using Outcome = ReadDataResult::Outcome;

namespace {

// The boxes typed in, as "box=text" entries separated by blanks ("box=" for
// an empty box, "_" for a blank in the text).
AnalysisTexts typed(std::string_view entries, AnalysisTexts b = {}) {
    std::istringstream in{std::string(entries)};
    for (std::string e; in >> e;) {
        std::replace(e.begin(), e.end(), '_', ' ');
        const std::size_t eq = e.find('=');
        bool found = false;
        for (const FieldInfo& f : kFields)
            if (e.substr(0, eq) == f.name) b[f.field] = e.substr(eq + 1), found = true;
        EXPECT_TRUE(found) << "no box " << e;
    }
    return b;
}

// The worked sample: 25 degrees, pH 7.5, alkalinity 200, calcium 80, TDS 400.
const char* kWorked = "tds=400 t=25 ph=7.5 alk=200 ca=80 mg=24 cl=50 so4=60";

const EquationFlags kLangelier{.bllang = true}, kRussell{.blrus = true}, kLewis{.bllewis = true};

// The fields of the record that Read Data wrote: every one starts as -99.
struct Record {
    Engine engine;
    Record() {
        for (auto& [name, p] : fields())
            *p = -99;
    }
    std::vector<std::pair<const char*, double*>> fields() {
        AnalysisRecord& r = engine.rec;
        return {{"tds", &r.tds}, {"ec", &r.ec},      {"ec100", &r.ec100},   {"temp", &r.temp},
                {"tk", &r.tk},   {"ca", &r.ca},      {"alkin", &r.alkin},   {"mg", &r.mg},
                {"k", &r.k},     {"na", &r.na},      {"zn", &r.zn},         {"mn", &r.mn},
                {"fe", &r.fe},   {"al", &r.al},      {"hco3in", &r.hco3in}, {"co3in", &r.co3in},
                {"no2", &r.no2}, {"no3", &r.no3},    {"f", &r.f},           {"cl", &r.cl},
                {"so4", &r.so4}, {"ionic", &r.ionic}};
    }
    std::string written() {
        std::ostringstream s;
        for (auto& [name, p] : fields())
            if (*p != -99) s << " " << name << "=" << *p;
        return s.str().substr(s.str().empty() ? 0 : 1);
    }
};

TEST(ReadData, MessagesAndWhatIsStored) {
    const char* tds = "you Should enter TDS,T,pH,Ca and Alk values at least !";
    const char* ec = "you Should enter ec,T,pH,Ca and Alk values at least !";
    const char* lewis = "you Should enter T,pH,Ca and Alk values at least !";
    const char* alk = "Velmora!!: you Should enter TDS,T,pH,Ca and Alk values at least ! !";
    const std::string basic = "tds=400 temp=25 tk=298.15 ca=80 alkin=200";
    const struct {
        const char* name;
        EquationFlags flags;
        const char* change;  // to the worked sample
        std::string message; // title: text, or empty when accepted
        std::string written;
        bool bllr = false;
    } cases[] = {
        {"langelier", kLangelier, "", "", basic + " ionic=0.01"},
        {"langelier_t", kLangelier, "t=", tds, ""},
        {"langelier_ph", kLangelier, "ph=", tds, ""},
        {"langelier_ca", kLangelier, "ca=", tds, ""},
        {"langelier_alk", kLangelier, "alk=", tds, ""},
        {"larson_skold_reads_cl_and_so4", kLangelier, "cl=", "", basic + " cl=0 so4=60 ionic=0.01",
         true},
        {"blank_reads_zero", kLangelier, "t=_", "",
         "tds=400 temp=0 tk=273.15 ca=80 alkin=200 ionic=0.01"},
        {"leading_numbers", kLangelier, "ca=80mg alk=2e2 tds=abc", "",
         "tds=0" + basic.substr(7) + " ionic=0"},
        {"russell_ec", kRussell, "", ec, ""},
        {"russell_t", kRussell, "ec=85 t=", tds, "ec=85 ec100=8500"},
        {"russell_ca", kRussell, "ec=85 ca=", tds, "ec=85 ec100=8500 temp=25 tk=298.15"},
        {"russell_alk", kRussell, "ec=85 alk=", alk, "ec=85 ec100=8500 temp=25 tk=298.15 ca=80"},
        {"russell_does_not_check_ph", kRussell, "ec=6 ph=", "",
         "ec=6 ec100=600 temp=25 tk=298.15 ca=80 alkin=200 ionic=0.0096"},
        {"lewis_t", kLewis, "t=", lewis, ""},
        {"no_equation_t", EquationFlags{}, "t=", tds, ""},
        {"no_equation_ca", EquationFlags{}, "ca=", tds, "temp=25 tk=298.15"},
        {"calcium_beyond_a_double", kLangelier, "ca=1e400", "overflow in calcium (txtca)",
         "tds=400 temp=25 tk=298.15"},
        {"conductivity_times_100", kRussell, "ec=1e307", "overflow in conductivity x 100", ""},
        {"temperature_beyond_a_double", kLangelier, "t=-1e999", "overflow in temperature (txtt)",
         "tds=400"},
        {"lewis_strict_ph_with_carbonate_empty", kLewis, "ph=7.5x hco3=244",
         "the pH text \"7.5x\" is not a number",
         "tds=458 temp=25 tk=298.15 ca=80 alkin=200 mg=24 k=0 na=0 zn=0 mn=0 fe=0 al=0 hco3in=244 "
         "co3in=0 no2=0 no3=0 f=0 cl=50 so4=60 ionic=0.00894618"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Record rec;
        EquationFlags flags = c.flags;
        std::string message;
        try {
            const ReadDataResult r =
                readAnalysis(rec.engine, typed(c.change, typed(kWorked)), flags, c.bllr);
            EXPECT_EQ(r.outcome, r.messageText.empty() ? Outcome::Accepted : Outcome::Message);
            const std::string title = r.messageTitle == "Velmora" ? "" : r.messageTitle + ": ";
            if (!r.messageText.empty()) message = title + r.messageText;
        } catch (const EngineError& e) {
            message = e.what();
        }
        EXPECT_EQ(message, c.message);
        EXPECT_EQ(rec.written(), c.written);
        EXPECT_TRUE(flags.bldebye || !message.empty() || !c.flags.bllang); // the default recorded
    }
}

TEST(ReadData, LewisIonBalance) {
    Record rec;
    EquationFlags flags = kLewis;
    const ReadDataResult r = readAnalysis(
        rec.engine,
        typed("t=25 ph=7.5 alk=200 ca=80 mg=24 k=3.9 na=46 hco3=244 co3=0 cl=50 so4=60"), flags,
        true);
    EXPECT_TRUE(r.outcome == Outcome::Rejected && r.messageText.empty());
    const AnalysisRecord& a = rec.engine.rec;
    EXPECT_DOUBLE_EQ(a.tds, 507.9); // the ion sum
    EXPECT_DOUBLE_EQ(a.mca, 80.0 / 40080);
    EXPECT_NEAR(a.sumca, 8.05603, 1e-5);
    EXPECT_NEAR(a.suman, 6.65952, 1e-5);
    EXPECT_NEAR(a.diff, 9.48998, 1e-5); // above the 2 % the anion sum allows
    EXPECT_FALSE(a.accuracyok);
}

TEST(BoxCheck, NumbersAndPhRange) {
    const char *number = kNotANumberMessage, *ph = kPhRangeMessage;
    const struct {
        const char* text;
        bool isPh;
        const char* message; // empty: accepted
    } cases[] = {
        {"", false, ""},      {"", true, ""},       {"80", false, ""},     {"-5", false, ""},
        {"14", true, ""},     {"0.5", true, ""},    {" 7.5 ", true, ""},   {"abc", false, number},
        {"-", false, number}, {".", false, number}, {"1e", false, number}, {"1e400", false, number},
        {"x", true, number},  {"14.01", true, ph},  {"0", true, ph},       {"-1", true, ph},
    };
    for (const auto& c : cases)
        EXPECT_EQ(checkBoxText(c.text, c.isPh).value_or(""), c.message) << c.text << c.isPh;
}

} // namespace
