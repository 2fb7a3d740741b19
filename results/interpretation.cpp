#include "results/interpretation.h"

#include <cmath>
#include <sstream>

namespace velmora::interp {

namespace {

constexpr Rgb kRed{255, 0, 0};
constexpr Rgb kSalmon{255, 128, 128};
constexpr Rgb kOrange{255, 128, 0};
constexpr Rgb kLightOrange{255, 192, 128};
constexpr Rgb kYellow{255, 255, 0};
constexpr Rgb kPaleYellow{255, 255, 192};
constexpr Rgb kGreen{0, 255, 0};
constexpr Rgb kLightGreen{128, 255, 128};
constexpr Rgb kPaleGreen{192, 255, 192};

// Range builders named after how the ranges read: lo < x <= hi is
// openClosed(lo, hi), x < hi is below(hi), x >= lo is atLeast(lo), ...
Range openClosed(double lo, double hi) {
    return {{lo, false}, {hi, true}};
}
Range closedOpen(double lo, double hi) {
    return {{lo, true}, {hi, false}};
}
Range open(double lo, double hi) {
    return {{lo, false}, {hi, false}};
}
Range closed(double lo, double hi) {
    return {{lo, true}, {hi, true}};
}
Range below(double hi) {
    return {{}, {hi, false}};
}
Range atMost(double hi) {
    return {{}, {hi, true}};
}
Range above(double lo) {
    return {{lo, false}, {}};
}
Range atLeast(double lo) {
    return {{lo, true}, {}};
}

std::vector<Row> langelierRows() {
    return {
        {openClosed(-0.5, 0),
         kGreen,
         {"Description :   Near Balanced", "General recomendation :  No Treatment"}},
        {openClosed(-1, -0.5),
         kYellow,
         {"Description :   None- Mild Corrosion",
          "General recomendation :  Probably No Treatment "}},
        {openClosed(-2, -1),
         kLightOrange,
         {"Description :   Mild Corrosion", "General recomendation : Treatment May Be Needed"}},
        {openClosed(-3, -2),
         kOrange,
         {"Description :   Moderate Corrosion", "General recomendation : Treatment May Be Needed"}},
        {openClosed(-4, -3),
         kRed,
         {"Description :   Moderate Corrosion ", "General recomendation :  Treatment Recommended"}},
        {openClosed(-5, -4),
         kRed,
         {"Description :  Severe Corrosion", "General recomendation :   Treatment Recommended"}},
        {closedOpen(0, 0.5),
         kGreen,
         {"Description :   Near Balanced", "General recomendation :  No Treatment"}},
        {closedOpen(0.5, 1),
         kYellow,
         {"Description :  Some Faint Coating", "General recomendation :  Probably No Treatment "}},
        {closedOpen(1, 2),
         kLightOrange,
         {"Description :    Mild Scale Coating",
          "General recomendation :  Treatment May Be Needed"}},
        {closedOpen(2, 3),
         kOrange,
         {"Description :   Mild to Moderate Coatings",
          "General recomendation :  Treatment May Be Needed"}},
        {closedOpen(3, 4),
         kRed,
         {"Description :   Moderate Scale Forming ",
          "General recomendation :  Treatment Advisable"}},
        {atMost(-5),
         kRed,
         {"Description :   Severe Corrosion", "General recomendation :  Treatment Recommended"}},
        {atLeast(4),
         kRed,
         {"Description :   Severe Scale Forming", "General recomendation :  Treatment Advisable"}},
    };
}

std::vector<Row> ryznarRows() {
    return {
        {below(5.5),
         kRed,
         {"Description :   Heavy Scale Will form",
          "General recomendation :  Treatment Recommended"}},
        {closedOpen(5.5, 6.2),
         kSalmon,
         {"Description :   Mild scale", "General recomendation :  Treatment may be Needed"}},
        {closedOpen(6.2, 6.8),
         kGreen,
         {"Description :   No difficulties", "General recomendation :  No Treatment"},
         {"Description :   No difficulties", "General recomendation :   No Treatment"}},
        {closedOpen(6.8, 8.5),
         kSalmon,
         {"Description :   Water is aggressive", "General recomendation :  Treatment recommended"}},
        {atLeast(8.5),
         kRed,
         {"Description :   Water is very aggressive",
          "General recomendation :   Treatment recommended"},
         {"Description :   Water is very aggressive",
          "General recomendation :  Treatment recommended"}},
    };
}

std::vector<Row> puckoriusRows() {
    return {
        {below(5.9),
         kRed,
         {"Description :   Scale-forming tendency",
          "General recomendation :  Treatment may be Needed "},
         {"Description :   Scale-forming tendency",
          "General recomendation :  Treatment may be Needed"}},
        {closedOpen(5.9, 6.1),
         kSalmon,
         {"Description :  Water is Stable", "General recomendation :  NO Treatment "},
         {"Description :   Water is Stable", "General recomendation :   NO Treatment"}},
        {atLeast(6.1),
         kGreen,
         {"Description :   Corrosion may occur", "General recomendation :  No Treatment",
          "Note : Without The use of scale control Treatment",
          "a colling tower operate scale free"}},
    };
}

std::vector<Row> aggressivenessRows() {
    return {
        {below(10),
         kRed,
         {"Description :  Water is Deemed to be Highly Aggressive",
          "General recomendation :  Treatment Recommended"}},
        {closed(10, 12),
         kLightOrange,
         {"Description :   water is moderately aggressive",
          "General recomendation :  Treatment may be Needed"}},
        {above(12),
         kLightGreen,
         {"Description :   No difficulties,water is not Aggressive(i.e.,Protective)",
          "General recomendation :  No Treatment"}},
    };
}

// The driving force and the saturation level read alike around saturation.
Row saturatedRow() {
    return {open(0.98, 1.02),
            kPaleGreen,
            {"Description :   Water Saturated with Respect to caco3",
             "General recomendation : probably No Treatment"}};
}

std::vector<Row> drivingForceRows() {
    return {
        saturatedRow(),
        {atLeast(1.02),
         kPaleYellow,
         {"Description :  Water is Oversaturated with Respect to caco3",
          "General recomendation : Treatment may be Needed "}},
        {atMost(0.98),
         kPaleYellow,
         {"Description :   Water is Undersaturated with Respect to caco3",
          "General recomendation : Treatment may be Needed"}},
    };
}

std::vector<Row> larsonSkoldRows() {
    return {
        {below(0.8),
         kRed,
         {"Description :   Chlorides and sulfates do not influence the ",
          "natural formation of the protective film",
          "General recomendation :  Treatment Recommended"}},
        {closedOpen(0.8, 1.2),
         kSalmon,
         {"Description :  Chlorides and Sulfates hinder formation of a ", "protective film.",
          "General recomendation :  Treatment may be Needed"},
         {"Description :   Chlorides and Sulfates hinder formation of a ", "protective film.",
          "General recomendation :  Treatment may be Needed"}},
        {above(1.2),
         kRed,
         {"Description :   As the value of the index grows ,an increasingly ",
          "higher rate of localized corrosion is observed.",
          "General recomendation :   Treatment Rcommended"}},
    };
}

std::vector<Row> momentaryExcessRows() {
    return {
        {above(0.0001),
         kPaleYellow,
         {"Description :  Water is Oversaturated with Respect to caco3",
          "General recomendation :  Treatment may be Needed"}},
        {closed(-0.0001, 0.0001),
         kPaleGreen,
         {"Description :  Water is Saturated with Respect to caco3 ",
          "General recomendation :  N0 Treatment"}},
        {below(-0.0001),
         kPaleYellow,
         {"Description :   Water is Undersaturated with Respect to caco3",
          "General recomendation :  Treatment may be Needed"}},
    };
}

std::vector<Row> saturationLevelRows() {
    return {
        saturatedRow(),
        {atLeast(1.02),
         kPaleYellow,
         {"Description :  Water is Oversaturated with Respect to caco3",
          "Note : in a Typical System, a Value of 1.2 to 1.5 can often be",
          "Achieved before Scaling Occurs.if it gose Higher,Scaling is Likely.",
          "General recomendation : Treatment may be Needed "}},
        {atMost(0.98),
         kPaleYellow,
         {"Description :   Water is Undersaturated with Respect to caco3",
          "Note :Scaling is Unlikely and any Existing Scale is Likely to", " Dissolve.",
          "General recomendation : Treatment may be Needed"}},
    };
}

struct IndexInfo {
    Index index;
    PointArray SweepArrays::*array;
    const char* button;
    const char* caption;
    const char* window;
    std::vector<Row> rows;
};

const std::vector<IndexInfo>& infos() {
    static const std::vector<IndexInfo> all = {
        {Index::Langelier, &SweepArrays::li, "cmdlan", "Langelier",
         "Langelier index interpretation", langelierRows()},
        {Index::Ryznar, &SweepArrays::ri, "cmdri", "Ryznar", "Ryznar index interpretation",
         ryznarRows()},
        {Index::Puckorius, &SweepArrays::por, "cmdpor", "Puckorius",
         "Puckorius index interpretation", puckoriusRows()},
        {Index::Aggressiveness, &SweepArrays::ai, "cmdai", "Aggressiveness",
         "Aggressiveness index interpretation", aggressivenessRows()},
        {Index::DrivingForce, &SweepArrays::dfi, "cmddfi", "Driving Force",
         "Driving Force index interpretation", drivingForceRows()},
        {Index::LarsonSkold, &SweepArrays::lr, "cmdlr", "Larson -Scold",
         "Larson-Scold index interpretation", larsonSkoldRows()},
        {Index::MomentaryExcess, &SweepArrays::me, "cmdme", "Momentary Excess",
         "Momentary Excess index interpretation", momentaryExcessRows()},
        {Index::SaturationLevel, &SweepArrays::sl, "cmdsl", "Saturation Level",
         "Carbonate saturation Level interpretation", saturationLevelRows()},
    };
    return all;
}

const IndexInfo& info(Index index) {
    for (const IndexInfo& i : infos())
        if (i.index == index) return i;
    return infos().front(); // every enumerator is listed above
}

std::string numberText(double x) {
    std::ostringstream out;
    out << x;
    return out.str();
}

} // namespace

const std::vector<Index>& allIndices() {
    static const std::vector<Index> all = {
        Index::Langelier,       Index::Ryznar,         Index::Puckorius,       Index::DrivingForce,
        Index::MomentaryExcess, Index::Aggressiveness, Index::SaturationLevel, Index::LarsonSkold,
    };
    return all;
}

bool Range::contains(double x) const {
    if (std::isnan(x)) return false;
    if (low.value && !(low.closed ? x >= *low.value : x > *low.value)) return false;
    if (high.value && !(high.closed ? x <= *high.value : x < *high.value)) return false;
    return true;
}

std::string Range::text() const {
    if (low.value && high.value)
        return numberText(*low.value) + (low.closed ? " <= x " : " < x ") +
               (high.closed ? "<= " : "< ") + numberText(*high.value);
    if (low.value) return std::string("x ") + (low.closed ? ">= " : "> ") + numberText(*low.value);
    if (high.value)
        return std::string("x ") + (high.closed ? "<= " : "< ") + numberText(*high.value);
    return "any x";
}

std::string Row::text() const {
    std::string s;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) s += "\r\n";
        s += lines[i];
    }
    return s;
}

const std::vector<Row>& table(Index index) {
    return info(index).rows;
}

const Row* matchingRow(Index index, double value) {
    const Row* found = nullptr;
    for (const Row& row : table(index))
        if (row.range.contains(value)) found = &row;
    return found;
}

const Row* rowFor(Index index, double value) {
    const std::vector<Row>& rows = table(index);
    const Row* found = matchingRow(index, value);
    // The Larson-Skold table leaves exactly 1.2 between "0.8 <= LR < 1.2" and
    // "LR > 1.2". At 1.2 the chlorides and sulphates have reached the level
    // where localized corrosion sets in, so the value is read as the upper,
    // more severe band rather than shown without any explanation.
    if (!found && index == Index::LarsonSkold && value == 1.2) found = &rows.back();
    return found;
}

PointArray SweepArrays::*indexArray(Index index) {
    return info(index).array;
}

const char* buttonCaption(Index index) {
    return info(index).caption;
}
const char* windowCaption(Index index) {
    return info(index).window;
}
const char* buttonName(Index index) {
    return info(index).button;
}

} // namespace velmora::interp
