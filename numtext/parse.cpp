// Reading typed numbers: the leading-number reading of a box and the strict
// is-a-number test, decided by the value a text stands for.
#include "numtext/numtext.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <system_error>

namespace velmora::fmt {

namespace {

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
