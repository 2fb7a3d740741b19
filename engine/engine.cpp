#include "engine/engine.h"

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <optional>
#include <type_traits>

namespace velmora {

// ---------------------------------------------------------------------------
EngineError::EngineError(Kind kind, const std::string& what)
    : std::runtime_error(what), kind_(kind) {}

const char* EngineError::kindText(Kind kind) {
    switch (kind) {
    case Kind::LogOfNonPositive:
        return "logarithm of a non-positive number";
    case Kind::SqrtOfNegative:
        return "square root of a negative number";
    case Kind::DivisionByZero:
        return "division by zero";
    case Kind::Overflow:
        return "overflow";
    case Kind::IndexOutOfRange:
        return "pH point index outside 0 to 140";
    case Kind::BadConversion:
        return "text is not a number";
    }
    return "run-time error";
}

namespace {

// Out of line and cold: the checks below stay a compare and a branch.
[[noreturn, gnu::cold, gnu::noinline]] void fail(EngineError::Kind kind, const char* what) {
    throw EngineError(kind, std::string(EngineError::kindText(kind)) + " in " + what);
}

// Every stored result passes through here: nothing infinite or NaN is kept.
double F(double x, const char* what) {
    if (!std::isfinite(x)) fail(EngineError::Kind::Overflow, what);
    return x;
}

double D(double a, double b, const char* what) {
    if (b == 0.0) fail(EngineError::Kind::DivisionByZero, what);
    return F(a / b, what);
}

double Log10(double x, const char* what) {
    if (std::isnan(x) || x <= 0.0) fail(EngineError::Kind::LogOfNonPositive, what);
    return F(std::log10(x), what);
}

double Sqrt(double x, const char* what) {
    if (std::isnan(x) || x < 0.0) fail(EngineError::Kind::SqrtOfNegative, what);
    return F(std::sqrt(x), what);
}

double Pow10(double x, const char* what) {
    return F(std::pow(10.0, F(x, what)), what);
}

double Exp(double x, const char* what) {
    return F(std::exp(F(x, what)), what);
}

// A real power of a base; a fractional power of a negative base is a root of
// a negative number, and a negative power of zero a division by zero.
double Pow(double base, double e, const char* what) {
    if (base < 0.0 && std::trunc(e) != e) fail(EngineError::Kind::SqrtOfNegative, what);
    if (base == 0.0 && e < 0.0) fail(EngineError::Kind::DivisionByZero, what);
    return F(std::pow(base, e), what);
}

// Thermodynamic constants at 25 degrees Celsius and their reaction enthalpies
// (cal/mol); the temperature correction is the van 't Hoff term with the
// gas constant 1.987 cal/(mol K) times the reference temperature 298.15 K.
constexpr double kRT25 = 592.42405;
constexpr double kH1 = 1820, kH2 = 3550, kHw = 13360, kHs = -2950;

// The powers of ten of the constants at 25 degrees Celsius. They never vary,
// so they are taken once, from the same library call at run time (the
// volatile keeps the compiler from evaluating them its own way).
double pow10AtRunTime(double x) {
    volatile double e = x;
    return F(std::pow(10.0, e), "constant");
}
struct ConstantsAt25 {
    double k1, k2, kw, ks;
};
const ConstantsAt25& constantsAt25() {
    static const ConstantsAt25 c = {pow10AtRunTime(-6.35), pow10AtRunTime(-10.33),
                                    pow10AtRunTime(-14), pow10AtRunTime(-9)};
    return c;
}

// Round to the nearest integer, halves to even.
double roundEven(double x) {
    const int saved = std::fegetround();
    std::fesetround(FE_TONEAREST);
    const double r = std::nearbyint(x);
    std::fesetround(saved);
    return r;
}

} // namespace

void EntryNumber::fail() const {
    throw EngineError(EngineError::Kind::BadConversion, message_);
}

void PointArray::outOfRange(int i) {
    throw EngineError(EngineError::Kind::IndexOutOfRange,
                      "pH point index " + std::to_string(i) + " outside 0 to 140");
}

Engine& theEngine() {
    static Engine engine;
    return engine;
}

// ---------------------------------------------------------------------------
// Conversion of the analysis to molar units.

void Engine::convertmolar() {
    AnalysisRecord& r = rec;
    r.mca = F(r.ca / 40080, "calcium (mol/L)");
    r.mmg = F(r.mg / 24305, "magnesium (mol/L)");
    r.mk = F(r.k / 39098, "potassium (mol/L)");
    r.mna = F(r.na / 22990, "sodium (mol/L)");
    r.mzn = F(r.zn / 65390, "zinc (mol/L)");
    r.mal = F(r.al / 26982, "aluminium (mol/L)");
    r.mfe = F(r.fe / 55845, "iron (mol/L)");
    r.mmn = F(r.mn / 54938, "manganese (mol/L)");
    r.mcl = F(r.cl / 35453, "chloride (mol/L)");
    r.mf = F(r.f / 18998, "fluoride (mol/L)");
    r.mno3 = F(r.no3 / 62004, "nitrate (mol/L)");
    r.mno2 = F(r.no2 / 46005, "nitrite (mol/L)");
    r.mso4 = F(r.so4 / 96061, "sulphate (mol/L)");
    // carbonate and bicarbonate go through the alkalinity factor 50.45 and
    // 30 or 60 times the molar mass of calcium carbonate
    r.mco3 = F(F(r.co3in * 50.45, "carbonate (mol/L)") / 3.0027e6, "carbonate (mol/L)");
    r.mhco3 = F(F(r.hco3in * 50.45, "bicarbonate (mol/L)") / 6.0054e6, "bicarbonate (mol/L)");
}

void Engine::prepareanalysis() {
    AnalysisRecord& r = rec;
    r.mca = F(r.ca / 40080, "calcium (mol/L)");
    r.mmg = F(r.mg / 24305, "magnesium (mol/L)");
    sw.alk(sw.ipoint) = F(r.alkin / 100090, "alkalinity (mol/L)");
    r.tk = F(r.temp + 273.15, "absolute temperature");
    r.hardness = F(2.497 * r.ca + 4.118 * r.mg, "total hardness");
}

// ---------------------------------------------------------------------------
// Ionic strength and activity coefficients.

void Engine::ionicactivity(EquationFlags& flags) {
    AnalysisRecord& r = rec;
    if (!flags.bllewis && !flags.bllang && !flags.blrus) flags.bllang = true;

    double I = r.ionic;
    if (flags.bllewis) {
        const char* what = "ionic strength (Lewis and Randall)";
        I = F(0.5 * F(4 * r.mca + 4 * r.mmg + r.mk + r.mna + 4 * r.mzn + 9 * r.mal + 9 * r.mfe +
                          4 * r.mmn + r.mcl + r.mf + r.mno3 + r.mno2 + 4 * r.mso4 + 4 * r.mco3 +
                          r.mhco3,
                      what),
              what);
        r.ionic = I;
        r.tds = F(r.ca + r.cl + r.f + r.mg + r.no3 + r.no2 + r.k + r.na + r.so4 + r.zn + r.al +
                      r.fe + r.mn + r.co3in + r.hco3in,
                  "sum of the ions (TDS)");
    }
    if (flags.bllang) {
        I = F(2.5e-5 * r.tds, "ionic strength (Langelier)");
        r.ionic = I;
    }
    if (flags.blrus) {
        I = F(1.6e-5 * r.ec100, "ionic strength (Russell)");
        r.ionic = I;
    }

    if (!flags.bldavies && !flags.bldebye) flags.bldebye = true;

    if (flags.bldavies) {
        r.eps = 78.3;
        r.adav = F(1.82e6 * Pow(F(78.3 * r.tk, "Davies constant"), -1.5, "Davies constant"),
                   "Davies constant");
        const double s = Sqrt(I, "ionic strength (square root)");
        r.dterm = F(D(s, 1 + s, "Davies term") - 0.2 * I, "Davies term");
        const double loglanm = F(-r.adav * 1 * r.dterm, "activity coefficient (Davies)");
        r.lanm = Pow10(loglanm, "monovalent activity coefficient");
        r.land = Pow10(4 * loglanm, "divalent activity coefficient");
        r.lant = Pow10(9 * loglanm, "trivalent activity coefficient");
    }
    if (flags.bldebye) {
        const double s = Sqrt(I, "ionic strength (square root)");
        if (const double* kept = limitingLaw_.find(s)) {
            r.lanm = kept[0], r.land = kept[1], r.lant = kept[2];
        } else {
            r.lanm = Pow10(-(1 * 0.5 * s), "monovalent activity coefficient");
            r.land = Pow10(-(4 * 0.5 * s), "divalent activity coefficient");
            r.lant = Pow10(-(9 * 0.5 * s), "trivalent activity coefficient");
            limitingLaw_.keep({r.lanm, r.land, r.lant});
        }
    }
    if (flags.bledebye) {
        const double s = Sqrt(I, "ionic strength (square root)");
        const double den = 1.14 * s + 1;
        r.lanm = Pow10(D(-(1 * 0.5 * s), den, "extended Debye-Huckel"),
                       "monovalent activity coefficient");
        r.land =
            Pow10(D(-(4 * 0.5 * s), den, "extended Debye-Huckel"), "divalent activity coefficient");
        r.lant = Pow10(D(-(9 * 0.5 * s), den, "extended Debye-Huckel"),
                       "trivalent activity coefficient");
    }
    if (flags.blgun) {
        const double s = Sqrt(I, "ionic strength (square root)");
        const double den = s + 1;
        r.lanm = Pow10(D(-(1 * 0.5 * s), den, "Guntelberg"), "monovalent activity coefficient");
        r.land = Pow10(D(-(4 * 0.5 * s), den, "Guntelberg"), "divalent activity coefficient");
        r.lant = Pow10(D(-(9 * 0.5 * s), den, "Guntelberg"), "trivalent activity coefficient");
    }
}

// ---------------------------------------------------------------------------
// Carbonate equilibrium and saturation pH.

void Engine::equilibriumconstants() {
    AnalysisRecord& r = rec;
    const int i = sw.ipoint;
    if (sweeping_) {
        // everything but the pH's own terms is as the measured point left it
        sw.alk(i) = swept_.alk;
        pointfractions(i, swept_.k1k2);
        return;
    }
    prepareanalysis();

    // the constants at this temperature, as computed the last time it was
    // met (a run of samples meets the same temperatures again and again)
    if (const double* k = temperatures_.find(r.tk)) {
        r.k1 = k[0], r.k2 = k[1], r.kw = k[2], r.ks = k[3];
        r.pk1 = k[4], r.pk2 = k[5], r.pkw = k[6], r.pks = k[7];
    } else {
        const double dt = F(r.tk - 298.15, "temperature correction");
        const double rt = F(r.tk * kRT25, "temperature correction");
        const ConstantsAt25& at25 = constantsAt25();
        r.k1 = F(at25.k1 * Exp(D(kH1, rt, "k1") * dt, "k1"), "k1");
        r.k2 = F(at25.k2 * Exp(D(kH2, rt, "k2") * dt, "k2"), "k2");
        r.kw = F(at25.kw * Exp(D(kHw, rt, "kw") * dt, "kw"), "kw");
        r.ks = F(4.8 * at25.ks * Exp(D(kHs, rt, "ks") * dt, "ks"), "ks");

        r.pk1 = -Log10(r.k1, "pk1");
        r.pk2 = -Log10(r.k2, "pk2");
        r.pkw = -Log10(r.kw, "pkw");
        r.pks = -Log10(r.ks, "pks");
        temperatures_.keep({r.k1, r.k2, r.kw, r.ks, r.pk1, r.pk2, r.pkw, r.pks});
    }

    sw.ch(i) = hydrogen(sw.ph(i));
    sw.oh(i) = D(r.kw, sw.ch(i), "hydroxide concentration");

    const double lanm2 = F(r.lanm * r.lanm, "activity correction");
    r.ck1 = D(r.k1, lanm2, "corrected k1");
    r.ck2 = D(r.k2, r.land, "corrected k2");
    r.ckw = D(r.kw, lanm2, "corrected kw");
    r.cks = D(r.ks, F(r.land * r.land, "corrected ks"), "corrected ks");

    r.pck1 = -Log10(r.ck1, "pck1");
    r.pck2 = -Log10(r.ck2, "pck2");
    r.pckw = -Log10(r.ckw, "pckw");
    r.pcks = -Log10(r.cks, "pcks");
    r.pca = -Log10(r.mca, "pCa (calcium)");

    const double k1k2 = F(r.ck1 * r.ck2, "ionisation fractions");
    swept_.alk = sw.alk(i);
    swept_.k1k2 = k1k2;
    pointfractions(i, k1k2);
}

double Engine::hydrogen(double ph) {
    if (const double* h = hydrogen_.find(ph)) return *h;
    const double h = Pow10(-ph, "hydrogen-ion concentration");
    hydrogen_.keep({h});
    return h;
}

void Engine::pointfractions(int i, double k1k2) {
    const AnalysisRecord& r = rec;
    if (sweeping_) {
        sw.ch(i) = hydrogen(sw.ph(i));
        sw.oh(i) = D(r.kw, sw.ch(i), "hydroxide concentration");
    }
    const double h = sw.ch(i);
    const double h2 = F(h * h, "ionisation fractions");
    sw.a0(i) = D(1, F(1 + D(r.ck1, h, "a0") + D(k1k2, h2, "a0"), "a0"), "a0");
    sw.a1(i) = D(1, F(D(h, r.ck1, "a1") + 1 + D(r.ck2, h, "a1"), "a1"), "a1");
    sw.a2(i) = D(1, F(D(h2, k1k2, "a2") + D(h, r.ck2, "a2") + 1, "a2"), "a2");
}

void Engine::computepoint(const EquationFlags& flags, const CalcInputs& in) {
    equilibriumconstants();
    AnalysisRecord& r = rec;
    const int i = sw.ipoint;
    const double h = sw.ch(i);

    // carbonate system: the measured point fixes the total carbonate, every
    // other pH redistributes it
    const bool measured = sw.ph(i) == sw.ph(0);
    if (measured) {
        sw.ctnum(i) = F(h + F(2 * sw.alk(i) - D(r.ckw, h, "total carbonate"), "total carbonate"),
                        "total carbonate");
        sw.ctden(i) =
            F(D(r.ck1, h, "total carbonate") + D(F(2 * r.ck1 * r.ck2, "total carbonate"),
                                                 F(h * h, "total carbonate"), "total carbonate"),
              "total carbonate");
        sw.ct = D(sw.ctnum(i), F(sw.a0(i) * sw.ctden(i), "total carbonate"), "total carbonate");
        sw.h2co3(i) = F(sw.ct * sw.a0(i), "H2CO3");
    } else {
        sw.h2co3(i) = F(sw.ct * sw.a0(i), "H2CO3");
        sw.hco3(i) = F(sw.ct * sw.a1(i), "HCO3");
        sw.co3(i) = F(sw.ct * sw.a2(i), "CO3");
        double a = F(0.5 * sw.hco3(i) + sw.co3(i) + 0.5 * sw.oh(i) - 0.5 * h, "alkalinity");
        if (a < 0) a = F(0.5 * sw.hco3(i) + sw.co3(i) + 0.5 * sw.oh(i), "alkalinity");
        sw.alk(i) = a;
    }

    if (measured && flags.bllewis) {
        sw.hco3(i) = in.hco3Empty ? F(sw.ct * sw.a1(i), "HCO3") : r.mhco3;
        sw.co3(i) = !in.co3Empty ? r.mco3 : F(sw.ct * sw.a2(i), "CO3");
    } else {
        sw.hco3(i) = F(sw.ct * sw.a1(i), "HCO3");
        sw.co3(i) = F(sw.ct * sw.a2(i), "CO3");
    }

    sw.alkt(i) = F(2 * sw.alk(i), "alkalinity (eq/L)");
    sw.palk(i) = -Log10(sw.alkt(i), "pAlk (alkalinity)");

    // saturation pH; the activity term is added as log lanm
    if (!sweeping_) {
        swept_.phsBase = F(r.pck2 + r.pca, "saturation pH") - r.pcks;
        swept_.logLanm = -Log10(r.lanm, "saturation pH (activity)");
    }
    sw.phs(i) =
        F(F(swept_.phsBase + sw.palk(i), "saturation pH") - swept_.logLanm, "saturation pH");

    // the eight indices
    const double ph = sw.ph(i);
    sw.li(i) = F(ph - sw.phs(i), "Langelier index");
    sw.ri(i) = F(2 * sw.phs(i) - ph, "Ryznar index");
    sw.alkmg(i) = F(sw.alk(i) * 100.09 * 1000, "alkalinity (mg/L)");
    sw.pheq(i) =
        F(1.465 * Log10(sw.alkmg(i), "equilibrium pH (alkalinity)") + 4.54, "equilibrium pH");
    sw.por(i) = F(2 * sw.phs(i) - sw.pheq(i), "Puckorius index");
    sw.alkeq(i) = F(sw.alkmg(i) / 50045, "alkalinity (eq/L)");
    if (!sweeping_) r.cahard = F(r.ca * 50 / 20.04, "calcium hardness");
    sw.co3dfi(i) = F(sw.co3(i) * 30 / 60, "driving force index");
    sw.dfi(i) = D(F(r.mca * sw.co3dfi(i), "driving force index"), r.cks, "driving force index");

    sw.qa = 1.0;
    const double x = F(sw.alkeq(i) + h - D(r.ckw, h, "momentary excess"), "momentary excess");
    const double den = F(h + 2 * r.ck2, "momentary excess");
    const double t = D(F(r.ck2 * x, "momentary excess"), den, "momentary excess");
    sw.qb(i) = F(-r.mca - t, "momentary excess");
    sw.qc(i) = F(D(F(r.ck2 * r.mca * x, "momentary excess"), den, "momentary excess") - r.cks,
                 "momentary excess");
    const double disc =
        F(sw.qb(i) * sw.qb(i) - 4 * sw.qa * sw.qc(i), "momentary excess (discriminant)");
    sw.me(i) = F((-sw.qb(i) - Sqrt(disc, "momentary excess (discriminant)")) / 2 * sw.qa,
                 "momentary excess");

    sw.ai(i) = F(Log10(F(sw.alkmg(i) * r.cahard, "aggressiveness index"),
                       "aggressiveness index (alkalinity x calcium hardness)") +
                     ph,
                 "aggressiveness index");
    if (!sweeping_) {
        sw.clmeq = F(r.cl / 35.453, "chloride (meq/L)");
        sw.so4meq = F(r.so4 / (96.061 / 2), "sulphate (meq/L)");
    }
    sw.hco3meq(i) = F(sw.hco3(i) * 61000 / 61, "bicarbonate (meq/L)");
    if (!sweeping_) swept_.lrSum = F(sw.so4meq + sw.clmeq, "Larson-Skold index");
    sw.lr(i) = D(swept_.lrSum, sw.hco3meq(i), "Larson-Skold index (bicarbonate)");
    if (!sweeping_) swept_.landMca = F(r.land * r.mca, "saturation level");
    sw.sl(i) = D(
        F(swept_.landMca * F(r.land * sw.co3(i) * 30 / 50, "saturation level"), "saturation level"),
        r.cks, "saturation level");

    if (observer_) observer_->pointCompleted(in.sweep);
}

// ---------------------------------------------------------------------------
// Ion balance.

void Engine::ionbalance(const EquationFlags& flags, const CalcInputs& in) {
    AnalysisRecord& r = rec;
    if (!flags.bllewis) {
        r.accuracyok = true;
    } else {
        r.meqmg = F(r.mg / 12.15, "magnesium (meq/L)");
        r.meqca = F(r.ca / 20.1, "calcium (meq/L)");
        r.meqal = F(r.al / (26.982 / 3), "aluminium (meq/L)");
        r.meqfe = F(r.fe / (55.845 / 3), "iron (meq/L)");
        r.meqmn = F(r.mn / (54.983 / 2), "manganese (meq/L)");
        r.meqzn = F(r.zn / (65.39 / 2), "zinc (meq/L)");
        r.meqso4 = F(r.so4 / (96.061 / 2), "sulphate (meq/L)");
        r.meqcl = F(r.cl / 35.453, "chloride (meq/L)");
        r.meqf = F(r.f / 18.998, "fluoride (meq/L)");
        r.meqna = F(r.na / 22.99, "sodium (meq/L)");
        r.meqno3 = F(r.no3 / 62.004, "nitrate (meq/L)");
        r.meqno2 = F(r.no2 / 46.005, "nitrite (meq/L)");
        r.meqk = F(r.k / 39.098, "potassium (meq/L)");

        // carbonate or bicarbonate not entered: from the alkalinity at point 1
        auto carbonateAtPoint1 = [&]() {
            sw.ipoint = 1;
            if (written_ < 1) written_ = 1;
            sw.ph(1) = in.phStrict.read();
            equilibriumconstants();
            const double h = sw.ch(1);
            sw.ctnum(1) =
                F(h + F(2 * sw.alk(1) - D(r.ckw, h, "total carbonate"), "total carbonate"),
                  "total carbonate");
            sw.ctden(1) = F(D(r.ck1, h, "total carbonate") +
                                D(F(2 * r.ck1 * r.ck2, "total carbonate"),
                                  F(h * h, "total carbonate"), "total carbonate"),
                            "total carbonate");
            sw.ct = D(sw.ctnum(1), F(sw.ctden(1) * sw.a0(1), "total carbonate"), "total carbonate");
        };
        if (in.co3Empty) {
            carbonateAtPoint1();
            sw.co3(1) = F(sw.ct * sw.a2(1), "CO3");
            r.meqco3 = F(sw.co3(1) * 60 * 1000 / (60.0 / 2), "carbonate (meq/L)");
            sw.ipoint = 2;
        } else {
            r.meqco3 = F(r.co3in / (60.0 / 2), "carbonate (meq/L)");
        }
        if (in.hco3Empty) {
            carbonateAtPoint1();
            sw.hco3(1) = F(sw.ct * sw.a1(1), "HCO3");
            r.meqhco3 = F(sw.hco3(1) * 61 * 1000 / 61, "bicarbonate (meq/L)");
            sw.ipoint = 2;
        } else {
            r.meqhco3 = F(r.hco3in / 61, "bicarbonate (meq/L)");
        }

        r.sumca = F(r.meqca + r.meqmg + r.meqal + r.meqfe + r.meqmn + r.meqzn + r.meqna + r.meqk,
                    "sum of cations");
        r.suman = F(r.meqcl + r.meqso4 + r.meqf + r.meqno3 + r.meqno2 + r.meqco3 + r.meqhco3,
                    "sum of anions");
        r.diff = F(D(r.sumca - r.suman, r.suman + r.sumca, "percent difference") * 100,
                   "percent difference");

        // verdict by the anion sum; a sum on a band edge is decided by the later band
        struct Band {
            double lo, hi, limit;
        };
        static constexpr Band bands[] = {{0, 3, 0.2}, {3, 10, 2}, {10, 800, 5}};
        for (const Band& b : bands) {
            if (r.suman >= b.lo && r.suman <= b.hi) {
                const bool ok = -b.limit <= r.diff && r.diff <= b.limit;
                r.accuracyok = ok;
                if (observer_) observer_->ionBalanceJudged(ok);
            }
        }
    }
    if (observer_) observer_->ionBalanceDone();
}

// ---------------------------------------------------------------------------
// The calculation run.

namespace {

// Every per-point array, for what is done to all of them.
constexpr PointArray SweepArrays::*kArrays[] = {
    &SweepArrays::ph,    &SweepArrays::ch,      &SweepArrays::oh,     &SweepArrays::a0,
    &SweepArrays::a1,    &SweepArrays::a2,      &SweepArrays::ctnum,  &SweepArrays::ctden,
    &SweepArrays::h2co3, &SweepArrays::hco3,    &SweepArrays::co3,    &SweepArrays::alk,
    &SweepArrays::alkmg, &SweepArrays::alkeq,   &SweepArrays::alkt,   &SweepArrays::palk,
    &SweepArrays::phs,   &SweepArrays::pheq,    &SweepArrays::li,     &SweepArrays::ri,
    &SweepArrays::por,   &SweepArrays::ai,      &SweepArrays::dfi,    &SweepArrays::lr,
    &SweepArrays::me,    &SweepArrays::sl,      &SweepArrays::co3dfi, &SweepArrays::qb,
    &SweepArrays::qc,    &SweepArrays::hco3meq,
};
constexpr std::size_t kArrayCount = std::size(kArrays);
// ct, qa, clmeq, so4meq, phstart, phincrement, phsteps and ipoint
static_assert(sizeof(SweepArrays) == kArrayCount * sizeof(PointArray) + 8 * sizeof(double),
              "SweepArrays changed: update kArrays, Engine::Saved and Engine::reset");
// A point array is its 141 doubles and nothing else, element 0 first.
static_assert(std::is_standard_layout_v<PointArray> && std::is_trivially_copyable_v<PointArray> &&
              sizeof(PointArray) == PointArray::kSize * sizeof(double));

} // namespace

struct Engine::Saved {
    AnalysisRecord rec;
    double ct, qa, clmeq, so4meq, phstart, phincrement, phsteps;
    std::int16_t ipoint;
    double points[kArrayCount][2]; // elements 0 and 1 of each array
};

void Engine::save(Saved& s) const {
    s.rec = rec;
    s.ct = sw.ct, s.qa = sw.qa, s.clmeq = sw.clmeq, s.so4meq = sw.so4meq;
    s.phstart = sw.phstart, s.phincrement = sw.phincrement, s.phsteps = sw.phsteps;
    s.ipoint = sw.ipoint;
#pragma GCC unroll 30
    for (std::size_t a = 0; a < kArrayCount; ++a)
        std::memcpy(s.points[a], static_cast<const void*>(&(sw.*kArrays[a])), 2 * sizeof(double));
}

void Engine::restore(const Saved& s) {
    rec = s.rec;
    sw.ct = s.ct, sw.qa = s.qa, sw.clmeq = s.clmeq, sw.so4meq = s.so4meq;
    sw.phstart = s.phstart, sw.phincrement = s.phincrement, sw.phsteps = s.phsteps;
    sw.ipoint = s.ipoint;
    for (std::size_t a = 0; a < kArrayCount; ++a)
        std::memcpy(static_cast<void*>(&(sw.*kArrays[a])), s.points[a], 2 * sizeof(double));
}

void Engine::reset() {
    rec = AnalysisRecord{};
    // every element above written_ is still as the last reset left it
    // (a fixed size clears the first four elements in a store or two instead
    // of a call for each array; unrolled, each array's place is a constant)
    if (written_ < 4) {
#pragma GCC unroll 30
        for (auto a : kArrays)
            std::memset(static_cast<void*>(&(sw.*a)), 0, 4 * sizeof(double));
    } else {
        for (auto a : kArrays)
            std::memset(static_cast<void*>(&(sw.*a)), 0,
                        sizeof(double) * static_cast<std::size_t>(written_ + 1));
    }
    sw.ct = sw.qa = sw.clmeq = sw.so4meq = 0;
    sw.phstart = sw.phincrement = sw.phsteps = 0;
    sw.ipoint = 0;
    written_ = 0;
}

void Engine::copyMeasuredPoint() {
    PointArray* copied[] = {&sw.li,  &sw.ri, &sw.dfi, &sw.me,    &sw.sl,  &sw.ai,
                            &sw.por, &sw.lr, &sw.a0,  &sw.a1,    &sw.a2,  &sw.co3,
                            &sw.oh,  &sw.ch, &sw.phs, &sw.h2co3, &sw.hco3};
    for (PointArray* a : copied)
        (*a)(0) = (*a)(1);
}

CalcOutcome Engine::calculate(const EquationFlags& flags, const CalcInputs& in) {
    CalcOutcome out;
    if (!in.sweep && in.phEmpty) {
        if (observer_)
            observer_->message("you Should enter TDS,T,pH,Mg,Ca and Alk values at least !",
                               "Velmora", MessageIcon::None);
        return out;
    }

    // a failure before the sweep leaves everything as it was
    std::optional<Saved> saved;
    if (restoreOnFailure_) save(saved.emplace());
    if (written_ < 1) written_ = 1;
    try {
        if (in.sweep) {
            sw.phstart = in.sweepStart.read();
            sw.phincrement = in.sweepIncrement.read();
            sw.phsteps = in.sweepSteps.read();
        }

        // the measured point, into element 1 and copied to element 0
        sw.ipoint = 1;
        sw.ph(1) = F(in.ph, "measured pH");
        sw.ph(0) = sw.ph(1);
        computepoint(flags, in);
    } catch (...) {
        if (saved) restore(*saved);
        throw;
    }
    copyMeasuredPoint();
    sw.ipoint = 2;
    out.computed = true;

    if (!in.sweep) {
        if (observer_) observer_->measuredPointReady();
    } else {
        const double n = roundEven(sw.phsteps);
        out.sweepPoints = n > 1e6 ? 1000000 : (n < 0 ? 0 : static_cast<int>(n));
        // a point past the end of the arrays stops the sweep long before
        // the 16-bit point counter could run out
        sw.ipoint = 1; // an empty sweep leaves the counter at its start
        // The analysis does not change during the sweep: what does not depend
        // on pH is taken from the measured point, computed there by the same
        // operations (and with its errors, which would have stopped the run).
        struct Sweeping {
            bool& flag;
            ~Sweeping() { flag = false; }
        } sweeping{sweeping_};
        sweeping_ = true;
        for (int p = 1; p <= n; ++p) {
            sw.ipoint = static_cast<std::int16_t>(p);
            try {
                sw.ph(p) = sw.phstart;
                computepoint(flags, in);
                sw.phstart = F(sw.phincrement + sw.ph(p), "next sweep pH");
            } catch (const EngineError& e) {
                out.sweepError = e;
                out.sweepErrorPoint = p;
                break;
            }
            if (p == n) sw.ipoint = static_cast<std::int16_t>(p + 1);
        }
        written_ = std::max(written_, std::min<int>(sw.ipoint, PointArray::kSize - 1));
    }

    // final check; past the end of the arrays there is nothing to read
    const int last = sw.ipoint;
    if (last >= 0 && last < PointArray::kSize && sw.ph(last) == 15.0 && observer_)
        observer_->message("there are not ralationship between alkalinity and pH value!", "Velmora",
                           MessageIcon::Information);
    return out;
}

} // namespace velmora
