#include "engine/numformat.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// An exponent this large outweighs the digits of any text, so a larger one
// is read as this one: the value is decided alike (far out of range, or zero).
constexpr long long kExponentCap = 1'000'000'000'000'000;

// The value of a number matched by the grammar, [sign] mantissa [exponent];
// nothing when it is out of the range of a double. Values too small to be
// told from zero read as zero. The value decides, never the length of the
// text: the number is first brought to the form d.ddd...e<p>, with p the
// power of ten of its first significant digit, so that neither thousands of
// leading zeros nor a long exponent reach the conversion.
std::optional<double> convert(std::string_view number) {
    bool negative = false;
    if (!number.empty() && (number[0] == '+' || number[0] == '-')) {
        negative = number[0] == '-';
        number.remove_prefix(1);
    }
    const double zero = negative ? -0.0 : 0.0;
    std::size_t i = 0;
    long long intDigits = 0, leadingFractionZeros = 0;
    bool seenPoint = false;
    std::string digits; // the significant digits, trailing zeros dropped
    std::size_t kept = 0;
    for (; i < number.size() && number[i] != 'e' && number[i] != 'E'; ++i) {
        const char c = number[i];
        if (c == '.') {
            seenPoint = true;
            continue;
        }
        if (digits.empty() && c == '0') {
            if (seenPoint) ++leadingFractionZeros;
            continue;
        }
        if (!seenPoint) ++intDigits;
        digits += c;
        if (c != '0') kept = digits.size();
    }
    if (digits.empty()) return zero;
    digits.resize(kept);
    long long exponent = 0;
    if (i < number.size()) {
        std::string_view e = number.substr(i + 1);
        bool eneg = false;
        if (!e.empty() && (e[0] == '+' || e[0] == '-')) {
            eneg = e[0] == '-';
            e.remove_prefix(1);
        }
        for (char c : e) {
            exponent = exponent * 10 + (c - '0');
            if (exponent > kExponentCap) break;
        }
        if (eneg) exponent = -exponent;
    }
    const long long position = intDigits > 0 ? intDigits - 1 : -(leadingFractionZeros + 1);
    const long long p = position + exponent;
    // beyond 1.8e308, below the smallest subnormal 4.9e-324 by far
    if (p > 400) return std::nullopt;
    if (p < -400) return zero;
    std::string text;
    text.reserve(digits.size() + 8);
    text += digits[0];
    if (digits.size() > 1) {
        text += '.';
        text.append(digits, 1);
    }
    text += 'e';
    text += std::to_string(p);
    double v = 0;
    const auto r =
        std::from_chars(text.data(), text.data() + text.size(), v, std::chars_format::general);
    if (r.ec == std::errc::result_out_of_range) {
        if (p < 0) return zero;
        return std::nullopt;
    }
    if (r.ec != std::errc() || !std::isfinite(v)) return std::nullopt;
    return negative ? -v : v;
}

// One pass over a number of the grammar [sign] digits [. digits] [e [sign]
// digits] at the start of s (at least one mantissa digit; a bare exponent
// letter is not part of the number), gathering what the common case needs
// to convert it without a second reading.
struct Scan {
    std::size_t length = 0;     // characters of the number; 0 when there is none
    std::uint64_t mantissa = 0; // the first 19 significant digits
    long long exp10 = 0;        // value = mantissa x 10^exp10 unless truncated
    bool truncated = false;     // nonzero significant digits beyond the 19th
    bool negative = false;
};

// The exponent part, if any, of a number whose mantissa ends at i: adds it
// to exp10 and returns the end of the number (a bare exponent letter is not
// part of it).
std::size_t scanExponent(std::string_view s, std::size_t i, long long& exp10) {
    const std::size_t n = s.size();
    if (i < n && (s[i] == 'e' || s[i] == 'E')) {
        std::size_t j = i + 1;
        bool negativeExp = false;
        if (j < n && (s[j] == '+' || s[j] == '-')) {
            negativeExp = s[j] == '-';
            ++j;
        }
        const std::size_t start = j;
        long long e = 0;
        while (j < n && s[j] >= '0' && s[j] <= '9') {
            if (e <= kExponentCap) e = e * 10 + (s[j] - '0');
            ++j;
        }
        if (j > start) {
            exp10 += negativeExp ? -e : e;
            i = j;
        }
    }
    return i;
}

Scan scanNumberCarefully(std::string_view s) {
    Scan r;
    std::size_t i = 0;
    const std::size_t n = s.size();
    if (i < n && (s[i] == '+' || s[i] == '-')) {
        r.negative = s[i] == '-';
        ++i;
    }
    int taken = 0;
    bool anyDigit = false;
    auto digit = [&](char c, bool fraction) {
        anyDigit = true;
        const auto d = static_cast<unsigned>(c - '0');
        if (r.mantissa == 0 && d == 0) {
            if (fraction) --r.exp10;
        } else if (taken < 19) {
            r.mantissa = r.mantissa * 10 + d;
            ++taken;
            if (fraction) --r.exp10;
        } else {
            if (d != 0) r.truncated = true;
            if (!fraction) ++r.exp10;
        }
    };
    while (i < n && s[i] >= '0' && s[i] <= '9')
        digit(s[i++], false);
    if (i < n && s[i] == '.') {
        ++i;
        while (i < n && s[i] >= '0' && s[i] <= '9')
            digit(s[i++], true);
    }
    if (!anyDigit) return Scan{};
    r.length = scanExponent(s, i, r.exp10);
    return r;
}

// The same scan, quicker for the usual case of at most 19 digits in all,
// where the mantissa takes every digit and nothing is dropped.
Scan scanNumber(std::string_view s) {
    const std::size_t n = s.size();
    std::size_t i = 0;
    Scan r;
    if (i < n && (s[i] == '+' || s[i] == '-')) {
        r.negative = s[i] == '-';
        ++i;
    }
    const std::size_t intStart = i;
    std::uint64_t m = 0; // wraps when there are too many digits; not used then
    while (i < n && static_cast<unsigned char>(s[i] - '0') <= 9)
        m = m * 10 + static_cast<unsigned>(s[i++] - '0');
    const std::size_t intDigits = i - intStart;
    std::size_t fractionDigits = 0;
    if (i < n && s[i] == '.') {
        const std::size_t fractionStart = ++i;
        while (i < n && static_cast<unsigned char>(s[i] - '0') <= 9)
            m = m * 10 + static_cast<unsigned>(s[i++] - '0');
        fractionDigits = i - fractionStart;
    }
    if (intDigits + fractionDigits > 19) return scanNumberCarefully(s);
    if (intDigits + fractionDigits == 0) return Scan{};
    r.mantissa = m;
    r.exp10 = -static_cast<long long>(fractionDigits);
    r.length = scanExponent(s, i, r.exp10);
    return r;
}

constexpr double kExactPow10[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                    1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The value of a scanned number; s is the text it was scanned from.
std::optional<double> valueOf(const Scan& r, std::string_view s) {
    if (r.mantissa == 0 && !r.truncated) return r.negative ? -0.0 : 0.0;
    // a mantissa and a power of ten that are both exact: one rounding, the right one
    if (!r.truncated && r.mantissa < (std::uint64_t{1} << 53) && r.exp10 >= -22 && r.exp10 <= 22) {
        const auto m = static_cast<double>(r.mantissa);
        const double v = r.exp10 < 0 ? m / kExactPow10[-r.exp10] : m * kExactPow10[r.exp10];
        return r.negative ? -v : v;
    }
    return convert(s.substr(0, r.length));
}

// The quick reading of the usual cell or box text: a whole text of at most
// eight characters that is [sign] digits [. digits] with at least one digit.
// Gives the value exactly as scanNumber and valueOf would, without a branch
// on each character (the lengths of such texts vary, and every loop exit
// would be a mispredicted branch). False for any other text.
bool quickShortNumber(std::string_view text, double& value) {
    if constexpr (std::endian::native != std::endian::little) return false;
    std::size_t n = text.size();
    if (n == 0 || n > 8) return false;
    // the characters as the bytes of a word, the first one lowest, zeros above
    const char* p = text.data();
    std::uint64_t w;
    if (n >= 4) { // two overlapping loads
        std::uint32_t first4, last4;
        std::memcpy(&first4, p, 4);
        std::memcpy(&last4, p + n - 4, 4);
        w = first4 | (std::uint64_t{last4} << (8 * (n - 4)));
    } else {
        w = static_cast<unsigned char>(p[0]) |
            (std::uint64_t{static_cast<unsigned char>(p[n / 2])} << (8 * (n / 2))) |
            (std::uint64_t{static_cast<unsigned char>(p[n - 1])} << (8 * (n - 1)));
    }
    constexpr std::uint64_t kOnes = 0x0101010101010101u;
    bool negative = false;
    if (p[0] == '-' || p[0] == '+') {
        negative = p[0] == '-';
        w >>= 8;
        --n;
    }
    // the first decimal point, taken out (exact for the lowest zero byte)
    const std::uint64_t x = w ^ (kOnes * '.');
    const std::uint64_t inText = n == 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * n)) - 1;
    const std::uint64_t points = (x - kOnes) & ~x & (kOnes * 0x80) & inText;
    std::size_t fraction = 0;
    if (points != 0) {
        const int at = __builtin_ctzll(points) >> 3;
        const std::uint64_t before = (std::uint64_t{1} << (8 * at)) - 1;
        w = (w & before) | ((w >> 8) & ~before);
        fraction = n - 1 - static_cast<std::size_t>(at);
        --n;
    }
    if (n == 0) return false;
    // the digits at the top of the word, '0' below them, then every byte
    // checked to be a digit (a second point or any other character fails)
    const std::size_t pad = 8 - n;
    const std::uint64_t padded =
        (w << (8 * pad)) | (pad == 0 ? 0 : (kOnes * '0') & ((std::uint64_t{1} << (8 * pad)) - 1));
    if ((((padded & 0xF0F0F0F0F0F0F0F0u) |
          (((padded + 0x0606060606060606u) & 0xF0F0F0F0F0F0F0F0u) >> 4)) != 0x3333333333333333u))
        return false;
    // eight digits to their value: pairs, then fours, then the whole
    std::uint64_t v = padded - kOnes * '0';
    v = v * 10 + (v >> 8);
    v = (((v & 0x000000FF000000FFu) * 0x000F424000000064u) +
         (((v >> 16) & 0x000000FF000000FFu) * 0x0000271000000001u)) >>
        32;
    const auto m = static_cast<double>(static_cast<std::uint32_t>(v));
    const double r = fraction != 0 ? m / kExactPow10[fraction] : m * kExactPow10[0];
    value = negative ? -r : r;
    return true;
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

namespace {

// ---------------------------------------------------------------------------
// The shortest decimal digits of a double by exact 128-bit arithmetic
// (Giulietti's Schubfach method): the digits d and the exponent e of the
// shortest d x 10^e that reads back to the value, the nearest such one when
// there are several. d may end in zeros.

#include "engine/numformat_pow10.inc"

using u128 = unsigned __int128;

constexpr int kKMin = -324;
constexpr std::uint64_t kCMin = std::uint64_t{1} << 52;
constexpr int kQMin = -1074;
constexpr std::uint64_t kMask63 = (std::uint64_t{1} << 63) - 1;

constexpr int floorLog10Pow2(int e) {
    return static_cast<int>((e * 661971961083LL) >> 41);
}
constexpr int floorLog10ThreeQuartersPow2(int e) {
    return static_cast<int>((e * 661971961083LL - 274743187321LL) >> 41);
}
constexpr int floorLog2Pow10(int e) {
    return static_cast<int>((e * 913124641741LL) >> 38);
}

std::uint64_t mulHigh(std::uint64_t a, std::uint64_t b) {
    return static_cast<std::uint64_t>((static_cast<u128>(a) * b) >> 64);
}

// g x cp / 2^127 with g = g1 2^63 + g0, rounded to odd.
std::uint64_t roundToOdd(std::uint64_t g1, std::uint64_t g0, std::uint64_t cp) {
    const std::uint64_t x1 = mulHigh(g0, cp);
    const std::uint64_t y0 = g1 * cp;
    const std::uint64_t y1 = mulHigh(g1, cp);
    const std::uint64_t z = (y0 >> 1) + x1;
    const std::uint64_t vbp = y1 + (z >> 63);
    return vbp | (((z & kMask63) + kMask63) >> 63);
}

struct ShortestDigits {
    std::uint64_t digits;
    int exp;
};

// The value c x 2^q.
ShortestDigits shortestDigits(int q, std::uint64_t c) {
    const std::uint64_t out = c & 1;
    const std::uint64_t cb = c << 2;
    const std::uint64_t cbr = cb + 2;
    std::uint64_t cbl;
    int k;
    if (c != kCMin || q == kQMin) {
        cbl = cb - 2;
        k = floorLog10Pow2(q);
    } else { // a power of two: the gap below is half the gap above
        cbl = cb - 1;
        k = floorLog10ThreeQuartersPow2(q);
    }
    const int h = q + floorLog2Pow10(-k) + 2;
    const std::uint64_t* g = kPow10Scaled[k - kKMin];

    const std::uint64_t vb = roundToOdd(g[0], g[1], cb << h);
    const std::uint64_t vbl = roundToOdd(g[0], g[1], cbl << h);
    const std::uint64_t vbr = roundToOdd(g[0], g[1], cbr << h);

    // s or s + 1, or one digit fewer when exactly one of the two multiples of
    // ten around s reads back; chosen without branches, which would mispredict
    const std::uint64_t s = vb >> 2;
    const std::uint64_t sp10 = 10 * (s / 10);
    const std::uint64_t tp10 = sp10 + 10;
    const bool upin = vbl + out <= sp10 << 2;
    const bool wpin = (tp10 << 2) + out <= vbr;
    const bool shorter = s >= 10 && upin != wpin;

    const std::uint64_t t = s + 1;
    const bool uin = vbl + out <= s << 2;
    const bool win = (t << 2) + out <= vbr;
    // both read back: the nearer, the even one on a tie
    const std::int64_t cmp = static_cast<std::int64_t>(vb - ((s + t) << 1));
    const bool pickT = uin != win ? win : (cmp > 0 || (cmp == 0 && (s & 1) != 0));

    const std::uint64_t shortDigits = (upin ? sp10 : tp10) / 10;
    const std::uint64_t longDigits = s + pickT;
    return {shorter ? shortDigits : longDigits, k + shorter};
}

// The shortest digits of a finite nonzero |x| given its bits, without trailing zeros.
ShortestDigits shortestOf(std::uint64_t bits) {
    const std::uint64_t t = bits & (kCMin - 1);
    const int bq = static_cast<int>((bits >> 52) & 0x7FF);
    ShortestDigits d;
    if (bq != 0) {
        const int mq = -kQMin + 1 - bq;
        const std::uint64_t c = kCMin | t;
        if (0 < mq && mq < 53 && ((c >> mq) << mq) == c) {
            d = {c >> mq, 0}; // an integer below 2^53 is its own shortest text
        } else {
            d = shortestDigits(-mq, c);
        }
    } else {
        d = shortestDigits(kQMin, t); // subnormal
    }
    while (d.digits % 10 == 0) {
        d.digits /= 10;
        ++d.exp;
    }
    return d;
}

constexpr char kTwoDigits[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536"
    "37383940414243444546474849505152535455565758596061626364656667686970717273"
    "7475767778798081828384858687888990919293949596979899";

void write2(char* p, std::uint32_t v) {
    std::memcpy(p, kTwoDigits + 2 * v, 2);
}

// The eight digits of x < 10^8, zero-padded, four lanes at a time, as they
// lie in memory on a little-endian machine.
std::uint64_t digits8(std::uint32_t x) {
    const std::uint64_t v = x;
    const std::uint64_t abcd = (v * 109951163) >> 40; // v / 10000
    const std::uint64_t merged = abcd | ((v - abcd * 10000) << 32);
    const std::uint64_t hundreds = ((merged * 10486) >> 20) & ((0x7FULL << 32) | 0x7FULL);
    const std::uint64_t pairs = hundreds | ((merged - 100 * hundreds) << 16);
    const std::uint64_t tens =
        ((pairs * 103) >> 10) & ((0xFULL << 48) | (0xFULL << 32) | (0xFULL << 16) | 0xFULL);
    return (tens | ((pairs - 10 * tens) << 8)) | 0x3030303030303030ULL;
}

// The twenty digits of v, zero-padded, held in registers: 4 + 8 + 8 characters.
struct Digits20 {
    std::uint64_t top, high, low;

    explicit Digits20(std::uint64_t v) {
        const std::uint64_t h = v / 100000000;
        low = digits8(static_cast<std::uint32_t>(v - h * 100000000));
        const std::uint64_t t = h / 100000000;
        high = digits8(static_cast<std::uint32_t>(h - t * 100000000));
        const auto t4 = static_cast<std::uint32_t>(t); // below 1845
        std::uint16_t a, b;
        std::memcpy(&a, kTwoDigits + 2 * (t4 / 100), 2);
        std::memcpy(&b, kTwoDigits + 2 * (t4 % 100), 2);
        top = a | (std::uint64_t{b} << 16);
    }

    // Characters skip..19 to dest, by stores only; up to 8 characters past
    // them may be overwritten.
    void store(char* dest, int skip) const {
        if constexpr (std::endian::native == std::endian::little) {
            if (skip < 4) {
                const std::uint64_t t = top >> (8 * skip);
                std::memcpy(dest, &t, 4);
                std::memcpy(dest + 4 - skip, &high, 8);
                std::memcpy(dest + 12 - skip, &low, 8);
            } else if (skip < 12) {
                const std::uint64_t h = high >> (8 * (skip - 4));
                std::memcpy(dest, &h, 8);
                std::memcpy(dest + 12 - skip, &low, 8);
            } else if (skip < 20) {
                const std::uint64_t l = low >> (8 * (skip - 12));
                std::memcpy(dest, &l, 8);
            }
        } else {
            char all[20];
            for (int i = 0; i < 4; ++i)
                all[i] = static_cast<char>(top >> (8 * i));
            for (int i = 0; i < 8; ++i) {
                all[4 + i] = static_cast<char>(high >> (8 * i));
                all[12 + i] = static_cast<char>(low >> (8 * i));
            }
            std::memcpy(dest, all + skip, static_cast<std::size_t>(20 - skip));
        }
    }
};

constexpr std::uint64_t kPow10[20] = {1u,
                                      10u,
                                      100u,
                                      1000u,
                                      10000u,
                                      100000u,
                                      1000000u,
                                      10000000u,
                                      100000000u,
                                      1000000000u,
                                      10000000000u,
                                      100000000000u,
                                      1000000000000u,
                                      10000000000000u,
                                      100000000000000u,
                                      1000000000000000u,
                                      10000000000000000u,
                                      100000000000000000u,
                                      1000000000000000000u,
                                      10000000000000000000u};

// The number of decimal digits of v > 0.
int digitCount(std::uint64_t v) {
    const int bits = 64 - __builtin_clzll(v);
    const int n = (bits * 1233) >> 12; // about bits x log10 2
    return n + (v >= kPow10[n]);
}

} // namespace

namespace {

// The exponent of the exponent form: "e+XX", "e-XX", three digits from 100 on.
char* writeExponent(char* p, int e) {
    *p++ = 'e';
    if (e < 0) {
        *p++ = '-';
        e = -e;
    } else {
        *p++ = '+';
    }
    if (e >= 100) {
        *p++ = static_cast<char>('0' + e / 100);
        e %= 100;
    }
    write2(p, static_cast<std::uint32_t>(e));
    return p + 2;
}

// The shortest text of a finite nonzero |x| given its bits, by the Schubfach
// digits; p is where the text starts (after any sign). Right for every value;
// the quick route below leaves the rare hard ones to it.
char* writeShortestExact(char* p, std::uint64_t magnitude) {
    const ShortestDigits d = shortestOf(magnitude);
    const int n = digitCount(d.digits);
    const int sciExp = d.exp + n - 1;

    const Digits20 dg(d.digits);
    const int skip = 20 - n; // leading zeros of the twenty digits

    // the shorter of the fixed and the exponent form, the fixed one on a tie
    const int sciLength = n + (n > 1 ? 1 : 0) + 2 + (sciExp >= 100 || sciExp <= -100 ? 3 : 2);
    int fixedLength;
    if (d.exp >= 0) {
        fixedLength = n + d.exp;
    } else if (sciExp >= 0) {
        fixedLength = n + 1;
    } else {
        fixedLength = 2 + (-sciExp - 1) + n;
    }

    if (fixedLength <= sciLength) {
        if (d.exp > 0) {
            // an integer, written with all its digits as the exact value has them
            const int shift = static_cast<int>(magnitude >> 52) - 1075;
            const u128 m = (magnitude & (kCMin - 1)) | kCMin;
            u128 v = shift >= 0 ? m << shift : m >> -shift;
            char* end = p + fixedLength;
            for (char* q = end; q != p;) {
                *--q = static_cast<char>('0' + static_cast<int>(v % 10));
                v /= 10;
            }
            return end;
        }
        if (d.exp == 0) {
            dg.store(p, skip);
            return p + n;
        }
        if (sciExp >= 0) { // point inside the digits
            const int intDigits = sciExp + 1;
            dg.store(p, skip);
            dg.store(p + intDigits + 1, skip + intDigits);
            p[intDigits] = '.';
            return p + n + 1;
        }
        std::memcpy(p, "0.000", 5); // at most three zeros after the point here
        dg.store(p + 2 + (-sciExp - 1), skip);
        return p + fixedLength;
    }

    // d.ddde+XX
    dg.store(p, skip);
    if (n > 1) {
        dg.store(p + 2, skip + 1);
        p[1] = '.';
        p += n + 1;
    } else {
        p += 1;
    }
    return writeExponent(p, sciExp);
}

// ---------------------------------------------------------------------------
// The quick route for the common case: one 64 x 128-bit product decides the
// digits of most normal doubles (the interval arithmetic of Jeon's Dragonbox
// method). Let x = fc 2^q, k = floor(q log10 2) - 2 and scale by 10^-k: the
// rounding interval of x becomes [z - delta, z] with z its upper end and
// 100 <= delta < 1000. Its only candidate with three trailing zeros is
// s = floor(z / 1000) x 1000; failing that, the shortest decimals are the
// multiples of 100 in the interval, and the one nearest x is found from the
// remainder r = floor(z) - 1000 s. The few cases that need the fractional
// parts (r equal to floor(delta), z or the centre on a boundary) go to the
// exact route.

#include "engine/numformat_cache.inc"

// value = digits x 10^(sciExp - 16), exactly 17 digits (trailing zeros too)
struct Digits17 {
    std::uint64_t digits;
    int sciExp;
};

// k and beta below for each biased exponent, looked up rather than computed:
// the digits of a value are one long chain of dependent steps, and a load
// is the shortest link here.
struct ScaleExponents {
    std::int16_t k;
    std::uint8_t beta;
};
constexpr auto kScaleExponents = [] {
    std::array<ScaleExponents, 2047> table{};
    for (int bq = 1; bq < 2047; ++bq) {
        const int q = bq - 1075;
        const int k = floorLog10Pow2(q) - 2;
        table[bq] = {static_cast<std::int16_t>(k),
                     static_cast<std::uint8_t>(q + floorLog2Pow10(-k))}; // beta: 6 to 9
    }
    return table;
}();

bool quickDigits(std::uint64_t magnitude, Digits17& out) {
    const std::uint64_t t = magnitude & (kCMin - 1);
    const int bq = static_cast<int>(magnitude >> 52);
    if (bq == 0 || t == 0) return false; // subnormal, or a power of two (uneven interval)
    const int k = kScaleExponents[bq].k;
    const int beta = kScaleExponents[bq].beta;
    const std::uint64_t* c = kPow10Cache[-k - kCacheMin];
    // z = (2 fc + 1) 2^(q - 1) 10^-k: its integer part and the first 64 bits
    // of its fraction. The cached power is rounded up, so the product can
    // exceed z, by less than 2^-65: its integer part is floor(z) unless its
    // fraction shows as zero, and that case goes the exact way. (The sum is
    // made in 64-bit halves, which the compiler keeps in registers.)
    const std::uint64_t u = (((t | kCMin) << 1) | 1) << beta;
    const u128 product = static_cast<u128>(u) * c[0];
    const std::uint64_t carried = mulHigh(u, c[1]);
    const std::uint64_t zf = static_cast<std::uint64_t>(product) + carried;
    const std::uint64_t zi = static_cast<std::uint64_t>(product >> 64) + (zf < carried);
    const std::uint64_t delta = c[0] >> (63 - beta); // floor(2^q 10^-k), exact
    const std::uint64_t s = zi / 1000;
    const std::uint64_t r = zi - 1000 * s;
    // r < delta: s x 1000 lies inside the interval (above z - delta, and
    // below z unless z is a whole number, which goes the exact way with
    // every zero fraction). r > delta: no multiple of 1000 does, and the
    // multiple of 100 nearest the centre z - delta / 2 is s x 1000 + 100
    // floor(dist / 100), unless dist is a multiple of 100. There, and at
    // r == delta, the fractions decide: the exact way.
    const std::uint64_t dist = r - delta / 2 + 50;
    const std::uint64_t a = dist / 100;
    // which case holds depends on the digits, so the result is chosen
    // without a branch (one would mispredict half the time)
    const bool big = r < delta;
    const bool hard = (r == delta) | (zf == 0) | (!big & (dist == 100 * a));
    if (hard) return false;
    const std::uint64_t bigMask = std::uint64_t{0} - big;
    const std::uint64_t v = (s & bigMask) | ((10 * s + a) & ~bigMask); // 15 to 17 digits
    const int e = k + 2 + big;
    // to 17 digits (times 1, 10 or 100, again without a branch)
    const unsigned below17 = v < 10000000000000000u, below16 = v < 1000000000000000u;
    out = {v * (1 + 9 * below17 + 90 * below16), e + 16 - static_cast<int>(below17 + below16)};
    return true;
}

// The sixteen digits of high x 10^8 + low (both below 10^8) as byte values
// 0 to 9, first digit in the lowest byte: the first eight in first, the
// others in second.
#if defined(__SSE2__)
// Both halves at once in vector lanes: each half split into two groups of
// four digits, each group spread over four lanes and divided by 1000, 100,
// 10 and 1 by fixed-point multiplication.
__m128i digitLanes8(std::uint32_t x) {
    const __m128i v = _mm_cvtsi32_si128(static_cast<int>(x));
    const __m128i abcd = // x / 10000: 0xd1b71759 / 2^45 is 1 / 10000 closely enough below 10^8
        _mm_srli_epi64(_mm_mul_epu32(v, _mm_set1_epi32(static_cast<int>(0xd1b71759))), 45);
    const __m128i efgh = _mm_sub_epi32(v, _mm_mul_epu32(abcd, _mm_set1_epi32(10000)));
    const __m128i groups = _mm_slli_epi64(_mm_unpacklo_epi16(abcd, efgh), 2);
    const __m128i spread =
        _mm_unpacklo_epi32(_mm_unpacklo_epi16(groups, groups), _mm_unpacklo_epi16(groups, groups));
    // 4 g x (8389, 5243, 13108, 32768) / 2^16 then x (128, 2048, 8192, 32768) /
    // 2^16: g / 1000, g / 100, g / 10 and g
    const __m128i quotients =
        _mm_mulhi_epu16(_mm_mulhi_epu16(spread, _mm_setr_epi16(8389, 5243, 13108, -32768, 8389,
                                                               5243, 13108, -32768)),
                        _mm_setr_epi16(128, 2048, 8192, -32768, 128, 2048, 8192, -32768));
    // each quotient less ten times the one before it: the digit
    return _mm_sub_epi16(quotients,
                         _mm_slli_epi64(_mm_mullo_epi16(quotients, _mm_set1_epi16(10)), 16));
}

void digitValues16(std::uint32_t high, std::uint32_t low, std::uint64_t& first,
                   std::uint64_t& second) {
    const __m128i bytes = _mm_packus_epi16(digitLanes8(high), digitLanes8(low));
    first = static_cast<std::uint64_t>(_mm_cvtsi128_si64(bytes));
    second = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(bytes, bytes)));
}
#else
void digitValues16(std::uint32_t high, std::uint32_t low, std::uint64_t& first,
                   std::uint64_t& second) {
    first = digits8(high) - 0x3030303030303030ULL;
    second = digits8(low) - 0x3030303030303030ULL;
}
#endif

// The text of the digits d of a finite nonzero |x| with the given bits.
char* writeQuick(char* p, const Digits17& d, std::uint64_t magnitude) {
    // the 17 digits as text, in registers: the first one, then two words
    // of eight, first character in the lowest byte (both quotients are taken
    // from the digits directly, so that neither waits for the other)
    const std::uint64_t top = d.digits / 10000000000000000u; // 1 to 9
    const std::uint64_t upper = d.digits / 100000000;        // the first nine digits
    std::uint64_t highValues, lowValues;
    digitValues16(static_cast<std::uint32_t>(upper - top * 100000000),
                  static_cast<std::uint32_t>(d.digits - upper * 100000000), highValues, lowValues);
    constexpr std::uint64_t kZeros = 0x3030303030303030ULL;
    const char lead = static_cast<char>('0' + top);
    const std::uint64_t highText = highValues | kZeros, lowText = lowValues | kZeros;
    // trailing zero digits are the zero bytes at the top of the words
    const int zeros = lowValues != 0    ? __builtin_clzll(lowValues) >> 3
                      : highValues != 0 ? 8 + (__builtin_clzll(highValues) >> 3)
                                        : 16;
    const int n = 17 - zeros;
    const int sciExp = d.sciExp;
    // the 17 digits at dest, by stores only (nothing is read back, which
    // would stall on the stores)
    auto put17 = [&](char* dest) {
        *dest = lead;
        std::memcpy(dest + 1, &highText, 8);
        std::memcpy(dest + 9, &lowText, 8);
    };

    // the shorter of the fixed and the exponent form, the fixed one on a tie
    const int sciLength = n + (n > 1 ? 1 : 0) + 2 + (sciExp >= 100 || sciExp <= -100 ? 3 : 2);
    const int fixedLength = sciExp >= n - 1 ? sciExp + 1 : sciExp >= 0 ? n + 1 : 1 - sciExp + n;
    if (fixedLength <= sciLength) {
        if (sciExp >= n - 1) { // an integer
            // below 2^53 the digits and zeros are the exact value; above,
            // zeros would stand for digits the exact value has
            if (sciExp >= n && magnitude >= 0x4340000000000000u)
                return writeShortestExact(p, magnitude);
            put17(p);
            return p + fixedLength;
        }
        if (sciExp >= 0) { // point inside the digits: digits 1 to 16 moved one place on
            const int intDigits = sciExp + 1;
            put17(p);
            const u128 tail = ((static_cast<u128>(lowText) << 64) | highText) >> (8 * sciExp);
            const auto tailLow = static_cast<std::uint64_t>(tail);
            const auto tailHigh = static_cast<std::uint64_t>(tail >> 64);
            std::memcpy(p + intDigits + 1, &tailLow, 8);
            std::memcpy(p + intDigits + 9, &tailHigh, 8);
            p[intDigits] = '.';
            return p + fixedLength;
        }
        std::memcpy(p, "0.000", 5); // at most three zeros after the point here
        put17(p + 1 - sciExp);
        return p + fixedLength;
    }

    // d.ddde+XX
    put17(p + 1);
    p[0] = lead;
    if (n > 1) {
        p[1] = '.';
        p += n + 1;
    } else {
        p += 1;
    }
    return writeExponent(p, sciExp);
}

} // namespace

char* shortestTo(char* first, char* last, double x) {
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    const std::uint64_t magnitude = bits & ~(std::uint64_t{1} << 63);
    if ((magnitude >> 52) == 0x7FF) return std::to_chars(first, last, x).ptr; // infinite or NaN
    char* p = first;
    if (bits >> 63) *p++ = '-';
    if (magnitude == 0) {
        *p++ = '0';
        return p;
    }
    Digits17 d;
    if (std::endian::native != std::endian::little || !quickDigits(magnitude, d))
        return writeShortestExact(p, magnitude);
    return writeQuick(p, d, magnitude);
}

char* shortestListTo(char* first, const double* values, std::size_t count, char separator) {
    // first the digits of a group of values, then their texts: the digits of
    // one value need not wait for the text of the one before, and the
    // processor works on several at once
    constexpr std::size_t kGroup = 32;
    char* p = first;
    for (std::size_t start = 0; start < count; start += kGroup) {
        const std::size_t n = std::min(kGroup, count - start);
        const double* x = values + start;
        Digits17 digits[kGroup];
        bool quick[kGroup];
        for (std::size_t i = 0; i < n; ++i) {
            std::uint64_t bits;
            std::memcpy(&bits, &x[i], sizeof bits);
            const std::uint64_t magnitude = bits & ~(std::uint64_t{1} << 63);
            // zero, infinite and NaN go the long way
            quick[i] = std::endian::native == std::endian::little &&
                       magnitude - 1 < 0x7FEFFFFFFFFFFFFFu && quickDigits(magnitude, digits[i]);
        }
        for (std::size_t i = 0; i < n; ++i) {
            *p++ = separator;
            if (quick[i]) {
                std::uint64_t bits;
                std::memcpy(&bits, &x[i], sizeof bits);
                *p = '-';
                p += bits >> 63;
                p = writeQuick(p, digits[i], bits & ~(std::uint64_t{1} << 63));
            } else {
                p = shortestTo(p, p + 48, x[i]);
            }
        }
    }
    return p;
}

std::string shortest(double x) {
    char buf[64];
    return std::string(buf, shortestTo(buf, buf + sizeof buf, x));
}

double leadingNumber(std::string_view text) {
    double quick;
    if (quickShortNumber(text, quick)) return quick;
    // Blanks are dropped wherever they stand, then the number at the start is read.
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\n'; };
    while (!text.empty() && blank(text.front()))
        text.remove_prefix(1);
    std::string compact;
    if (std::find_if(text.begin(), text.end(), blank) != text.end()) {
        for (char c : text)
            if (!blank(c)) compact += c;
        text = compact;
    }
    const Scan r = scanNumber(text);
    if (r.length == 0) return 0.0;
    if (const auto v = valueOf(r, text)) return *v;
    return r.negative ? -HUGE_VAL : HUGE_VAL;
}

bool isNumber(std::string_view text) {
    return strictNumber(text).has_value();
}

namespace {

// Whatever quickShortNumber does not read.
bool strictNumberSlowly(std::string_view text, double& value) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    const Scan r = scanNumber(text);
    if (r.length == 0 || r.length != text.size()) return false;
    const auto v = valueOf(r, text);
    if (!v) return false;
    value = *v;
    return true;
}

} // namespace

std::optional<double> strictNumber(std::string_view text) {
    double value;
    if (strictNumberTo(text, value)) return value;
    return std::nullopt;
}

bool strictNumberTo(std::string_view text, double& value) {
    if (quickShortNumber(text, value)) return true;
    return strictNumberSlowly(text, value);
}

} // namespace velmora::fmt
