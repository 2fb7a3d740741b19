// Tests of the precipitation potential (CCPP) and of the pH at which each
// index crosses a threshold. The CCPP, pH and crossing digits were computed
// from the definitions, from the entered analysis, with mpmath at 40 digits.
#include "engine/ccpp.h"

#include "results/interpretation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace velmora {
namespace {

// A water, calculated with the default options, with a sweep of `steps` points.
struct Water {
    double temp, ph, alk, ca, tds;
};

CalcInputs inputs(double ph, double start, double inc, double steps) {
    return {false, ph, ph, true, true, steps != 0, start, inc, steps};
}

CalcOutcome calculate(Engine& e, const Water& w, double start = 0, double inc = 0,
                      double steps = 0) {
    e.rec = {.tds = w.tds, .temp = w.temp, .alkin = w.alk, .ca = w.ca};
    EquationFlags flags;
    e.ionicactivity(flags);
    return e.calculate(flags, inputs(w.ph, start, inc, steps));
}

constexpr Water kWorked{25, 7.5, 200, 80, 400};
constexpr Water kDissolving{15, 7.0, 50, 20, 150};
constexpr Water kPrecipitating{30, 8.5, 300, 150, 1000};
constexpr Water kCalciumLimited{25, 9, 400, 2, 800};
constexpr Water kVerySoft{10, 6.5, 2, 0.5, 20};

TEST(Ccpp, Waters) {
    const std::optional<double> none;
    const struct {
        Water water;
        std::optional<double> ccpp, phEq;
        const char* note;
    } rows[] = {
        {kWorked, 10.949982088919131, 7.3083438530905543, ""},
        {kDissolving, -21.295662593486805, 8.262422810688435, ""},
        {kPrecipitating, 76.093264909222321, 7.0445673084198721, ""},
        {kCalciumLimited, 2.7886387434521984, 8.9805226383955898, ""},
        {kVerySoft, -9.5950180467531841, 9.8975161400000706, ""},
        // the hydroxide is more than the alkalinity: ct < 0
        {{25, 11.5, 2, 10, 100}, none, none, kCcppNoCarbonate},
        // ct < mca and ct < alk0: the carbonate runs out first, LSI still 3.1
        {{25, 11, 100, 200, 600}, 35.580143301519868, 10.987184577149514, kCcppAllCarbonate},
        // pH 0.5: ct = 1.8e5 mol/L, LSI(-1 mol/L) = -0.56
        {{25, 0.5, 200, 80, 400}, none, none, kCcppNotSaturated}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.water.ph);
        Engine e;
        ASSERT_TRUE(calculate(e, row.water).computed);
        const CcppResult r = computeCcpp(e);
        EXPECT_EQ(r.note, row.note);
        ASSERT_EQ(r.ccpp.has_value(), row.ccpp.has_value());
        ASSERT_EQ(r.phEq.has_value(), row.phEq.has_value());
        if (!row.ccpp) continue;
        EXPECT_NEAR(*r.ccpp, *row.ccpp, 1e-10 * std::abs(*row.ccpp));
        EXPECT_NEAR(*r.phEq, *row.phEq, 1e-11);
        // saturated to full precision
        const auto lsi = ccppLangelier(ccppWater(e), *r.ccpp / 100090);
        EXPECT_TRUE(*row.note || (lsi && std::abs(*lsi) <= 1e-12));
    }
}

TEST(Ccpp, MeasuredAndSaturatedWaters) {
    Engine e;
    calculate(e, kWorked);
    const CcppWater w = ccppWater(e);
    // precipitating nothing gives the measured water back
    EXPECT_EQ(ccppPh(w, 0), 7.5);
    EXPECT_NEAR(*ccppLangelier(w, 0), e.sw.li(0), 1e-13);
    // nothing where calcium, alkalinity or carbonate runs out
    EXPECT_FALSE(ccppLangelier(w, w.mca));
    EXPECT_FALSE(ccppPh(w, w.ct * 2));
    // no water, no CCPP and no note
    const CcppResult none = computeCcpp(CcppWater{});
    EXPECT_TRUE(!none.ccpp && !none.phEq && none.note.empty());
    // the worked sample at its own saturation pH: a CCPP of exactly 0
    Water saturated = kWorked;
    saturated.ph = e.sw.phs(0);
    calculate(e, saturated);
    ASSERT_LE(std::abs(e.sw.li(0)), 1e-12);
    const CcppResult r = computeCcpp(e);
    ASSERT_TRUE(r.ccpp && r.phEq && r.note.empty());
    EXPECT_EQ(*r.ccpp, 0.0);
    EXPECT_FALSE(std::signbit(*r.ccpp)); // no "-0" in a text
    EXPECT_EQ(*r.phEq, saturated.ph);
}

TEST(Crossings, AsDefined) {
    Engine e;
    auto c = findCrossings(e, calculate(e, kWorked, 6, 0.1, 40), CrossingSet::Neutral);
    ASSERT_TRUE(c[0]); // ph_li_0
    EXPECT_NEAR(*c[0], 7.2752424676087765, 1e-13);
    // Swept from pH 3, the alkalinity reaches zero at 4.3153. Below it the
    // sweep's other alkalinity formula gives an LSI of -5 at about 4.245,
    // which is not read; on the regular branch LSI = -5 at 4.4347.
    c = findCrossings(e, calculate(e, kWorked, 3, 0.1, 60), CrossingSet::Table);
    ASSERT_TRUE(c[0]); // ph_li_m5
    EXPECT_NEAR(*c[0], 4.4346851436134201, 1e-12);
    EXPECT_LT(*sweepIndexAt(e, SweepIndex::Langelier, 4.2), -5);
    EXPECT_GT(*sweepIndexAt(e, SweepIndex::Langelier, 4.3), -5);
}

// For several waters: the index at every sweep point is the sweep's own
// (both alkalinity branches; not at the measured pH, which the sweep computes
// from the measured alkalinity), and each crossing is where the index equals
// its threshold, inside the swept range; on the regular branch, where the
// indices are monotone, there is one exactly when the threshold lies between
// the values at the ends of the range.
TEST(Crossings, AreWhereTheSweepsIndexEqualsTheThreshold) {
    const struct {
        Water water;
        double start, inc, steps;
    } rows[] = {{kWorked, 6, 0.1, 40},         {kWorked, 8, 0.1, 20}, // LSI already above 0
                {kWorked, 9.9, -0.1, 40},      {kDissolving, 6, 0.2, 30},
                {kPrecipitating, 7, 0.05, 60}, {kCalciumLimited, 7, 0.1, 40},
                {kVerySoft, 6, 0.1, 40}}; // LSI 0 only at 10.74
    using S = SweepIndex;
    const std::pair<S, PointArray SweepArrays::*> indices[] = {
        {S::Langelier, &SweepArrays::li},     {S::Ryznar, &SweepArrays::ri},
        {S::Puckorius, &SweepArrays::por},    {S::Aggressiveness, &SweepArrays::ai},
        {S::DrivingForce, &SweepArrays::dfi}, {S::SaturationLevel, &SweepArrays::sl}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.start);
        Engine e;
        ASSERT_FALSE(calculate(e, row.water, 1.0, 0.09, 140).sweepError);
        for (int p = 1; p <= 140; ++p)
            for (const auto& [index, array] : indices)
                EXPECT_TRUE(e.sw.ph(p) == e.sw.ph(0) ||
                            sweepIndexAt(e, index, e.sw.ph(p)) == (e.sw.*array)(p))
                    << p;
        const CalcOutcome out = calculate(e, row.water, row.start, row.inc, row.steps);
        const auto range = sweptRange(e, out);
        ASSERT_TRUE(range);
        for (CrossingSet set : {CrossingSet::Neutral, CrossingSet::Table}) {
            const auto& list = crossingThresholds(set);
            const auto found = findCrossings(e, out, set);
            ASSERT_EQ(found.size(), list.size());
            for (std::size_t k = 0; k < list.size(); ++k) {
                const Threshold& t = list[k];
                SCOPED_TRACE(t.column);
                EXPECT_EQ(crossingPh(e, t, *range), found[k]);
                const double lo = *sweepIndexAt(e, t.index, range->lo) - t.value;
                const double hi = *sweepIndexAt(e, t.index, range->hi) - t.value;
                EXPECT_EQ(found[k].has_value(), lo * hi <= 0);
                if (!found[k]) continue;
                EXPECT_TRUE(*found[k] >= range->lo && *found[k] <= range->hi);
                EXPECT_NEAR(*sweepIndexAt(e, t.index, *found[k]), t.value, 1e-9);
            }
        }
    }
}

TEST(Crossings, RangeOfTheComputedPoints) {
    Engine e;
    // no sweep, and an empty one
    EXPECT_FALSE(sweptRange(e, calculate(e, kWorked)));
    EXPECT_FALSE(sweptRange(e, calculate(e, kWorked, 6, 0.1, -1)));
    for (const auto& c : findCrossings(e, calculate(e, kWorked), CrossingSet::Table))
        EXPECT_FALSE(c);
    // a sweep past the end of the arrays stops at point 141; downwards
    auto range = sweptRange(e, calculate(e, kWorked, 6, 0.01, 200));
    EXPECT_TRUE(range && range->lo == 6.0 && range->hi == e.sw.ph(140));
    range = sweptRange(e, calculate(e, kWorked, 9, -0.5, 5));
    EXPECT_TRUE(range && range->lo == e.sw.ph(5) && range->hi == 9.0);
}

// The table set holds exactly the boundaries of each index's interpretation
// table, as the Results window reads them.
// No NaN or infinity leaves, whatever the water: a CCPP or a note, crossings
// inside the swept range.
TEST(CcppAndCrossings, AlwaysFiniteOrEmpty) {
    Engine e;
    for (double temp : {0.0, 25.0, 80.0})
        for (double ph : {2.0, 6.5, 9.0, 12.5})
            for (double alk : {1.0, 200.0, 2000.0})
                for (double ca : {0.5, 100.0, 2000.0}) {
                    CalcOutcome out;
                    try {
                        out = calculate(e, {temp, ph, alk, ca, 500}, 1, 0.09, 140);
                    } catch (const EngineError&) {
                        continue; // a message row
                    }
                    const CcppResult r = computeCcpp(e);
                    EXPECT_EQ(r.ccpp.has_value(), r.phEq.has_value());
                    EXPECT_TRUE(r.ccpp ? std::isfinite(*r.ccpp) && std::isfinite(*r.phEq)
                                       : !r.note.empty());
                    const auto range = sweptRange(e, out);
                    for (const auto& c : findCrossings(e, out, CrossingSet::Table))
                        EXPECT_TRUE(!c || (*c >= range->lo && *c <= range->hi));
                }
}

TEST(CrossingSets, TableIsEveryBoundaryOfTheInterpretationTables) {
    using I = interp::Index;
    const I tables[] = {I::Langelier,      I::Ryznar,       I::Puckorius,
                        I::Aggressiveness, I::DrivingForce, I::SaturationLevel};
    for (int k = 0; k < 6; ++k) {
        const I table = tables[k];
        const SweepIndex sweep = static_cast<SweepIndex>(k); // in the same order
        std::set<double> bounds, columns;
        for (const auto& row : interp::table(table))
            for (const auto& b : {row.range.low, row.range.high})
                if (b.value) bounds.insert(*b.value);
        for (const auto& t : crossingThresholds(CrossingSet::Table))
            if (t.index == sweep) columns.insert(t.value);
        EXPECT_EQ(columns, bounds) << interp::windowCaption(table);
    }
}

} // namespace
} // namespace velmora
