// The texts the windows and the report show: rounded values, the
// scientific pattern, the chart's data labels and the report's print format.
#include "numtext/numtext.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace velmora::fmt {

namespace {

// A finite double as decimal digits: value = 0.d1 d2 ... dn x 10^(exp + 1),
// that is, the first digit stands for 10^exp. No leading zeros; zero has no
// digits.
struct Decimal {
    bool negative = false;
    std::string digits;
    int exp = 0;
};

// The shortest decimal digits that read back to x.
Decimal shortestDecimal(double x) {
    Decimal d;
    d.negative = std::signbit(x);
    if (x == 0) return d;
    char buf[64];
    const auto r =
        std::to_chars(buf, buf + sizeof buf, std::fabs(x), std::chars_format::scientific);
    const char* p = buf;
    for (; p != r.ptr && *p != 'e'; ++p)
        if (*p >= '0' && *p <= '9') d.digits.push_back(*p);
    if (p != r.ptr) {
        ++p; // the 'e'
        if (*p == '+') ++p;
        std::from_chars(p, r.ptr, d.exp);
    }
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
    return d;
}

// x written with `significant` significant digits, rounded on its exact binary
// value (halves to even) the way printf does it.
Decimal significantDecimal(double x, int significant) {
    Decimal d;
    d.negative = std::signbit(x);
    if (x == 0) return d;
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*e", significant - 1, std::fabs(x));
    const char* p = buf;
    for (; *p && *p != 'e'; ++p)
        if (*p >= '0' && *p <= '9') d.digits.push_back(*p);
    if (*p == 'e') d.exp = std::atoi(p + 1);
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
    return d;
}

enum class Halves { ToEven, AwayFromZero };

// Keeps the first `keep` digits of d, rounding on the digits dropped.
// keep may be zero or negative (every digit dropped).
void roundDigits(Decimal& d, int keep, Halves halves) {
    const int n = static_cast<int>(d.digits.size());
    if (keep >= n) return;
    bool up = false;
    if (keep >= 0) {
        const char first = d.digits[keep];
        bool restNonZero = false;
        for (int j = keep + 1; j < n; ++j)
            if (d.digits[j] != '0') restNonZero = true;
        if (first > '5' || (first == '5' && restNonZero)) {
            up = true;
        } else if (first == '5') {
            const int last = keep > 0 ? d.digits[keep - 1] - '0' : 0;
            up = halves == Halves::AwayFromZero || last % 2 == 1;
        }
    }
    if (keep <= 0) {
        d.digits.clear();
        if (up) { // 0.5 or more of the unit that replaces every digit
            d.digits.push_back('1');
            d.exp += -keep + 1;
        }
        return;
    }
    d.digits.resize(keep);
    if (up) {
        int j = keep - 1;
        while (j >= 0 && d.digits[j] == '9') {
            d.digits[j] = '0';
            --j;
        }
        if (j >= 0) {
            ++d.digits[j];
        } else {
            d.digits.insert(d.digits.begin(), '1');
            ++d.exp;
        }
    }
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
}

double toDouble(const Decimal& d) {
    if (d.digits.empty()) return 0.0;
    std::string text = d.digits;
    text += 'e';
    text += std::to_string(d.exp - static_cast<int>(d.digits.size()) + 1);
    double v = 0;
    std::from_chars(text.data(), text.data() + text.size(), v);
    return d.negative ? -v : v;
}

// Plain decimal text of d; `leadingZero` writes "0.5" rather than ".5".
std::string plainText(const Decimal& d, bool leadingZero) {
    std::string s;
    if (d.negative) s += '-';
    const int n = static_cast<int>(d.digits.size());
    if (d.exp < 0) {
        if (leadingZero) s += '0';
        s += '.';
        s.append(static_cast<std::size_t>(-d.exp - 1), '0');
        s += d.digits;
    } else if (d.exp + 1 >= n) {
        s += d.digits;
        s.append(static_cast<std::size_t>(d.exp + 1 - n), '0');
    } else {
        s.append(d.digits, 0, static_cast<std::size_t>(d.exp + 1));
        s += '.';
        s.append(d.digits, static_cast<std::size_t>(d.exp + 1));
    }
    return s;
}

// Exponent text of d in the general number format: "1.2E-05", "1E+15".
std::string exponentText(const Decimal& d) {
    std::string s;
    if (d.negative) s += '-';
    s += d.digits[0];
    if (d.digits.size() > 1) {
        s += '.';
        s.append(d.digits, 1);
    }
    char e[16];
    std::snprintf(e, sizeof e, "E%c%02d", d.exp < 0 ? '-' : '+', std::abs(d.exp));
    return s + e;
}

} // namespace

double roundHalfEven(double x, int decimals) {
    if (!std::isfinite(x) || x == 0) return x == 0 ? 0.0 : x;
    Decimal d = shortestDecimal(x);
    roundDigits(d, d.exp + decimals + 1, Halves::ToEven);
    return toDouble(d) + 0.0; // + 0.0 turns a negative zero into zero
}

std::string numberText(double x) {
    if (std::isnan(x)) return "NaN";
    if (std::isinf(x)) return x < 0 ? "-Infinity" : "Infinity";
    if (x == 0) return "0";
    const Decimal d = significantDecimal(x, 15);
    if (d.exp >= 15 || d.exp < -15) return exponentText(d);
    return plainText(d, true);
}

std::string rounded(double x, int decimals) {
    return numberText(roundHalfEven(x, decimals));
}

std::string scientific(double x) {
    if (std::isnan(x)) return "NaN";
    if (std::isinf(x)) return x < 0 ? "-Infinity" : "Infinity";
    // 15 significant digits first, as a person reads the value: the double
    // nearest 0.0297525 is 0.029752499999999998, and it shows 2.9753E-2
    Decimal d = significantDecimal(x, 15);
    if (d.digits.empty()) return "0.000E0";
    roundDigits(d, 5, Halves::AwayFromZero);
    d.digits.resize(5, '0');
    std::string s;
    if (d.negative) s += '-';
    s += d.digits[0];
    s += '.';
    s.append(d.digits, 1, 3);
    if (d.digits[4] != '0') s += d.digits[4];
    s += 'E';
    s += std::to_string(d.exp);
    return s;
}

std::string fixedDecimals(double x, int decimals) {
    if (!std::isfinite(x)) return numberText(x);
    Decimal d = shortestDecimal(x + 0.0); // + 0.0: no sign for minus zero
    roundDigits(d, d.exp + decimals + 1, Halves::AwayFromZero);
    std::string s;
    if (d.negative) s += '-';
    // the digit standing for 10^p, 0 outside the digits kept
    const auto digitAt = [&d](int p) {
        const int k = d.exp - p;
        return k >= 0 && k < static_cast<int>(d.digits.size()) ? d.digits[k] : '0';
    };
    for (int p = std::max(d.digits.empty() ? 0 : d.exp, 0); p >= 0; --p)
        s += digitAt(p);
    if (decimals > 0) {
        s += '.';
        for (int p = -1; p >= -decimals; --p)
            s += digitAt(p);
    }
    return s;
}

std::string exponentDecimals(double x, int decimals, bool plusSign) {
    if (!std::isfinite(x)) return numberText(x);
    Decimal d = shortestDecimal(x + 0.0);
    roundDigits(d, decimals + 1, Halves::AwayFromZero);
    if (d.digits.empty()) d.exp = 0; // zero: 0.00E+00
    d.digits.resize(static_cast<std::size_t>(decimals) + 1, '0');
    std::string s;
    if (d.negative) s += '-';
    s += d.digits[0];
    if (decimals > 0) {
        s += '.';
        s.append(d.digits, 1);
    }
    s += 'E';
    if (d.exp < 0)
        s += '-';
    else if (plusSign)
        s += '+';
    const int e = std::abs(d.exp);
    if (e < 10) s += '0';
    s += std::to_string(e);
    return s;
}

std::string dataLabel(double x, std::string_view pattern) {
    if (pattern == "0.000") return fixedDecimals(x, 3);
    if (pattern == "0.00000") return fixedDecimals(x, 5);
    if (pattern == "0.00E-00") return exponentDecimals(x, 2, false);
    if (pattern == "0.00E+00") return exponentDecimals(x, 2, true);
    return numberText(x);
}

std::string printNum(double x) {
    if (std::isnan(x) || std::isinf(x)) {
        std::string s(1, ' ');
        s += numberText(x);
        s.push_back(' ');
        return s;
    }
    if (x == 0) return " 0 ";
    const Decimal d = significantDecimal(x, 15);
    std::string s;
    if (!d.negative) s.push_back(' ');
    s += (d.exp < -4 || d.exp >= 15) ? exponentText(d) : plainText(d, false);
    s.push_back(' ');
    return s;
}

} // namespace velmora::fmt
