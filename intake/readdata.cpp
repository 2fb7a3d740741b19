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
double value(const BoxValue& box, const char* name) {
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
    AnalysisValues v;
    for (std::size_t i = 0; i < kFieldCount; ++i)
        v.of[i] = BoxValue{b.of[i].empty(), fmt::leadingNumber(b.of[i])};
    return v;
}

ReadDataResult readAnalysis(Engine& engine, const AnalysisTexts& b, EquationFlags& flags,
                            bool bllr) {
    return readAnalysis(engine, analysisValues(b), flags, bllr, calcInputs(b));
}

ReadDataResult readAnalysis(Engine& engine, const AnalysisValues& b, EquationFlags& flags,
                            bool bllr, const CalcInputs& in) {
    AnalysisRecord& r = engine.rec;
    const bool basicMissing =
        b[Field::t].empty || b[Field::alk].empty || b[Field::ph].empty || b[Field::ca].empty;

    // the three equation branches, each on its own
    if (flags.bllang) {
        if (basicMissing) return stop(kLangelierMessage);
        r.tds = value(b[Field::tds], "dissolved solids (txttds)");
    }
    if (flags.blrus) {
        if (b[Field::ec].empty) return stop(kRussellMessage);
        const double ec = value(b[Field::ec], "conductivity (txtec)");
        const double ec100 = finite(ec * 100, "conductivity x 100");
        r.ec = ec;
        r.ec100 = ec100;
    }
    if (flags.bllewis && basicMissing) return stop(kLewisMessage);

    if (b[Field::t].empty) return stop(kLangelierMessage);
    {
        const double temp = value(b[Field::t], "temperature (txtt)");
        const double tk = finite(temp + 273.15, "absolute temperature");
        r.temp = temp;
        r.tk = tk;
    }
    if (b[Field::ca].empty) return stop(kLangelierMessage);
    r.ca = value(b[Field::ca], "calcium (txtca)");
    if (b[Field::alk].empty) return stop(kAlkalinityMessage, kAlkalinityTitle);
    r.alkin = value(b[Field::alk], "alkalinity (txtalk)");

    if (bllr) {
        r.so4 = value(b[Field::so4], "sulphate (txtso4)");
        r.cl = value(b[Field::cl], "chloride (txtcl)");
    }
    if (flags.bllewis) {
        r.mg = value(b[Field::mg], "magnesium (txtmg)");
        r.al = value(b[Field::al], "aluminium (txtal)");
        r.fe = value(b[Field::fe], "iron (txtfe)");
        r.mn = value(b[Field::mn], "manganese (txtmn)");
        r.zn = value(b[Field::zn], "zinc (txtzn)");
        r.so4 = value(b[Field::so4], "sulphate (txtso4)");
        r.cl = value(b[Field::cl], "chloride (txtcl)");
        r.f = value(b[Field::f], "fluoride (txtf)");
        r.na = value(b[Field::na], "sodium (txtna)");
        r.no3 = value(b[Field::no3], "nitrate (txtno3)");
        r.no2 = value(b[Field::no2], "nitrite (txtno2)");
        r.k = value(b[Field::k], "potassium (txtk)");
        r.co3in = value(b[Field::co3], "carbonate (txtco3)");
        r.hco3in = value(b[Field::hco3], "bicarbonate (txthco3)");
        engine.convertmolar();
    }

    engine.ionicactivity(flags);
    engine.ionbalance(flags, in);

    ReadDataResult result;
    result.outcome =
        r.accuracyok ? ReadDataResult::Outcome::Accepted : ReadDataResult::Outcome::Rejected;
    return result;
}

EntryNumber strictEntry(std::string_view text, std::string_view what) {
    if (const auto v = fmt::strictNumber(text)) return EntryNumber(*v);
    std::string message = "the ";
    message.append(what).append(" \"").append(text).append("\" is not a number");
    return EntryNumber::notANumber(std::move(message));
}

CalcInputs calcInputs(const AnalysisTexts& boxes) {
    CalcInputs in;
    const std::string& ph = boxes[Field::ph];
    in.phEmpty = ph.empty();
    in.ph = fmt::leadingNumber(ph);
    in.phStrict = strictEntry(ph, "pH text");
    in.hco3Empty = boxes[Field::hco3].empty();
    in.co3Empty = boxes[Field::co3].empty();
    return in;
}

CalcInputs calcInputs(const AnalysisTexts& boxes, std::string_view start,
                      std::string_view increment, std::string_view steps) {
    CalcInputs in = calcInputs(boxes);
    in.sweep = true;
    in.sweepStart = strictEntry(start, "start pH");
    in.sweepIncrement = strictEntry(increment, "pH increment");
    in.sweepSteps = strictEntry(steps, "number of steps");
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
