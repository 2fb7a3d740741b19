// What an engineer asks once the indices are known: how much calcium
// carbonate the water deposits or dissolves before it is saturated (the
// calcium carbonate precipitation potential, CCPP), and at which pH each
// index reaches a value of interest (its neutral value or a boundary of its
// interpretation table).
//
// Both are computed inside the engine's own chemistry: the ionic strength,
// activity coefficients, corrected constants and total carbonate of the
// calculated water. Closed system, in this program's model: no exchange of
// CO2 with the air and no ion pairs.
//
// Plain C++, like the engine. Nothing here throws for a water the engine has
// calculated, and no NaN or infinity is ever returned: where a value does
// not exist the result is empty (std::nullopt).
#pragma once

#include "engine/engine.h"

#include <optional>
#include <string>
#include <vector>

namespace velmora {

// ---------------------------------------------------------------------------
// Calcium carbonate precipitation potential.
//
// Precipitating x mol/L of CaCO3 (x < 0 dissolves) leaves calcium mca - x,
// total carbonate ct - x and alkalinity 2 (alk0 - x) eq/L. The pH of that
// water is the root of the measured point's own alkalinity relation
//     C_T (a1 + 2 a2) + ckw/h - h = A,
// its saturation pH is the engine's with the new calcium and alkalinity
// (ionic strength and activity coefficients held at the measured water's),
// and the CCPP is 100090 x* mg/L where the Langelier index of that water is
// zero.

inline constexpr const char* kCcppNoCarbonate = "no carbonate alkalinity";
inline constexpr const char* kCcppAllCarbonate = "all carbonate precipitates";
inline constexpr const char* kCcppNotSaturated = "not saturated after dissolving 100090 mg/L";

struct CcppResult {
    std::optional<double> ccpp; // mg/L as CaCO3: > 0 deposits, < 0 dissolves
    std::optional<double> phEq; // pH of the water once saturated
    // Empty, or one of the three notes above. A note is a result, not an
    // error. Empty numbers with an empty note: the water was not calculated.
    std::string note;
};

// The calculated water as the CCPP reads it.
struct CcppWater {
    double alk0 = 0;                  // alkalinity, mol/L as CaCO3 (mg/L / 100090)
    double mca = 0;                   // calcium, mol/L
    double ct = 0;                    // total carbonate, mol/L
    double ck1 = 0, ck2 = 0, ckw = 0; // constants corrected for ionic strength
    double lanm = 0;                  // monovalent activity coefficient
    double pck2 = 0, pcks = 0;        // -log10 of the corrected k2 and ks
    double ph = 0;                    // measured pH
};

// The measured point of the engine, after Read Data and Calculate.
CcppWater ccppWater(const Engine& engine);

CcppResult computeCcpp(const CcppWater& water);
inline CcppResult computeCcpp(const Engine& engine) {
    return computeCcpp(ccppWater(engine));
}

// The water after precipitating x mol/L: its pH (empty when C_T < 0) and its
// Langelier index (empty when calcium, alkalinity or C_T is used up beyond
// zero). At x = 0 the pH is the measured pH.
std::optional<double> ccppPh(const CcppWater& water, double x);
std::optional<double> ccppLangelier(const CcppWater& water, double x);

// ---------------------------------------------------------------------------
// Threshold crossings over the pH sweep.
//
// The sweep computes each index at any pH from the total carbonate of the
// measured point (hco3 = ct a1, co3 = ct a2, the sweep's alkalinity, its
// saturation pH, then the index). A crossing is the pH inside the swept range
// where that function equals the threshold, found by root finding on the
// function itself, never by interpolating between sweep points.
//
// The crossings are sought on the sweep's regular branch, above the pH where
// its alkalinity reaches zero. There the Langelier, aggressiveness, driving
// force and saturation level indices rise and the Ryznar and Puckorius
// indices fall strictly with pH, so each threshold is crossed at most once.
// (Below that pH the sweep switches to another alkalinity formula, a
// modelling stopgap whose values are not read for crossings; the driving
// force and saturation level do not depend on the alkalinity and are read
// over the whole range.) Larson-Skold, which is not monotone, has none.

enum class SweepIndex {
    Langelier,
    Ryznar,
    Puckorius,
    Aggressiveness,
    DrivingForce,
    SaturationLevel
};

struct Threshold {
    std::string column; // "ph_li_0", "ph_ri_6p5", "ph_li_m0p5"
    SweepIndex index;
    double value;
};

enum class CrossingSet {
    Neutral, // the neutral value of each index
    Table,   // every boundary of the interpretation tables
};

// The thresholds of a set, in column order. Neutral: ph_li_0, ph_ri_6p5,
// ph_por_6, ph_ai_12, ph_ai_10, ph_dfi_1, ph_sl_1. Table: the boundaries of
// the Langelier, Ryznar, Puckorius, aggressiveness, driving force and
// saturation level tables, each index's in ascending order (ph_li_m5 ...
// ph_sl_1p02).
const std::vector<Threshold>& crossingThresholds(CrossingSet set);

// The column name of a threshold: "ph_" + the index's short name + "_" +
// the shortest text of the value with '.' written 'p' and '-' written 'm'.
std::string crossingColumn(SweepIndex index, double value);

// The index at any pH exactly as a sweep point of the calculated water
// computes it, both alkalinity branches included; empty where the sweep
// point would fail on the index's own formula. (A sweep point that falls
// exactly on the measured pH is computed by the sweep from the measured
// alkalinity instead; this stays the continuous function there.)
std::optional<double> sweepIndexAt(const Engine& engine, SweepIndex index, double ph);

// The pH range of the sweep points the calculation computed: points 1 to
// the last one computed before the sweep ended or stopped on an error.
// Empty when no sweep point was computed.
struct PhRange {
    double lo = 0, hi = 0;
};
std::optional<PhRange> sweptRange(const Engine& engine, const CalcOutcome& outcome);

// The crossing of one threshold in a range; empty when there is none.
std::optional<double> crossingPh(const Engine& engine, const Threshold& threshold,
                                 const PhRange& range);

// The crossings of a set after a calculation with the sweep, one per
// threshold of crossingThresholds(set); all empty without sweep points.
std::vector<std::optional<double>> findCrossings(const Engine& engine, const CalcOutcome& outcome,
                                                 CrossingSet set);

} // namespace velmora
