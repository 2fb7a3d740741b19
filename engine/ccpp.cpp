#include "engine/ccpp.h"

#include "numtext/numtext.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <utility>

namespace velmora {

namespace {

constexpr double kEps = std::numeric_limits<double>::epsilon();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kLn10 = 2.302585092994045684;
constexpr double kCaCO3 = 100090; // mg per mol

// ---------------------------------------------------------------------------
// Brent's method: a zero of f between a and b, where f(a) and f(b) differ in
// sign. Either end may be infinite (a pole or a quantity used up), in which
// case the method bisects until that end is replaced. Returns the estimate
// with the smaller |f| once the bracket is down to a few units in the last
// place (or to absTol), or nothing when f yields a NaN.
template <class F>
std::optional<double> brent(F&& f, double a, double fa, double b, double fb, double absTol) {
    double c = a, fc = fa, d = b - a, e = d;
    for (int iter = 0; iter < 200; ++iter) {
        if ((fb > 0 && fc > 0) || (fb < 0 && fc < 0)) {
            c = a;
            fc = fa;
            d = e = b - a;
        }
        if (std::abs(fc) < std::abs(fb)) {
            a = b;
            b = c;
            c = a;
            fa = fb;
            fb = fc;
            fc = fa;
        }
        const double tol = 2 * kEps * std::abs(b) + 0.5 * absTol;
        const double m = 0.5 * (c - b);
        if (std::abs(m) <= tol || fb == 0) return b;
        const bool finite = std::isfinite(fa) && std::isfinite(fc);
        if (!finite || std::abs(e) < tol || std::abs(fa) <= std::abs(fb)) {
            d = e = m; // bisection
        } else {
            // secant, or inverse quadratic interpolation through a, b, c
            double p, q;
            const double s = fb / fa;
            if (a == c) {
                p = 2 * m * s;
                q = 1 - s;
            } else {
                const double qa = fa / fc, r = fb / fc;
                p = s * (2 * m * qa * (qa - r) - (b - a) * (r - 1));
                q = (qa - 1) * (r - 1) * (s - 1);
            }
            if (p > 0)
                q = -q;
            else
                p = -p;
            if (2 * p < 3 * m * q - std::abs(tol * q) && p < std::abs(0.5 * e * q)) {
                e = d;
                d = p / q;
            } else {
                d = e = m;
            }
        }
        a = b;
        fa = fb;
        b += std::abs(d) > tol ? d : (m > 0 ? tol : -tol);
        fb = f(b);
        if (std::isnan(fb)) return std::nullopt;
    }
    return b;
}

// Zero instead of a negative zero, so that no "-0" reaches a text.
double unsignedZero(double x) {
    return x == 0 ? 0.0 : x;
}

// ---------------------------------------------------------------------------
// CCPP

// The water after precipitating x, with the last pH found as the starting
// point of the next.
class Precipitation {
public:
    explicit Precipitation(const CcppWater& w)
        : w_(w), k1k2_(w.ck1 * w.ck2), logLanm_(std::log10(w.lanm)), lastPh_(w.ph) {}

    // pH of a water of total carbonate c and alkalinity a eq/L: the root of
    // G(pH) = c (a1 + 2 a2) + ckw/h - h - a, which rises strictly with pH.
    // Safeguarded Newton in pH inside the bracket that 0 < a1 + 2 a2 < 2
    // gives: G >= 0 where ckw/h - h >= a, G < 0 where ckw/h - h <= a - 2c.
    double phOf(double c, double a) {
        const double hHigh = waterRoot(a - 2 * c);
        const double hLow = waterRoot(a);
        double lo = -std::log10(hHigh), hi = -std::log10(hLow);
        if (c == 0 || !(lo < hi)) return lastPh_ = hi;
        double p = std::clamp(lastPh_, lo, hi);
        for (int iter = 0; iter < 200; ++iter) {
            const double h = std::exp(-kLn10 * p);
            const double den = h * h + w_.ck1 * h + k1k2_;
            const double num = w_.ck1 * h + 2 * k1k2_;
            const double g = c * (num / den) + w_.ckw / h - h - a;
            if (g == 0) break;
            if (g < 0)
                lo = p;
            else
                hi = p;
            const double dsdh = (w_.ck1 * den - num * (2 * h + w_.ck1)) / (den * den);
            const double dgdp = -kLn10 * h * (c * dsdh - w_.ckw / (h * h) - 1);
            double next = p - g / dgdp;
            if (!(next > lo && next < hi)) next = 0.5 * (lo + hi);
            const double step = std::abs(next - p);
            p = next;
            if (step <= 2 * kEps * std::max(1.0, std::abs(p)) ||
                hi - lo <= 2 * kEps * std::max(1.0, std::abs(p)))
                break;
        }
        return lastPh_ = p;
    }

    // Saturation pH with calcium ca and alkalinity a eq/L.
    double phs(double ca, double a) const {
        return w_.pck2 - w_.pcks - std::log10(ca) - std::log10(a) + logLanm_;
    }

    // Langelier index after precipitating x: -infinity once calcium or
    // alkalinity is used up, NaN when C_T is used up beyond zero.
    double langelier(double x) {
        const double ca = w_.mca - x, a = 2 * (w_.alk0 - x), c = w_.ct - x;
        if (c < 0) return std::numeric_limits<double>::quiet_NaN();
        if (ca <= 0 || a <= 0) return -kInf;
        const double ph = x == 0 ? w_.ph : phOf(c, a);
        return ph - phs(ca, a);
    }

    double ph(double x) {
        if (x == 0) return w_.ph;
        return phOf(w_.ct - x, 2 * (w_.alk0 - x));
    }

private:
    // The positive root h of h^2 + q h - ckw = 0, without cancellation.
    double waterRoot(double q) const {
        const double d = std::sqrt(q * q + 4 * w_.ckw);
        return q >= 0 ? 2 * w_.ckw / (q + d) : 0.5 * (d - q);
    }

    const CcppWater& w_;
    double k1k2_, logLanm_, lastPh_;
};

bool usable(const CcppWater& w) {
    for (double v : {w.alk0, w.mca, w.ct, w.ck1, w.ck2, w.ckw, w.lanm, w.pck2, w.pcks, w.ph})
        if (!std::isfinite(v)) return false;
    return w.alk0 > 0 && w.mca > 0 && w.ck1 > 0 && w.ck2 > 0 && w.ckw > 0 && w.lanm > 0;
}

// ---------------------------------------------------------------------------
// The sweep point at any pH. Every expression is written as the sweep point
// writes it, operation for operation, so that at a sweep pH the value is the
// sweep's own.

struct SweepModel {
    double ct, ck1, ck2, k1k2, kw, mca, cks, land, cahard;
    double phsBase;      // pck2 + pCa - pcks
    double minusLogLanm; // -log10(lanm)
};

SweepModel sweepModel(const Engine& e) {
    const AnalysisRecord& r = e.rec;
    SweepModel m;
    m.ct = e.sw.ct;
    m.ck1 = r.ck1;
    m.ck2 = r.ck2;
    m.k1k2 = r.ck1 * r.ck2;
    m.kw = r.kw;
    m.mca = r.mca;
    m.cks = r.cks;
    m.land = r.land;
    m.cahard = r.ca * 50 / 20.04;
    m.phsBase = r.pck2 + r.pca - r.pcks;
    m.minusLogLanm = -std::log10(r.lanm);
    return m;
}

struct SweepPoint {
    bool valid; // h, its square, the hydroxide and the fractions all finite
    double co3;
    double alk;    // the regular formula's, possibly <= 0
    double alkLow; // the formula below the regular branch
};

SweepPoint sweepPoint(const SweepModel& m, double ph) {
    const double h = std::pow(10.0, -ph);
    const double oh = m.kw / h;
    const double h2 = h * h;
    const double a1 = 1 / (h / m.ck1 + 1 + m.ck2 / h);
    const double a2 = 1 / (h2 / m.k1k2 + h / m.ck2 + 1);
    const double hco3 = m.ct * a1;
    const double co3 = m.ct * a2;
    const bool valid =
        h > 0 && std::isfinite(h2) && std::isfinite(oh) && std::isfinite(a1) && std::isfinite(a2);
    return {valid, co3, 0.5 * hco3 + co3 + 0.5 * oh - 0.5 * h, 0.5 * hco3 + co3 + 0.5 * oh};
}

bool usesAlkalinity(SweepIndex index) {
    return index != SweepIndex::DrivingForce && index != SweepIndex::SaturationLevel;
}

bool rises(SweepIndex index) {
    return index != SweepIndex::Ryznar && index != SweepIndex::Puckorius;
}

// The index at pH from a point and its alkalinity (alk > 0 for the
// indices that use it); not finite where the sweep would fail.
double indexValue(const SweepModel& m, SweepIndex index, double ph, double co3, double alk) {
    switch (index) {
    case SweepIndex::DrivingForce: {
        const double co3dfi = co3 * 30 / 60;
        return m.mca * co3dfi / m.cks;
    }
    case SweepIndex::SaturationLevel:
        return m.land * m.mca * (m.land * co3 * 30 / 50) / m.cks;
    default:
        break;
    }
    const double alkt = 2 * alk;
    const double palk = -std::log10(alkt);
    const double phs = m.phsBase + palk - m.minusLogLanm;
    switch (index) {
    case SweepIndex::Langelier:
        return ph - phs;
    case SweepIndex::Ryznar:
        return 2 * phs - ph;
    case SweepIndex::Puckorius: {
        const double alkmg = alk * 100.09 * 1000;
        const double pheq = 1.465 * std::log10(alkmg) + 4.54;
        return 2 * phs - pheq;
    }
    case SweepIndex::Aggressiveness: {
        const double alkmg = alk * 100.09 * 1000;
        return std::log10(alkmg * m.cahard) + ph;
    }
    default:
        return std::numeric_limits<double>::quiet_NaN();
    }
}

// The index in the rising sense on the regular branch: -infinity for the
// alkalinity indices at and below the pH where the alkalinity reaches zero
// (their limit there), the value with its sign turned for the falling ones;
// NaN where the sweep point itself has no value.
double risingValue(const SweepModel& m, SweepIndex index, double ph) {
    const SweepPoint pt = sweepPoint(m, ph);
    if (!pt.valid) return std::numeric_limits<double>::quiet_NaN();
    if (usesAlkalinity(index) && !(pt.alk > 0)) return -kInf;
    const double v = indexValue(m, index, ph, pt.co3, pt.alk);
    return rises(index) ? v : -v;
}

std::optional<double> crossingIn(const SweepModel& m, const Threshold& t, const PhRange& range,
                                 double atLo, double atHi) {
    // rising sense: g = v - t for the rising indices, t - v for the falling
    const double sign = rises(t.index) ? 1.0 : -1.0;
    const double target = sign * t.value;
    auto g = [&](double ph) { return risingValue(m, t.index, ph) - target; };
    const double glo = atLo - target, ghi = atHi - target;
    if (std::isnan(glo) || std::isnan(ghi) || glo > 0 || ghi < 0) return std::nullopt;
    if (glo == 0) return range.lo;
    if (ghi == 0) return range.hi;
    const auto root = brent(g, range.lo, glo, range.hi, ghi, 4 * kEps);
    if (!root || !std::isfinite(*root)) return std::nullopt;
    return unsignedZero(*root);
}

const char* shortName(SweepIndex index) {
    switch (index) {
    case SweepIndex::Langelier:
        return "li";
    case SweepIndex::Ryznar:
        return "ri";
    case SweepIndex::Puckorius:
        return "por";
    case SweepIndex::Aggressiveness:
        return "ai";
    case SweepIndex::DrivingForce:
        return "dfi";
    case SweepIndex::SaturationLevel:
        return "sl";
    }
    return "";
}

std::vector<Threshold> thresholds(std::initializer_list<std::pair<SweepIndex, double>> list) {
    std::vector<Threshold> out;
    for (const auto& [index, value] : list)
        out.push_back({crossingColumn(index, value), index, value});
    return out;
}

} // namespace

// ---------------------------------------------------------------------------

CcppWater ccppWater(const Engine& e) {
    const AnalysisRecord& r = e.rec;
    CcppWater w;
    w.alk0 = r.alkin / 100090;
    w.mca = r.mca;
    w.ct = e.sw.ct;
    w.ck1 = r.ck1;
    w.ck2 = r.ck2;
    w.ckw = r.ckw;
    w.lanm = r.lanm;
    w.pck2 = r.pck2;
    w.pcks = r.pcks;
    w.ph = e.sw.ph(0);
    return w;
}

std::optional<double> ccppPh(const CcppWater& w, double x) {
    if (!usable(w) || !std::isfinite(x) || w.ct - x < 0) return std::nullopt;
    Precipitation p(w);
    const double ph = p.ph(x);
    if (!std::isfinite(ph)) return std::nullopt;
    return ph;
}

std::optional<double> ccppLangelier(const CcppWater& w, double x) {
    if (!usable(w) || !std::isfinite(x)) return std::nullopt;
    Precipitation p(w);
    const double l = p.langelier(x);
    if (!std::isfinite(l)) return std::nullopt;
    return l;
}

CcppResult computeCcpp(const CcppWater& w) {
    CcppResult out;
    if (!usable(w)) return out;
    if (w.ct <= 0) {
        out.note = kCcppNoCarbonate;
        return out;
    }
    Precipitation p(w);
    const double l0 = p.langelier(0);
    if (!std::isfinite(l0)) return out;

    // already saturated to the precision of the search
    double x = 0;
    if (std::abs(l0) > 1e-12) {
        double a = 0, fa = l0, b, fb;
        if (l0 > 0) {
            // deposits: 0 < x < min(mca, alk0, ct); the index falls to
            // -infinity where calcium or alkalinity runs out
            b = std::min({w.mca, w.alk0, w.ct});
            fb = p.langelier(b);
            if (std::isnan(fb)) return out;
            if (fb > 0) {
                // only the carbonate ran out, and the water still deposits
                out.ccpp = unsignedZero(kCaCO3 * w.ct);
                out.phEq = p.ph(w.ct);
                out.note = kCcppAllCarbonate;
                return out;
            }
        } else {
            // dissolves: widen the bracket until the index is above zero,
            // down to -1 mol/L
            double d = std::min(1.0, std::max({w.mca, w.alk0, 1e-6}));
            b = -d;
            fb = p.langelier(b);
            while (fb < 0 && d < 1) {
                a = b;
                fa = fb;
                d = std::min(1.0, 10 * d);
                b = -d;
                fb = p.langelier(b);
            }
            if (!(fb >= 0)) {
                out.note = kCcppNotSaturated;
                return out;
            }
        }
        if (fb == 0) {
            x = b;
        } else {
            const auto root = brent([&](double v) { return p.langelier(v); }, a, fa, b, fb, 1e-22);
            if (!root || !std::isfinite(*root)) return out;
            x = *root;
        }
    }
    const double ph = p.ph(x);
    if (!std::isfinite(ph)) return out;
    out.ccpp = unsignedZero(kCaCO3 * x);
    out.phEq = ph;
    return out;
}

// ---------------------------------------------------------------------------

std::string crossingColumn(SweepIndex index, double value) {
    std::string text = fmt::shortest(value);
    for (char& ch : text) {
        if (ch == '.') ch = 'p';
        if (ch == '-') ch = 'm';
    }
    return std::string("ph_") + shortName(index) + "_" + text;
}

const std::vector<Threshold>& crossingThresholds(CrossingSet set) {
    using I = SweepIndex;
    static const std::vector<Threshold> neutral = thresholds({
        {I::Langelier, 0},
        {I::Ryznar, 6.5},
        {I::Puckorius, 6},
        {I::Aggressiveness, 12},
        {I::Aggressiveness, 10},
        {I::DrivingForce, 1},
        {I::SaturationLevel, 1},
    });
    // The boundaries of the interpretation tables, in the order of the
    // tables and ascending within each.
    static const std::vector<Threshold> table = thresholds({
        {I::Langelier, -5},      {I::Langelier, -4},         {I::Langelier, -3},
        {I::Langelier, -2},      {I::Langelier, -1},         {I::Langelier, -0.5},
        {I::Langelier, 0},       {I::Langelier, 0.5},        {I::Langelier, 1},
        {I::Langelier, 2},       {I::Langelier, 3},          {I::Langelier, 4},
        {I::Ryznar, 5.5},        {I::Ryznar, 6.2},           {I::Ryznar, 6.8},
        {I::Ryznar, 8.5},        {I::Puckorius, 5.9},        {I::Puckorius, 6.1},
        {I::Aggressiveness, 10}, {I::Aggressiveness, 12},    {I::DrivingForce, 0.98},
        {I::DrivingForce, 1.02}, {I::SaturationLevel, 0.98}, {I::SaturationLevel, 1.02},
    });
    return set == CrossingSet::Neutral ? neutral : table;
}

std::optional<double> sweepIndexAt(const Engine& e, SweepIndex index, double ph) {
    if (!std::isfinite(ph)) return std::nullopt;
    const SweepModel m = sweepModel(e);
    const SweepPoint pt = sweepPoint(m, ph);
    if (!pt.valid) return std::nullopt;
    const double alk = pt.alk < 0 ? pt.alkLow : pt.alk;
    if (usesAlkalinity(index) && !(alk > 0)) return std::nullopt;
    const double v = indexValue(m, index, ph, pt.co3, alk);
    if (!std::isfinite(v)) return std::nullopt;
    return v;
}

std::optional<PhRange> sweptRange(const Engine& e, const CalcOutcome& out) {
    if (!out.computed) return std::nullopt;
    int count = out.sweepError ? out.sweepErrorPoint - 1 : out.sweepPoints;
    count = std::min(count, PointArray::kSize - 1);
    if (count < 1) return std::nullopt;
    const double first = e.sw.ph(1), last = e.sw.ph(count);
    if (!std::isfinite(first) || !std::isfinite(last)) return std::nullopt;
    return PhRange{std::min(first, last), std::max(first, last)};
}

std::optional<double> crossingPh(const Engine& e, const Threshold& t, const PhRange& range) {
    if (!(range.lo <= range.hi) || !std::isfinite(range.lo) || !std::isfinite(range.hi))
        return std::nullopt;
    const SweepModel m = sweepModel(e);
    return crossingIn(m, t, range, risingValue(m, t.index, range.lo),
                      risingValue(m, t.index, range.hi));
}

std::vector<std::optional<double>> findCrossings(const Engine& e, const CalcOutcome& outcome,
                                                 CrossingSet set) {
    const std::vector<Threshold>& list = crossingThresholds(set);
    std::vector<std::optional<double>> out(list.size());
    const auto range = sweptRange(e, outcome);
    if (!range) return out;
    const SweepModel m = sweepModel(e);
    // the ends of the range, once per index
    constexpr int kIndices = 6;
    double atLo[kIndices], atHi[kIndices];
    for (int i = 0; i < kIndices; ++i) {
        atLo[i] = risingValue(m, static_cast<SweepIndex>(i), range->lo);
        atHi[i] = risingValue(m, static_cast<SweepIndex>(i), range->hi);
    }
    for (std::size_t k = 0; k < list.size(); ++k) {
        const int i = static_cast<int>(list[k].index);
        out[k] = crossingIn(m, list[k], *range, atLo[i], atHi[i]);
    }
    return out;
}

} // namespace velmora
