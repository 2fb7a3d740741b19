// The interpretation tables of the eight indices: for each index an ordered
// list of value ranges, each with a severity colour and the lines of its
// explanation. The interpretation window and the colours of the Results
// window's buttons both read them from here.
//
// Plain C++ so that any part of the program can use the same texts.
#pragma once

#include "engine/engine.h"

#include <optional>
#include <string>
#include <vector>

namespace velmora::interp {

enum class Index {
    Langelier,
    Ryznar,
    Puckorius,
    Aggressiveness,
    DrivingForce,
    LarsonSkold,
    MomentaryExcess,
    SaturationLevel,
};

// Every index, in the order the Results window lists them (Langelier,
// Ryznar, Puckorius, driving force, momentary excess, aggressiveness,
// saturation level, Larson-Skold).
const std::vector<Index>& allIndices();

struct Rgb {
    int r = 0, g = 0, b = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

// One end of a range; no value means the range is unbounded on that side.
struct Bound {
    std::optional<double> value;
    bool closed = false;
};

// A range of index values with open or closed ends, as "-0.5 < LI <= 0".
struct Range {
    Bound low, high;
    bool contains(double x) const;
    // The range written out, e.g. "-0.5 < x <= 0" or "x >= 4".
    std::string text() const;
};

struct Row {
    Range range;
    Rgb colour;
    std::vector<std::string> lines;
    // The report's wording of the same explanation where it differs from the
    // window's in its blanks; empty when the report writes `lines`.
    std::vector<std::string> reportLines = {};
    // The lines joined by CR LF, without a line break after the last line.
    std::string text() const;
    const std::vector<std::string>& reportText() const {
        return reportLines.empty() ? lines : reportLines;
    }
};

// The rows of an index's table in their order of evaluation.
const std::vector<Row>& table(Index index);

// The row whose colour and text an interpretation of `value` shows: the
// rows are walked in order and a later matching row overrides an earlier
// one. Values that lie between two rows are resolved as described in
// interpretation.cpp; nullptr when no row applies (a value that is not a
// number).
const Row* rowFor(Index index, double value);

// The row whose range holds `value` (a later matching row overriding an
// earlier one), with no resolution of values between rows: the report
// explains a Larson-Skold value of exactly 1.2 by no row at all.
const Row* matchingRow(Index index, double value);

// The array of the sweep arrays that holds the index (li, ri, por, ...);
// element 0 is the value at the measured pH:
//     (engine.sw.*indexArray(Index::Ryznar))(0)
PointArray SweepArrays::*indexArray(Index index);

// The caption of the index's button on the Results window ("Larson -Scold").
const char* buttonCaption(Index index);
// The caption of the interpretation window ("Ryznar index interpretation").
const char* windowCaption(Index index);
// The object name of the index's interpretation button ("cmdlan").
const char* buttonName(Index index);

} // namespace velmora::interp
