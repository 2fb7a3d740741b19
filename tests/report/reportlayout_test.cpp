// The report's text, composed without any window: the worked examples and
// the edge cases of the layout, in each of its four renderings.
#include "report/reportlayout.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::report {
namespace {

std::string blanks(int n) {
    return std::string(static_cast<std::size_t>(n), ' ');
}
std::string hyphens(int n) {
    return std::string(static_cast<std::size_t>(n), '-');
}

ReportInputs langelierSample() {
    ReportInputs in;
    in.time = "10:30:00";
    in.date = "17/05/2024";
    in.analysis[Field::tds] = "400";
    in.analysis[Field::alk] = "200";
    in.analysis[Field::t] = "25";
    in.analysis[Field::ph] = "7.5";
    in.analysis[Field::ca] = "80";
    in.bllang = true;
    return in;
}

ReportInputs withOnly(ReportIndex index, double value) {
    ReportInputs in = langelierSample();
    in.chosen[index] = true;
    in.value[index] = value;
    return in;
}

bool endsWith(const std::string& text, const std::string& part) {
    return text.size() >= part.size() &&
           text.compare(text.size() - part.size(), part.size(), part) == 0;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

TEST(ReportLayout, RyznarOnlyExample) {
    const std::string text = compose(withOnly(RI, 7.12345678), savedStyle());
    EXPECT_TRUE(contains(text, "\n" + blanks(14) + " RI" + blanks(15) + "-" + blanks(11) +
                                   " 7.123457 \r\n"));
    EXPECT_TRUE(contains(text, "\n" + blanks(5) + " Stability index(Ryznar index):\r\n\n" +
                                   blanks(9) + "Description :   Water is aggressive\r\n" +
                                   blanks(9) +
                                   "General recomendation :  Treatment recommended\r\n"));
    EXPECT_FALSE(contains(text, " LI"));
    EXPECT_FALSE(contains(text, "No indices"));
    // the report ends with the last block's statement
    EXPECT_TRUE(endsWith(text, "Treatment recommended\r\n"));
}

struct ValueRow {
    const char* name;
    ReportIndex index;
    double value;
    const char* written; // num() of the value rounded to 6 decimals
    const char* block;   // the explanation's first line, or "" for no block
};

class ReportValues : public testing::TestWithParam<ValueRow> {};

TEST_P(ReportValues, RowAndInterpretation) {
    const ValueRow& row = GetParam();
    const std::string text = compose(withOnly(row.index, row.value), savedStyle());
    EXPECT_TRUE(contains(text, "-" + blanks(11) + row.written + "\r\n")) << text;
    const std::string heading = " Corrosion indices interpertation:\r\n\n" + blanks(5);
    const std::string section = text.substr(text.find(heading) + heading.size());
    const std::string afterHeader = section.substr(section.find("\r\n") + 2);
    if (*row.block) {
        EXPECT_EQ(afterHeader.rfind("\n" + blanks(9) + row.block + "\r\n", 0), 0u) << afterHeader;
        EXPECT_EQ(count(text, "Description :"), 1u);
    } else {
        EXPECT_EQ(afterHeader, "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Edges, ReportValues,
    testing::Values(
        ValueRow{"LangelierZero", LI, 0, " 0 ", "Description :   Near Balanced"},
        ValueRow{"LangelierMinusHalf", LI, -0.5, "-.5 ", "Description :   None- Mild Corrosion"},
        ValueRow{"LangelierMinusFive", LI, -5, "-5 ", "Description :   Severe Corrosion"},
        ValueRow{"LangelierBelowRounding", LI, 0.0000004, " 0 ", "Description :   Near Balanced"},
        ValueRow{"LangelierHalfToEven", LI, 1.0000005, " 1 ",
                 "Description :    Mild Scale Coating"},
        ValueRow{"LarsonSkoldExactly1_2", LR, 1.2, " 1.2 ", ""},
        ValueRow{"LarsonSkoldJustAbove", LR, 1.2000001, " 1.2 ",
                 "Description :   As the value of the index grows ,an increasingly "},
        ValueRow{"LarsonSkoldHinder", LR, 1, " 1 ",
                 "Description :   Chlorides and Sulfates hinder formation of a "},
        ValueRow{"MomentaryExcessExactly0_0001", ME, 0.0001, " .0001 ",
                 "Description :  Water is Saturated with Respect to caco3 "},
        ValueRow{"MomentaryExcessTiny", ME, -0.000012, "-1.2E-05 ",
                 "Description :  Water is Saturated with Respect to caco3 "},
        ValueRow{"RyznarNoDifficulties", RI, 6.5, " 6.5 ", "Description :   No difficulties"},
        ValueRow{"PuckoriusStable", PSI, 6, " 6 ", "Description :   Water is Stable"},
        ValueRow{"AggressivenessTwelve", AI, 12, " 12 ",
                 "Description :   water is moderately aggressive"},
        ValueRow{"DrivingForceAt1_02", DFI, 1.02, " 1.02 ",
                 "Description :  Water is Oversaturated with Respect to caco3"},
        ValueRow{"SaturationLevelAt0_98", SL, 0.98, " .98 ",
                 "Description :   Water is Undersaturated with Respect to caco3"}),
    [](const testing::TestParamInfo<ValueRow>& info) { return std::string(info.param.name); });

TEST(ReportLayout, ReportWordingDiffersFromTheWindowsInItsBlanks) {
    const struct {
        ReportIndex index;
        double value;
        const char* line;
    } cases[] = {
        {RI, 6.5,
         "\r\n"
         "         General recomendation :   No Treatment\r\n"},
        {RI, 9,
         "\r\n"
         "         General recomendation :  Treatment recommended\r\n"},
        {PSI, 5,
         "\r\n"
         "         General recomendation :  Treatment may be Needed\r\n"},
        {PSI, 6,
         "\r\n"
         "         General recomendation :   NO Treatment\r\n"},
    };
    for (const auto& c : cases)
        EXPECT_TRUE(contains(compose(withOnly(c.index, c.value), savedStyle()), c.line)) << c.line;
}

TEST(ReportLayout, NoIndexChosen) {
    const ReportInputs in = langelierSample();
    const struct {
        const char* name;
        ReportStyle style;
        std::string lines;
    } cases[] = {
        {"menu save", savedStyle(),
         "\n" + blanks(14) + " No indices has been selected,please select \r\n" + blanks(15) +
             "indices those you want, from options menu.\r\n"},
        {"toolbar save", savedToolbarStyle(),
         "\n" + blanks(14) + " NO indices has been selected,please select \r\n" + blanks(15) +
             "indices those you want,from options menu.\r\n"},
        {"menu print", printedStyle(),
         "\n" + blanks(14) + " No indices has been selected,please select \r\n" + blanks(1) +
             "indices those you want, from options menu.\r\n"},
    };
    for (const auto& c : cases) {
        const std::string text = compose(in, c.style);
        EXPECT_TRUE(contains(text, c.lines)) << c.name;
        // no section follows the interpretation heading
        EXPECT_TRUE(endsWith(text, " Corrosion indices interpertation:\r\n")) << c.name;
    }
}

TEST(ReportLayout, EquationRowsAndEmptyProperties) {
    ReportInputs in = langelierSample();
    in.bllang = false;
    in.bllewis = true;
    in.analysis[Field::k] = "3.9";
    in.analysis[Field::hco3] = "244";
    const std::string text = compose(in, savedStyle());
    EXPECT_FALSE(contains(text, "Dissolved solids"));
    EXPECT_FALSE(contains(text, "Electrical conductivity"));
    EXPECT_TRUE(contains(text, "Calcium as Ca" + blanks(11) + "mg/L" + blanks(13) + "80\r\n" +
                                   blanks(10) + "Potassium as K" + blanks(10) + "mg/L" +
                                   blanks(13) + "3.9\n"));
    EXPECT_TRUE(contains(text, "Bicarbonate as Hco3" + blanks(5) + "mg/L" + blanks(13) +
                                   "244\r\n\n   water corrosion"));
    EXPECT_TRUE(contains(text, "\n      Operator name :  \n"));

    in.blrus = true;
    in.analysis[Field::ec] = "55";
    EXPECT_TRUE(contains(compose(in, savedStyle()),
                         "  \n" + blanks(10) + "Electrical conductivity(EC)   mS/m  55\r\n"));
}

TEST(ReportLayout, RenderingsDifferOnlyInTheirWidths) {
    ReportInputs in = withOnly(LI, 0.25);
    const struct {
        const char* name;
        ReportStyle style;
        int title, table, index, closing;
        std::string alk, ph, word;
    } cases[] = {
        {"saved", savedStyle(), 68, 43, 43, 43, blanks(9) + "mg/L as caco3" + blanks(4) + "200",
         blanks(24) + "-" + blanks(14) + "7.5", "vslues"},
        {"toolbar saved", savedToolbarStyle(), 68, 43, 43, 43,
         blanks(9) + "mg/L as caco3" + blanks(4) + "200", blanks(24) + "-" + blanks(14) + "7.5",
         "vslues"},
        {"printed", printedStyle(), 88, 57, 56, 54,
         blanks(10) + "mg/L as caco3" + blanks(3) + "200", blanks(25) + "-" + blanks(15) + "7.5",
         "values"},
        {"toolbar printed", printedToolbarStyle(), 83, 57, 56, 54,
         blanks(10) + "mg/L as caco3" + blanks(3) + "200", blanks(25) + "-" + blanks(15) + "7.5",
         "values"},
    };
    for (const auto& c : cases) {
        const std::string text = compose(in, c.style);
        EXPECT_TRUE(contains(text, "\r\n" + blanks(5) + hyphens(c.title) + "\r\n")) << c.name;
        EXPECT_TRUE(contains(text, "Value\n" + blanks(12) + hyphens(c.table) + "  \n")) << c.name;
        EXPECT_TRUE(contains(text, "Value\n" + blanks(12) + hyphens(c.index) + "  \n")) << c.name;
        // the closing rule runs on with blanks to the next 14-character zone
        const int end = 12 + c.closing;
        EXPECT_TRUE(
            contains(text, "\n" + blanks(12) + hyphens(c.closing) + blanks(14 - end % 14) + "\n\n"))
            << c.name;
        EXPECT_TRUE(contains(text, "Alkalinity(ALK)" + c.alk + "\n")) << c.name;
        EXPECT_TRUE(contains(text, "pH" + c.ph + "\n")) << c.name;
        EXPECT_TRUE(contains(text, "\n   water corrosion indices " + c.word + " :\r\n")) << c.name;
    }
}

TEST(ReportLayout, HeadingAndTextsAsTyped) {
    ReportInputs in = withOnly(SL, 1.5);
    in.time = "10:30:00 AM";
    in.date = "5/17/24";
    in.operatorName = "Zoë";
    in.familyName = "Ångström";
    in.analysis[Field::ph] = "7,50";
    const std::string text = compose(in, savedStyle());
    EXPECT_EQ(text.rfind("Time :10:30:00 AM" + blanks(7) + "Velmora\r\nDate :5/17/24" + blanks(15) +
                             " Version 1.0 \r\n" + blanks(34) + "May 2008\r\n",
                         0),
              0u);
    EXPECT_TRUE(contains(text, "Operator name : Zoë Ångström\n"));
    EXPECT_TRUE(contains(text, "-" + blanks(14) + "7,50\n"));
    // only the layout's own line feeds stand alone; every other line ends in CR LF
    EXPECT_EQ(count(text, "\n") - count(text, "\r\n"), 22u);
}

} // namespace
} // namespace velmora::report
