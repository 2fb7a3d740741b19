// The report's text, composed without any window: the worked examples and
// the edge cases of the layout, in each of its four renderings.
#include "report/reportlayout.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::report {
namespace {

// const: "text" + blanks(n) then copies instead of inserting into the temporary
const std::string blanks(int n) {
    return std::string(static_cast<std::size_t>(n), ' ');
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

// The value as the report writes it, and whether an explanation follows.
TEST(ReportLayout, ValueRowsAndTheirExplanation) {
    const struct {
        ReportIndex index;
        double value;
        const char* written;
        bool block;
    } cases[] = {{LI, 0, " 0 ", true},
                 {LI, -0.5, "-.5 ", true},
                 {LI, 0.0000004, " 0 ", true},
                 {LI, 1.0000005, " 1 ", true},
                 {LR, 1.2, " 1.2 ", false},
                 {LR, 1.2000001, " 1.2 ", true},
                 {ME, 0.0001, " .0001 ", true},
                 {ME, -0.000012, "-1.2E-05 ", true},
                 {RI, 7.12345678, " 7.123457 ", true}};
    for (const auto& c : cases) {
        const std::string text = compose(withOnly(c.index, c.value), savedStyle());
        const std::string written = "-" + blanks(11) + c.written + "\r\n";
        EXPECT_TRUE(contains(text, written)) << c.written;
        EXPECT_EQ(count(text, "Description :"), c.block ? 1u : 0u) << c.written;
    }
}

// Every row's explanation in the report's own wording, after the heading.
TEST(ReportLayout, EveryRowExplained) {
    for (int i = 0; i < kIndexCount; ++i) {
        const auto index = static_cast<ReportIndex>(i);
        for (const interp::Row& row : interp::table(interpretationOf(index))) {
            const auto& r = row.range;
            const double v = r.low.value && r.high.value ? (*r.low.value + *r.high.value) / 2
                             : r.low.value               ? *r.low.value + 1
                                                         : *r.high.value - 1;
            const std::string text = compose(withOnly(index, v), savedStyle());
            std::string block;
            for (const std::string& line : row.reportText())
                block.append("\n").append(blanks(9)).append(line).append("\r");
            EXPECT_TRUE(contains(text, block)) << r.text() << "\n" << text;
            EXPECT_TRUE(endsWith(text, row.reportText().back() + "\r\n"));
        }
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
