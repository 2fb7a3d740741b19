#include "engine/numformat.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <system_error>

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
    const auto r = std::to_chars(buf, buf + sizeof buf, std::fabs(x), std::chars_format::scientific);
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

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// The value of a number matched by the grammar, [sign] mantissa [exponent];
// nothing when it is out of the range of a double. Values too small to be
// told from zero read as zero.
std::optional<double> convert(std::string_view number) {
    bool negative = false;
    if (!number.empty() && (number[0] == '+' || number[0] == '-')) {
        negative = number[0] == '-';
        number.remove_prefix(1);
    }
    double v = 0;
    const auto r = std::from_chars(number.data(), number.data() + number.size(), v,
                                   std::chars_format::general);
    if (r.ec == std::errc::result_out_of_range) {
        // Decide between overflow and underflow from the decimal exponent of
        // the first significant digit.
        long position = 0; // power of ten of the first significant digit
        bool seenPoint = false, found = false;
        long intDigits = 0, leadingFractionZeros = 0;
        std::size_t i = 0;
        for (; i < number.size() && number[i] != 'e' && number[i] != 'E'; ++i) {
            const char c = number[i];
            if (c == '.') {
                seenPoint = true;
                continue;
            }
            if (!found && c == '0') {
                if (seenPoint) ++leadingFractionZeros;
                continue;
            }
            if (!found) found = true;
            if (!seenPoint) ++intDigits;
        }
        if (!found) return negative ? -0.0 : 0.0;
        position = intDigits > 0 ? intDigits - 1 : -(leadingFractionZeros + 1);
        long exponent = 0;
        if (i < number.size()) {
            std::string_view e = number.substr(i + 1);
            bool eneg = false;
            if (!e.empty() && (e[0] == '+' || e[0] == '-')) {
                eneg = e[0] == '-';
                e.remove_prefix(1);
            }
            for (char c : e) {
                exponent = exponent * 10 + (c - '0');
                if (exponent > 100000) break; // far outside the range either way
            }
            if (eneg) exponent = -exponent;
        }
        if (position + exponent < 0) return negative ? -0.0 : 0.0;
        return std::nullopt;
    }
    if (r.ec != std::errc() || !std::isfinite(v)) return std::nullopt;
    return negative ? -v : v;
}

// Length of the number at the start of s: [sign] digits [. digits] [e [sign] digits],
// with at least one mantissa digit; 0 when there is none. A bare exponent
// letter is not part of the number.
std::size_t matchNumber(std::string_view s) {
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
        ++i;
        ++digits;
    }
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
            ++i;
            ++digits;
        }
    }
    if (digits == 0) return 0;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        std::size_t j = i + 1;
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
        const std::size_t start = j;
        while (j < s.size() && s[j] >= '0' && s[j] <= '9')
            ++j;
        if (j > start) i = j;
    }
    return i;
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

std::string rounded(double x, int decimals) { return numberText(roundHalfEven(x, decimals)); }

std::string scientific(double x) {
    if (std::isnan(x)) return "NaN";
    if (std::isinf(x)) return x < 0 ? "-Infinity" : "Infinity";
    Decimal d = shortestDecimal(x);
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
// (Ryu's method): the digits d and the exponent e of the shortest d x 10^e
// that reads back to the value, the nearest such one when there are several.

#include "engine/numformat_pow5.inc"

using u128 = unsigned __int128;

constexpr int kMantissaBits = 52;
constexpr int kBias = 1023;
constexpr int kPow5InvBits = 125;
constexpr int kPow5Bits = 125;

int pow5bits(int e) { return ((e * 1217359) >> 19) + 1; } // bit length of 5^e
int log10Pow2(int e) { return (e * 78913) >> 18; }         // floor(e log10 2)
int log10Pow5(int e) { return (e * 732923) >> 20; }        // floor(e log10 5)

int pow5Factor(std::uint64_t v) {
    int n = 0;
    while (v % 5 == 0) {
        v /= 5;
        ++n;
    }
    return n;
}
bool multipleOfPow5(std::uint64_t v, int p) { return pow5Factor(v) >= p; }
bool multipleOfPow2(std::uint64_t v, int p) { return (v & ((std::uint64_t{1} << p) - 1)) == 0; }

std::uint64_t mulShift(std::uint64_t m, const std::uint64_t* mul, int j) {
    const u128 b0 = static_cast<u128>(m) * mul[0];
    const u128 b2 = static_cast<u128>(m) * mul[1];
    return static_cast<std::uint64_t>(((b0 >> 64) + b2) >> (j - 64));
}

struct ShortestDigits {
    std::uint64_t digits;
    int exp;
};

ShortestDigits shortestDigits(std::uint64_t ieeeMantissa, int ieeeExponent) {
    int e2;
    std::uint64_t m2;
    if (ieeeExponent == 0) {
        e2 = 1 - kBias - kMantissaBits - 2;
        m2 = ieeeMantissa;
    } else {
        e2 = ieeeExponent - kBias - kMantissaBits - 2;
        m2 = (std::uint64_t{1} << kMantissaBits) | ieeeMantissa;
    }
    const bool acceptBounds = (m2 & 1) == 0;

    // the interval of decimals that read back: (mm, mp) around mv, in units of 2^e2
    const std::uint64_t mv = 4 * m2;
    const std::uint32_t mmShift = ieeeMantissa != 0 || ieeeExponent <= 1;

    std::uint64_t vr, vp, vm;
    int e10;
    bool vmTrailingZeros = false, vrTrailingZeros = false;
    if (e2 >= 0) {
        const int q = log10Pow2(e2) - (e2 > 3);
        e10 = q;
        const int k = kPow5InvBits + pow5bits(q) - 1;
        const int i = -e2 + q + k;
        vr = mulShift(4 * m2, kPow5Inv[q], i);
        vp = mulShift(4 * m2 + 2, kPow5Inv[q], i);
        vm = mulShift(4 * m2 - 1 - mmShift, kPow5Inv[q], i);
        if (q <= 21) {
            if (mv % 5 == 0) {
                vrTrailingZeros = multipleOfPow5(mv, q);
            } else if (acceptBounds) {
                vmTrailingZeros = multipleOfPow5(mv - 1 - mmShift, q);
            } else {
                vp -= multipleOfPow5(mv + 2, q);
            }
        }
    } else {
        const int q = log10Pow5(-e2) - (-e2 > 1);
        e10 = q + e2;
        const int i = -e2 - q;
        const int k = pow5bits(i) - kPow5Bits;
        const int j = q - k;
        vr = mulShift(4 * m2, kPow5[i], j);
        vp = mulShift(4 * m2 + 2, kPow5[i], j);
        vm = mulShift(4 * m2 - 1 - mmShift, kPow5[i], j);
        if (q <= 1) {
            vrTrailingZeros = true;
            if (acceptBounds) {
                vmTrailingZeros = mmShift == 1;
            } else {
                --vp;
            }
        } else if (q < 63) {
            vrTrailingZeros = multipleOfPow2(mv, q);
        }
    }

    // drop digits while the interval still holds a shorter decimal
    int removed = 0;
    std::uint64_t output;
    if (vmTrailingZeros || vrTrailingZeros) {
        int lastRemoved = 0;
        while (vp / 10 > vm / 10) {
            vmTrailingZeros &= vm % 10 == 0;
            vrTrailingZeros &= lastRemoved == 0;
            lastRemoved = static_cast<int>(vr % 10);
            vr /= 10;
            vp /= 10;
            vm /= 10;
            ++removed;
        }
        if (vmTrailingZeros) {
            while (vm % 10 == 0) {
                vrTrailingZeros &= lastRemoved == 0;
                lastRemoved = static_cast<int>(vr % 10);
                vr /= 10;
                vp /= 10;
                vm /= 10;
                ++removed;
            }
        }
        if (vrTrailingZeros && lastRemoved == 5 && vr % 2 == 0) lastRemoved = 4; // half: to even
        output = vr + ((vr == vm && (!acceptBounds || !vmTrailingZeros)) || lastRemoved >= 5);
    } else {
        bool roundUp = false;
        if (vp / 100 > vm / 100) {
            roundUp = vr % 100 >= 50;
            vr /= 100;
            vp /= 100;
            vm /= 100;
            removed += 2;
        }
        while (vp / 10 > vm / 10) {
            roundUp = vr % 10 >= 5;
            vr /= 10;
            vp /= 10;
            vm /= 10;
            ++removed;
        }
        output = vr + (vr == vm || roundUp);
    }
    return {output, e10 + removed};
}

constexpr char kTwoDigits[] = "00010203040506070809101112131415161718192021222324252627282930313233343536"
                              "37383940414243444546474849505152535455565758596061626364656667686970717273"
                              "7475767778798081828384858687888990919293949596979899";

void write2(char* p, std::uint32_t v) { std::memcpy(p, kTwoDigits + 2 * v, 2); }

void write4(char* p, std::uint32_t v) {
    write2(p, v / 100);
    write2(p + 2, v % 100);
}

// The decimal digits of v, right-aligned so that they end at `end`.
void writeDigits(char* end, std::uint64_t v) {
    while (v >= 100000000) {
        const auto low = static_cast<std::uint32_t>(v % 100000000);
        v /= 100000000;
        end -= 8;
        write4(end, low / 10000);
        write4(end + 4, low % 10000);
    }
    auto w = static_cast<std::uint32_t>(v);
    while (w >= 100) {
        end -= 2;
        write2(end, w % 100);
        w /= 100;
    }
    if (w >= 10) {
        end -= 2;
        write2(end, w);
    } else {
        *--end = static_cast<char>('0' + w);
    }
}

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

char* shortestTo(char* first, char* last, double x) {
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    const bool negative = bits >> 63;
    const std::uint64_t mantissa = bits & ((std::uint64_t{1} << kMantissaBits) - 1);
    const int exponent = static_cast<int>((bits >> kMantissaBits) & 0x7FF);
    if (exponent == 0x7FF) return std::to_chars(first, last, x).ptr; // infinite or NaN
    char* p = first;
    if (negative) *p++ = '-';
    if (exponent == 0 && mantissa == 0) {
        *p++ = '0';
        return p;
    }
    const ShortestDigits d = shortestDigits(mantissa, exponent);
    const int n = digitCount(d.digits);
    const int sciExp = d.exp + n - 1;

    // the shorter of the fixed and the exponent form, the fixed one on a tie
    const int sciLength = n + (n > 1 ? 1 : 0) + 2 + (std::abs(sciExp) >= 100 ? 3 : 2);
    int fixedLength;
    if (d.exp >= 0) {
        fixedLength = n + d.exp;
    } else if (sciExp >= 0) {
        fixedLength = n + 1;
    } else {
        fixedLength = 2 + (-sciExp - 1) + n;
    }

    if (fixedLength <= sciLength) {
        if (d.exp >= 0) {
            writeDigits(p + n, d.digits);
            p += n;
            std::memset(p, '0', static_cast<std::size_t>(d.exp));
            return p + d.exp;
        }
        if (sciExp >= 0) { // point inside the digits
            const int intDigits = sciExp + 1;
            writeDigits(p + n + 1, d.digits);
            std::memmove(p, p + 1, static_cast<std::size_t>(intDigits));
            p[intDigits] = '.';
            return p + n + 1;
        }
        *p++ = '0';
        *p++ = '.';
        const int zeros = -sciExp - 1;
        std::memset(p, '0', static_cast<std::size_t>(zeros));
        p += zeros;
        writeDigits(p + n, d.digits);
        return p + n;
    }

    // d.ddde+XX
    writeDigits(p + n + 1, d.digits);
    p[0] = p[1];
    if (n > 1) {
        p[1] = '.';
        p += n + 1;
    } else {
        p += 1;
    }
    *p++ = 'e';
    int e = sciExp;
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
    std::memcpy(p, kTwoDigits + 2 * e, 2);
    (void)last;
    return p + 2;
}

std::string shortest(double x) {
    char buf[64];
    return std::string(buf, shortestTo(buf, buf + sizeof buf, x));
}

double leadingNumber(std::string_view text) {
    // Blanks are dropped wherever they stand, then the number at the start is read.
    char buf[128];
    std::size_t n = 0;
    std::string big;
    for (char c : text) {
        if (c == ' ' || c == '\t' || c == '\n') continue;
        // Only characters that may belong to a number matter; stop at the first other one.
        if (!((c >= '0' && c <= '9') || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E'))
            break;
        if (n < sizeof buf) {
            buf[n++] = c;
        } else {
            if (big.empty()) big.assign(buf, n);
            big += c;
        }
    }
    const std::string_view s = big.empty() ? std::string_view(buf, n) : std::string_view(big);
    const std::size_t len = matchNumber(s);
    if (len == 0) return 0.0;
    if (const auto v = convert(s.substr(0, len))) return *v;
    return (s[0] == '-') ? -HUGE_VAL : HUGE_VAL;
}

bool isNumber(std::string_view text) { return strictNumber(text).has_value(); }

std::optional<double> strictNumber(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    const std::size_t len = matchNumber(text);
    if (len == 0 || len != text.size()) return std::nullopt;
    return convert(text);
}

} // namespace velmora::fmt
