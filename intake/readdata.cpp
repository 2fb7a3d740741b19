#include "intake/readdata.h"

#include "numtext/numtext.h"

#include <cmath>

namespace velmora {

namespace {

constexpr const char* kTitle = "Velmora";
constexpr const char* kLangelierMessage = "you Should enter TDS,T,pH,Ca and Alk values at least !";
constexpr const char* kRussellMessage = "you Should enter ec,T,pH,Ca and Alk values at least !";
constexpr const char* kLewisMessage = "you Should enter T,pH,Ca and Alk values at least !";
constexpr const char* kAlkalinityMessage =
    "you Should enter TDS,T,pH,Ca and Alk values at least ! !";
constexpr const char* kAlkalinityTitle = "Velmora!!";

ReadDataResult stop(const char* text, const char* title = kTitle) {
    ReadDataResult r;
    r.outcome = ReadDataResult::Outcome::Message;
    r.messageText = text;
    r.messageTitle = title;
    return r;
}

// The leading-number reading of a box; a number too large for a double is
// an overflow rather than a value.
double value(const AnalysisValues::Box& box, const char* name) {
    const double v = box.value;
    if (!std::isfinite(v))
        throw EngineError(EngineError::Kind::Overflow,
                          std::string(EngineError::kindText(EngineError::Kind::Overflow)) + " in " +
                              name);
    return v;
}

double finite(double v, const char* what) {
    if (!std::isfinite(v))
        throw EngineError(EngineError::Kind::Overflow,
                          std::string(EngineError::kindText(EngineError::Kind::Overflow)) + " in " +
                              what);
    return v;
}

} // namespace

AnalysisValues analysisValues(const AnalysisTexts& b) {
    auto box = [](const std::string& text) {
        return AnalysisValues::Box{text.empty(), fmt::leadingNumber(text)};
    };
    return {box(b.tds), box(b.ec),  box(b.t),   box(b.ph), box(b.alk), box(b.ca), box(b.mg),
            box(b.k),   box(b.na),  box(b.zn),  box(b.mn), box(b.fe),  box(b.al), box(b.hco3),
            box(b.co3), box(b.no2), box(b.no3), box(b.f),  box(b.cl),  box(b.so4)};
}

ReadDataResult readAnalysis(Engine& engine, const AnalysisTexts& b, EquationFlags& flags,
                            bool bllr) {
    return readAnalysis(engine, analysisValues(b), flags, bllr, windowInputs(b));
}

ReadDataResult readAnalysis(Engine& engine, const AnalysisValues& b, EquationFlags& flags,
                            bool bllr, const WindowInputs& in) {
    AnalysisRecord& r = engine.rec;
    const bool basicMissing = b.t.empty || b.alk.empty || b.ph.empty || b.ca.empty;

    // the three equation branches, each on its own
    if (flags.bllang) {
        if (basicMissing) return stop(kLangelierMessage);
        r.tds = value(b.tds, "dissolved solids (txttds)");
    }
    if (flags.blrus) {
        if (b.ec.empty) return stop(kRussellMessage);
        const double ec = value(b.ec, "conductivity (txtec)");
        const double ec100 = finite(ec * 100, "conductivity x 100");
        r.ec = ec;
        r.ec100 = ec100;
    }
    if (flags.bllewis && basicMissing) return stop(kLewisMessage);

    if (b.t.empty) return stop(kLangelierMessage);
    {
        const double temp = value(b.t, "temperature (txtt)");
        const double tk = finite(temp + 273.15, "absolute temperature");
        r.temp = temp;
        r.tk = tk;
    }
    if (b.ca.empty) return stop(kLangelierMessage);
    r.ca = value(b.ca, "calcium (txtca)");
    if (b.alk.empty) return stop(kAlkalinityMessage, kAlkalinityTitle);
    r.alkin = value(b.alk, "alkalinity (txtalk)");

    if (bllr) {
        r.so4 = value(b.so4, "sulphate (txtso4)");
        r.cl = value(b.cl, "chloride (txtcl)");
    }
    if (flags.bllewis) {
        r.mg = value(b.mg, "magnesium (txtmg)");
        r.al = value(b.al, "aluminium (txtal)");
        r.fe = value(b.fe, "iron (txtfe)");
        r.mn = value(b.mn, "manganese (txtmn)");
        r.zn = value(b.zn, "zinc (txtzn)");
        r.so4 = value(b.so4, "sulphate (txtso4)");
        r.cl = value(b.cl, "chloride (txtcl)");
        r.f = value(b.f, "fluoride (txtf)");
        r.na = value(b.na, "sodium (txtna)");
        r.no3 = value(b.no3, "nitrate (txtno3)");
        r.no2 = value(b.no2, "nitrite (txtno2)");
        r.k = value(b.k, "potassium (txtk)");
        r.co3in = value(b.co3, "carbonate (txtco3)");
        r.hco3in = value(b.hco3, "bicarbonate (txthco3)");
        engine.convertmolar();
    }

    engine.ionicactivity(flags);
    engine.ionbalance(flags, in);

    ReadDataResult result;
    result.outcome =
        r.accuracyok ? ReadDataResult::Outcome::Accepted : ReadDataResult::Outcome::Rejected;
    return result;
}

WindowInputs windowInputs(const AnalysisTexts& boxes) {
    WindowInputs in;
    in.phText = boxes.ph;
    in.hco3Empty = boxes.hco3.empty();
    in.co3Empty = boxes.co3.empty();
    return in;
}

std::optional<std::string> checkBoxText(std::string_view text, bool isPh) {
    double value;
    switch (readBoxText(text, isPh, value)) {
    case BoxCheck::NotANumber:
        return std::string(kNotANumberMessage);
    case BoxCheck::PhOutOfRange:
        return std::string(kPhRangeMessage);
    case BoxCheck::Empty:
    case BoxCheck::Number:
        break;
    }
    return std::nullopt;
}

} // namespace velmora
