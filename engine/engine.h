// The water chemistry engine: one analysis held for the life of the program,
// its conversion to molar units, ionic strength and activity, the carbonate
// equilibrium, the eight corrosion and scaling indices, the ion balance and
// the calculation run with its pH sweep.
//
// Plain C++: nothing here knows about windows or text. The engine takes
// numbers (EquationFlags, CalcInputs) and reports its progress through
// EngineObserver.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace velmora {

// ---------------------------------------------------------------------------
// Run-time errors of the engine.
class EngineError : public std::runtime_error {
public:
    enum class Kind {
        LogOfNonPositive, // logarithm of zero or a negative number
        SqrtOfNegative,   // square root of a negative number
        DivisionByZero,   // x / 0, 0 / 0 included
        Overflow,         // a result that is not a finite number
        IndexOutOfRange,  // an array index outside 0..140
        BadConversion,    // a text that a strict conversion cannot read as a number
    };
    EngineError(Kind kind, const std::string& what);
    Kind kind() const { return kind_; }
    // A short description of the kind, e.g. "logarithm of a non-positive number".
    static const char* kindText(Kind kind);

private:
    Kind kind_;
};

// ---------------------------------------------------------------------------
// The analysis and everything derived from it that does not vary with pH.
struct AnalysisRecord {
    // entered analysis (mg/L; temperature in degrees Celsius)
    double tds = 0, ec = 0, ec100 = 0, temp = 0, alkin = 0;
    double ca = 0, mg = 0, k = 0, na = 0, zn = 0, mn = 0, fe = 0, al = 0;
    double hco3in = 0, co3in = 0, no2 = 0, no3 = 0, f = 0, cl = 0, so4 = 0;

    // derived scalars
    double tk = 0, hardness = 0, cahard = 0;
    double mca = 0, mmg = 0, mk = 0, mna = 0, mzn = 0, mal = 0, mfe = 0, mmn = 0;
    double mcl = 0, mf = 0, mno3 = 0, mno2 = 0, mso4 = 0, mco3 = 0, mhco3 = 0;
    double pca = 0;
    double ionic = 0, eps = 0, adav = 0, dterm = 0;
    double lanm = 0, land = 0, lant = 0;
    double k1 = 0, k2 = 0, kw = 0, ks = 0;
    double pk1 = 0, pk2 = 0, pkw = 0, pks = 0;
    double ck1 = 0, ck2 = 0, ckw = 0, cks = 0;
    double pck1 = 0, pck2 = 0, pckw = 0, pcks = 0;
    double meqca = 0, meqmg = 0, meqal = 0, meqfe = 0, meqmn = 0, meqzn = 0, meqna = 0, meqk = 0;
    double meqso4 = 0, meqcl = 0, meqf = 0, meqno3 = 0, meqno2 = 0, meqco3 = 0, meqhco3 = 0;
    double sumca = 0, suman = 0, diff = 0;
    bool accuracyok = false;
};

// ---------------------------------------------------------------------------
// One value per pH point, 0..140; every access is bounds-checked.
class PointArray {
public:
    static constexpr int kSize = 141;
    double& operator()(int i) { return v_[check(i)]; }
    double operator()(int i) const { return v_[check(i)]; }

private:
    // inline, so that every access costs one compare; the throw stays out of line
    static int check(int i) {
        if (static_cast<unsigned>(i) >= static_cast<unsigned>(kSize)) [[unlikely]]
            outOfRange(i);
        return i;
    }
    [[noreturn]] static void outOfRange(int i);
    double v_[kSize] = {};
};

struct SweepArrays {
    PointArray ph, ch, oh, a0, a1, a2, ctnum, ctden, h2co3, hco3, co3;
    PointArray alk, alkmg, alkeq, alkt, palk, phs, pheq;
    PointArray li, ri, por, ai, dfi, lr, me, sl;
    PointArray co3dfi, qb, qc, hco3meq;

    double ct = 0;
    double qa = 0;
    double clmeq = 0, so4meq = 0;
    double phstart = 0, phincrement = 0, phsteps = 0;
    std::int16_t ipoint = 0;
};

// ---------------------------------------------------------------------------
// The chosen ionic strength and activity equations. The engine applies its
// defaults by setting flags here (they stay set), so it takes them by
// reference.
struct EquationFlags {
    bool bllewis = false, bllang = false, blrus = false;                     // ionic strength
    bool bldavies = false, bledebye = false, blgun = false, bldebye = false; // activity
};

// A number the engine reads from an entry, or, for an entry that is not a
// number, the error of its strict conversion: the engine raises it at the
// moment it reads the number, so a calculation that reads it fails there
// and one that does not read it goes on.
class EntryNumber {
public:
    EntryNumber() = default;
    EntryNumber(double value) : value_(value) {}
    // An entry that is not a number; `message` is the text of the error.
    static EntryNumber notANumber(std::string message) {
        EntryNumber n;
        n.failed_ = true;
        n.message_ = std::move(message);
        return n;
    }
    // A number again (the message is kept for the next failure).
    void set(double value) {
        value_ = value;
        failed_ = false;
    }
    bool isNumber() const { return !failed_; }
    // The number; EngineError(BadConversion) when the entry is not one.
    double read() const {
        if (failed_) [[unlikely]]
            fail();
        return value_;
    }

private:
    [[noreturn]] void fail() const;
    double value_ = 0;
    bool failed_ = false;
    std::string message_;
};

// The numbers a calculation starts from, captured at the moment of the call.
struct CalcInputs {
    bool phEmpty = true; // no pH was entered
    // the pH's leading number (0 when there is none, infinite when it is
    // beyond a double), and the pH as a whole number, for the ion balance
    double ph = 0;
    EntryNumber phStrict;
    bool hco3Empty = true; // no bicarbonate was entered
    bool co3Empty = true;  // no carbonate was entered
    bool sweep = false;    // the pH sweep follows the measured point
    EntryNumber sweepStart, sweepIncrement, sweepSteps;
};

enum class MessageIcon { None, Information, Warning, Critical };

// What a calculation reports as it goes. The main window implements it; the
// batch calculator implements it to collect messages.
class EngineObserver {
public:
    virtual ~EngineObserver() = default;
    // A point of the calculation is complete (the measured point or a sweep
    // point); `sweep` is whether the run has a sweep.
    virtual void pointCompleted(bool sweep) = 0;
    // The ion balance judged the analysis accurate enough (acceptable) or not.
    virtual void ionBalanceJudged(bool acceptable) = 0;
    // The ion balance is over, its sums in the analysis record.
    virtual void ionBalanceDone() = 0;
    // A run without a sweep has its measured point in element 0.
    virtual void measuredPointReady() = 0;
    // A message for the user, with an OK button.
    virtual void message(const std::string& text, const std::string& title, MessageIcon icon) = 0;
};

// How a calculation run ended.
struct CalcOutcome {
    bool computed = false; // false when the empty-pH message ended the run
    // The error that stopped the sweep, and the point where it happened.
    std::optional<EngineError> sweepError;
    int sweepErrorPoint = 0;
    int sweepPoints = 0; // n, the number of sweep points asked for
};

// ---------------------------------------------------------------------------
class Engine {
public:
    AnalysisRecord rec;
    SweepArrays sw;

    void setObserver(EngineObserver* observer) { observer_ = observer; }

    // Conversion of the entered analysis to molar units.
    void convertmolar();
    void prepareanalysis();
    // Ionic strength and activity coefficients; applies the default flags.
    void ionicactivity(EquationFlags& flags);
    // Constants, hydrogen and hydroxide, ionisation fractions of point ipoint.
    void equilibriumconstants();
    // Point ipoint complete: carbonate system, saturation pH, the eight indices.
    void computepoint(const EquationFlags& flags, const CalcInputs& in);
    // Ion balance of the analysis; sets accuracyok.
    void ionbalance(const EquationFlags& flags, const CalcInputs& in);
    // The calculation run: the measured point, then the sweep. A run-time
    // error at the measured point, or a sweep number that is not one,
    // propagates as EngineError; the analysis and the points are then as
    // they were before the call.
    CalcOutcome calculate(const EquationFlags& flags, const CalcInputs& in);

    // Whether a calculation that fails before its sweep puts the analysis
    // and the points back as they were (on unless turned off). A caller that
    // starts every calculation from reset() has nothing to put back.
    void setRestoreOnFailure(bool restore) { restoreOnFailure_ = restore; }

    // The state of a freshly started engine: the analysis and every point
    // cleared. Clears what the engine's own calculations wrote since the
    // last reset; a caller that writes the points itself clears them itself
    // (sw = SweepArrays{}).
    void reset();

    // The arrays copied from element 1 to element 0 after the measured point.
    void copyMeasuredPoint();

private:
    // The hydrogen and hydroxide of point i (during a sweep) and its
    // ionisation fractions.
    void pointfractions(int i, double k1k2);

    // The analysis and the points the measured point may change, kept
    // before it is computed and put back when it fails.
    struct Saved;
    void save(Saved& saved) const;
    void restore(const Saved& saved);

    EngineObserver* observer_ = nullptr;
    bool restoreOnFailure_ = true;
    // The highest point element the engine has written since the last reset.
    int written_ = 0;
    // The terms of a point that do not depend on pH, kept from the last point
    // computed in full; during a sweep the points take them from there.
    struct PhIndependent {
        double alk = 0, k1k2 = 0, phsBase = 0, logLanm = 0, lrSum = 0, landMca = 0;
    };
    PhIndependent swept_;
    bool sweeping_ = false;
    // Values that depend on one number alone, kept by the bits of that number
    // the first time they are computed (a run of samples meets the same
    // temperatures, pH values and ionic strengths again and again): one
    // computation, the same numbers. A direct-mapped table: a number that
    // finds another in its place is computed again and takes the place.
    template <int Bits, int N> class Kept {
    public:
        // The values kept for x, or null; then keep() them once computed.
        const double* find(double x) {
            std::memcpy(&key_, &x, sizeof key_);
            slot_ = &slots_[(key_ * 0x9E3779B97F4A7C15u) >> (64 - Bits)];
            return slot_->known && slot_->key == key_ ? slot_->values : nullptr;
        }
        void keep(const double (&values)[N]) {
            slot_->known = true;
            slot_->key = key_;
            std::memcpy(slot_->values, values, sizeof values);
        }

    private:
        struct Slot {
            bool known = false;
            std::uint64_t key = 0;
            double values[N] = {};
        };
        Slot slots_[1 << Bits];
        Slot* slot_ = nullptr;
        std::uint64_t key_ = 0;
    };
    // the equilibrium constants and their logarithms, by absolute temperature
    Kept<10, 8> temperatures_;
    // the hydrogen-ion concentration, by pH
    Kept<10, 1> hydrogen_;
    // the limiting law's three activity coefficients, by the square root of
    // the ionic strength
    Kept<11, 3> limitingLaw_;

    double hydrogen(double ph);
};

// The single engine of the program.
Engine& theEngine();

} // namespace velmora
