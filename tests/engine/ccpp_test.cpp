// Tests of the precipitation potential (CCPP) and of the pH at which each
// index crosses a threshold: a table of waters with their expected CCPP, pH
// at saturation and note, sweeps with their crossings, and the sweep's own
// values at its points.
//
// The expectations are independent of the code under test: the digits in
// the tables were computed from the definitions, starting from the entered
// analysis, by a short Python script with mpmath at 40 significant digits
// (constants, ionic strength, activity coefficients and total carbonate
// derived again, the inner pH and x* by 200-step bisection). Everything
// else is compared with the reference below, which writes the definitions
// out again in long double and solves them by plain bisection, sharing
// nothing with the code under test but the record's constants.
#include "engine/ccpp.h"

#include "numtext/numtext.h"
#include "results/interpretation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace velmora {
namespace {

using LD = long double;

// ---------------------------------------------------------------------------
// Waters, read with the default options (Langelier ionic strength, limiting
// law) and calculated, with or without a sweep.

struct Water {
    double temp, ph, alk, ca, tds;
};

CalcInputs inputs(const Water& w, const std::string& start, const std::string& inc,
                  const std::string& steps) {
    CalcInputs in;
    in.phEmpty = false;
    in.ph = w.ph;
    in.phStrict = w.ph;
    in.sweep = !steps.empty();
    if (in.sweep) {
        in.sweepStart = std::stod(start);
        in.sweepIncrement = std::stod(inc);
        in.sweepSteps = std::stod(steps);
    }
    return in;
}

CalcOutcome calculate(Engine& e, const Water& w, const std::string& start = "",
                      const std::string& inc = "", const std::string& steps = "") {
    e.rec = AnalysisRecord{};
    e.rec.temp = w.temp;
    e.rec.alkin = w.alk;
    e.rec.ca = w.ca;
    e.rec.tds = w.tds;
    EquationFlags flags;
    e.ionicactivity(flags);
    return e.calculate(flags, inputs(w, start, inc, steps));
}

constexpr Water kWorked{25, 7.5, 200, 80, 400};
constexpr Water kDissolving{15, 7.0, 50, 20, 150};
constexpr Water kPrecipitating{30, 8.5, 300, 150, 1000};
constexpr Water kCalciumLimited{25, 9, 400, 2, 800};
constexpr Water kVerySoft{10, 6.5, 2, 0.5, 20};

// ---------------------------------------------------------------------------
// The reference.

struct Reference {
    LD alk0, mca, ct, ck1, ck2, ckw, kw, lanm, land, pck2, pcks, cks, cahard, phsBase;

    explicit Reference(const Engine& e) {
        const AnalysisRecord& r = e.rec;
        alk0 = LD(r.alkin) / 100090;
        mca = LD(r.ca) / 40080;
        ct = e.sw.ct;
        ck1 = r.ck1, ck2 = r.ck2, ckw = r.ckw, kw = r.kw, cks = r.cks;
        lanm = r.lanm, land = r.land, pck2 = r.pck2, pcks = r.pcks;
        cahard = LD(r.ca) * 50 / LD(20.04);
        phsBase = pck2 - log10l(mca) - pcks + log10l(lanm);
    }

    template <class F> static LD bisect(F f, LD lo, LD hi, int steps) {
        const bool riseSense = f(lo) < 0;
        for (int i = 0; i < steps; ++i) {
            const LD mid = (lo + hi) / 2;
            ((f(mid) < 0) == riseSense ? lo : hi) = mid;
        }
        return (lo + hi) / 2;
    }

    // pH after precipitating x mol/L
    LD phAfter(LD x) const {
        const LD c = ct - x, a = 2 * (alk0 - x);
        return bisect(
            [&](LD p) {
                const LD h = powl(10, -p);
                const LD s = (ck1 * h + 2 * ck1 * ck2) / (h * h + ck1 * h + ck1 * ck2);
                return c * s + ckw / h - h - a;
            },
            -10, 30, 200);
    }
    LD langelierAfter(LD x) const {
        const LD ca = mca - x, a = 2 * (alk0 - x);
        if (ca <= 0 || a <= 0) return -INFINITY;
        return phAfter(x) - (pck2 - pcks - log10l(ca) - log10l(a) + log10l(lanm));
    }
    // x* between lo and hi (LSI falling)
    LD saturatingX(LD lo, LD hi) const {
        return bisect([&](LD x) { return langelierAfter(x); }, lo, hi, 150);
    }

    // The sweep's index on its regular branch, in the rising sense;
    // -infinity where the alkalinity is not above zero.
    LD rising(SweepIndex index, LD p) const {
        const LD h = powl(10, -p);
        const LD a1 = 1 / (h / ck1 + 1 + ck2 / h);
        const LD a2 = 1 / (h * h / (ck1 * ck2) + h / ck2 + 1);
        const LD co3 = ct * a2;
        const LD alk = ct * a1 / 2 + co3 + kw / h / 2 - h / 2;
        switch (index) {
        case SweepIndex::DrivingForce:
            return mca * co3 / 2 / cks;
        case SweepIndex::SaturationLevel:
            return land * land * mca * co3 * LD(0.6) / cks;
        default:
            break;
        }
        if (alk <= 0) return -INFINITY;
        const LD phs = phsBase - log10l(2 * alk);
        const LD alkmg = alk * 100090;
        switch (index) {
        case SweepIndex::Langelier:
            return p - phs;
        case SweepIndex::Ryznar:
            return -(2 * phs - p);
        case SweepIndex::Puckorius:
            return -(2 * phs - (LD(1.465) * log10l(alkmg) + LD(4.54)));
        default: // aggressiveness
            return log10l(alkmg * cahard) + p;
        }
    }
    std::optional<double> crossing(const Threshold& t, LD lo, LD hi) const {
        const LD target = t.index == SweepIndex::Ryznar || t.index == SweepIndex::Puckorius
                              ? -LD(t.value)
                              : LD(t.value);
        auto g = [&](LD p) { return rising(t.index, p) - target; };
        if (g(lo) > 0 || g(hi) < 0) return std::nullopt;
        return double(bisect(g, lo, hi, 100));
    }
};

// ---------------------------------------------------------------------------
// CCPP of a table of waters

struct CcppRow {
    const char* name;
    Water water;
    std::optional<double> ccpp, phEq; // from the definitions (mpmath)
    const char* note;
};

void PrintTo(const CcppRow& row, std::ostream* os) {
    *os << row.name;
}

class CcppWaters : public ::testing::TestWithParam<CcppRow> {};

TEST_P(CcppWaters, AsDefined) {
    const CcppRow& row = GetParam();
    Engine e;
    ASSERT_TRUE(calculate(e, row.water).computed);
    const CcppResult r = computeCcpp(e);
    EXPECT_EQ(r.note, row.note);
    ASSERT_EQ(r.ccpp.has_value(), row.ccpp.has_value());
    ASSERT_EQ(r.phEq.has_value(), row.phEq.has_value());
    if (!row.ccpp) return;
    EXPECT_NEAR(*r.ccpp, *row.ccpp, 1e-10 * std::abs(*row.ccpp));
    EXPECT_NEAR(*r.phEq, *row.phEq, 1e-11);

    // the same against the long double reference
    const Reference ref(e);
    const CcppWater w = ccppWater(e);
    if (row.note[0] == '\0') {
        const LD x = *r.ccpp > 0 ? ref.saturatingX(0, std::min({ref.mca, ref.alk0, ref.ct}))
                                 : ref.saturatingX(-1, 0);
        EXPECT_NEAR(*r.ccpp, double(100090 * x), 1e-10 * std::abs(*r.ccpp));
        EXPECT_NEAR(*r.phEq, double(ref.phAfter(x)), 1e-11);
        // the search goes to full precision
        const auto lsi = ccppLangelier(w, *r.ccpp / 100090);
        ASSERT_TRUE(lsi.has_value());
        EXPECT_LE(std::abs(*lsi), 1e-12);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, CcppWaters,
    ::testing::Values(
        // the worked sample: 10.949982089 mg/L, ph_eq 7.308343853
        CcppRow{"Worked", kWorked, 10.949982088919131, 7.3083438530905543, ""},
        CcppRow{"Dissolving", kDissolving, -21.295662593486805, 8.262422810688435, ""},
        CcppRow{"Precipitating", kPrecipitating, 76.093264909222321, 7.0445673084198721, ""},
        CcppRow{"CalciumLimited", kCalciumLimited, 2.7886387434521984, 8.9805226383955898, ""},
        CcppRow{"VerySoft", kVerySoft, -9.5950180467531841, 9.8975161400000706, ""},
        // pH 11.5 with 2 mg/L of alkalinity: the hydroxide is more than the
        // alkalinity, ct < 0
        CcppRow{
            "NoCarbonate", {25, 11.5, 2, 10, 100}, std::nullopt, std::nullopt, kCcppNoCarbonate},
        // ct < mca and ct < alk0: the carbonate runs out first, LSI still 3.1
        CcppRow{"AllCarbonate",
                {25, 11, 100, 200, 600},
                35.580143301519868,
                10.987184577149514,
                kCcppAllCarbonate},
        // pH 0.5: ct = 1.8e5 mol/L, LSI(-1 mol/L) = -0.56
        CcppRow{"NotSaturated",
                {25, 0.5, 200, 80, 400},
                std::nullopt,
                std::nullopt,
                kCcppNotSaturated}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Ccpp, AlreadySaturated) {
    // the worked sample at its own saturation pH: LSI(0) within 1e-12 of 0
    Engine e;
    calculate(e, kWorked);
    Water w = kWorked;
    w.ph = e.sw.phs(0);
    ASSERT_TRUE(calculate(e, w).computed);
    ASSERT_LE(std::abs(e.sw.li(0)), 1e-12);
    const CcppResult r = computeCcpp(e);
    EXPECT_EQ(r.note, "");
    ASSERT_TRUE(r.ccpp && r.phEq);
    EXPECT_EQ(*r.ccpp, 0.0);
    EXPECT_FALSE(std::signbit(*r.ccpp));
    EXPECT_EQ(*r.phEq, w.ph);
}

TEST(Ccpp, MeasuredPointGivesBackTheMeasuredWater) {
    Engine e;
    calculate(e, kWorked);
    const CcppWater w = ccppWater(e);
    EXPECT_EQ(ccppPh(w, 0), 7.5);
    EXPECT_NEAR(*ccppLangelier(w, 0), e.sw.li(0), 1e-13);
    // the pH relation solved at x = 0 gives the measured pH back
    const Reference ref(e);
    EXPECT_NEAR(double(ref.phAfter(0)), 7.5, 1e-14);
    // nothing where calcium, alkalinity or carbonate runs out
    EXPECT_FALSE(ccppLangelier(w, w.mca));
    EXPECT_FALSE(ccppPh(w, w.ct * 2));
    // no water, no CCPP and no note
    const CcppResult r = computeCcpp(CcppWater{});
    EXPECT_TRUE(!r.ccpp && !r.phEq && r.note.empty());
}

// ---------------------------------------------------------------------------
// Crossings

TEST(Crossings, WorkedSample) {
    Engine e;
    const CalcOutcome out = calculate(e, kWorked, "6", "0.1", "40");
    const auto c = findCrossings(e, out, CrossingSet::Neutral);
    ASSERT_TRUE(c[0].has_value());
    EXPECT_NEAR(*c[0], 7.2752424676087765, 1e-13); // ph_li_0 7.275242468
}

TEST(Crossings, OnTheRegularBranchOnly) {
    // Swept from pH 3, the alkalinity reaches zero at 4.3153. Below it the
    // sweep's other alkalinity formula gives an LSI of -5 at about 4.245,
    // which is not read; on the regular branch LSI = -5 at 4.4347.
    Engine e;
    const CalcOutcome out = calculate(e, kWorked, "3", "0.1", "60");
    const auto c = findCrossings(e, out, CrossingSet::Table);
    ASSERT_TRUE(c[0].has_value()); // ph_li_m5
    EXPECT_NEAR(*c[0], 4.4346851436134201, 1e-12);
    EXPECT_LT(*sweepIndexAt(e, SweepIndex::Langelier, 4.2), -5);
    EXPECT_GT(*sweepIndexAt(e, SweepIndex::Langelier, 4.3), -5);
}

struct SweepRow {
    const char* name;
    Water water;
    const char *start, *inc, *steps;
    std::vector<std::string> absent; // columns with no crossing in range
};

void PrintTo(const SweepRow& row, std::ostream* os) {
    *os << row.name;
}

class SweepCrossings : public ::testing::TestWithParam<SweepRow> {};

TEST_P(SweepCrossings, AgreeWithTheReference) {
    const SweepRow& row = GetParam();
    Engine e;
    const CalcOutcome out = calculate(e, row.water, row.start, row.inc, row.steps);
    ASSERT_FALSE(out.sweepError);
    const auto range = sweptRange(e, out);
    ASSERT_TRUE(range);
    const Reference ref(e);
    for (CrossingSet set : {CrossingSet::Neutral, CrossingSet::Table}) {
        const auto& list = crossingThresholds(set);
        const auto found = findCrossings(e, out, set);
        ASSERT_EQ(found.size(), list.size());
        for (std::size_t k = 0; k < list.size(); ++k) {
            SCOPED_TRACE(list[k].column);
            const auto expected = ref.crossing(list[k], range->lo, range->hi);
            ASSERT_EQ(found[k].has_value(), expected.has_value());
            EXPECT_EQ(crossingPh(e, list[k], *range), found[k]);
            const auto& absent = row.absent;
            if (std::find(absent.begin(), absent.end(), list[k].column) != absent.end()) {
                EXPECT_FALSE(found[k]);
            }
            if (!expected) continue;
            EXPECT_NEAR(*found[k], *expected, 1e-11);
            EXPECT_TRUE(*found[k] >= range->lo && *found[k] <= range->hi);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Waters, SweepCrossings,
    ::testing::Values(SweepRow{"Worked", kWorked, "6", "0.1", "40", {"ph_li_3", "ph_ai_10"}},
                      // LSI is already above 0 at pH 8, still below 0 at 6.9
                      SweepRow{"WorkedAbove", kWorked, "8", "0.1", "20", {"ph_li_0", "ph_ri_6p5"}},
                      SweepRow{"WorkedBelow", kWorked, "6", "0.1", "10", {"ph_li_0", "ph_sl_1"}},
                      SweepRow{"WorkedDownwards", kWorked, "9.9", "-0.1", "40", {}},
                      // through the pH where the alkalinity reaches zero (about 4.3)
                      SweepRow{"WorkedFrompH3", kWorked, "3", "0.1", "60", {}},
                      SweepRow{"Dissolving", kDissolving, "6", "0.2", "30", {}},
                      SweepRow{"Precipitating", kPrecipitating, "7", "0.05", "60", {}},
                      SweepRow{"CalciumLimited", kCalciumLimited, "7", "0.1", "40", {}},
                      // LSI -2.3 at pH 9, 0 only at 10.74
                      SweepRow{"VerySoft", kVerySoft, "5", "0.1", "50", {"ph_li_0", "ph_li_m1"}},
                      SweepRow{"VerySoftToLi0", kVerySoft, "5", "0.1", "60", {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Crossings, RangeOfTheComputedPoints) {
    Engine e;
    // no sweep, and an empty one
    EXPECT_FALSE(sweptRange(e, calculate(e, kWorked)));
    EXPECT_FALSE(sweptRange(e, calculate(e, kWorked, "6", "0.1", "0")));
    for (const auto& c : findCrossings(e, calculate(e, kWorked), CrossingSet::Table))
        EXPECT_FALSE(c);
    // a sweep past the end of the arrays stops at point 141
    CalcOutcome out = calculate(e, kWorked, "6", "0.01", "200");
    ASSERT_TRUE(out.sweepError);
    auto range = sweptRange(e, out);
    ASSERT_TRUE(range);
    EXPECT_EQ(range->lo, 6.0);
    EXPECT_EQ(range->hi, e.sw.ph(140));
    // downwards
    range = sweptRange(e, calculate(e, kWorked, "9", "-0.5", "5"));
    ASSERT_TRUE(range);
    EXPECT_EQ(range->lo, e.sw.ph(5));
    EXPECT_EQ(range->hi, 9.0);
}

// At every sweep point the functions give the sweep's own values, on both
// branches of its alkalinity (the point at the measured pH aside, which the
// sweep computes from the measured alkalinity).
class SweepValues : public ::testing::TestWithParam<Water> {};

TEST_P(SweepValues, AreTheSweepsOwn) {
    Engine e;
    const CalcOutcome out = calculate(e, GetParam(), "1.0", "0.09", "140");
    ASSERT_FALSE(out.sweepError);
    const struct {
        SweepIndex index;
        PointArray SweepArrays::*array;
    } indices[] = {
        {SweepIndex::Langelier, &SweepArrays::li},
        {SweepIndex::Ryznar, &SweepArrays::ri},
        {SweepIndex::Puckorius, &SweepArrays::por},
        {SweepIndex::Aggressiveness, &SweepArrays::ai},
        {SweepIndex::DrivingForce, &SweepArrays::dfi},
        {SweepIndex::SaturationLevel, &SweepArrays::sl},
    };
    for (int p = 1; p <= 140; ++p) {
        if (e.sw.ph(p) == e.sw.ph(0)) continue;
        for (const auto& i : indices) {
            const auto v = sweepIndexAt(e, i.index, e.sw.ph(p));
            ASSERT_TRUE(v);
            EXPECT_EQ(*v, (e.sw.*i.array)(p)) << "point " << p;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Waters, SweepValues,
                         ::testing::Values(kWorked, kDissolving, kPrecipitating, kVerySoft));

// No NaN or infinity leaves, whatever the water.
TEST(CcppAndCrossings, AlwaysFiniteOrEmpty) {
    Engine e;
    for (double temp : {0.0, 25.0, 80.0})
        for (double ph : {2.0, 6.5, 9.0, 12.5})
            for (double alk : {1.0, 200.0, 2000.0})
                for (double ca : {0.5, 100.0, 2000.0}) {
                    CalcOutcome out;
                    try {
                        out = calculate(e, {temp, ph, alk, ca, 500}, "1", "0.09", "140");
                    } catch (const EngineError&) {
                        continue; // a message row
                    }
                    const CcppResult r = computeCcpp(e);
                    EXPECT_EQ(r.ccpp.has_value(), r.phEq.has_value());
                    EXPECT_TRUE(r.ccpp ? std::isfinite(*r.ccpp) && std::isfinite(*r.phEq)
                                       : !r.note.empty());
                    const auto range = sweptRange(e, out);
                    for (const auto& c : findCrossings(e, out, CrossingSet::Table))
                        if (c) {
                            EXPECT_TRUE(*c >= range->lo && *c <= range->hi);
                        }
                }
}

} // namespace
} // namespace velmora

// The table set holds exactly the boundaries of each index's interpretation
// table, as the Results window reads them.
TEST(CrossingSets, TableIsEveryBoundaryOfTheInterpretationTables) {
    const std::pair<velmora::SweepIndex, velmora::interp::Index> indices[] = {
        {velmora::SweepIndex::Langelier, velmora::interp::Index::Langelier},
        {velmora::SweepIndex::Ryznar, velmora::interp::Index::Ryznar},
        {velmora::SweepIndex::Puckorius, velmora::interp::Index::Puckorius},
        {velmora::SweepIndex::Aggressiveness, velmora::interp::Index::Aggressiveness},
        {velmora::SweepIndex::DrivingForce, velmora::interp::Index::DrivingForce},
        {velmora::SweepIndex::SaturationLevel, velmora::interp::Index::SaturationLevel},
    };
    for (const auto& [sweep, table] : indices) {
        std::set<double> bounds, columns;
        for (const auto& row : velmora::interp::table(table))
            for (const auto& b : {row.range.low, row.range.high})
                if (b.value) bounds.insert(*b.value);
        for (const auto& t : velmora::crossingThresholds(velmora::CrossingSet::Table))
            if (t.index == sweep) columns.insert(t.value);
        EXPECT_EQ(columns, bounds) << velmora::interp::windowCaption(table);
    }
}
