// The shortest text that reads back to the same double, laid out as
// std::to_chars lays it out: the shorter of the fixed and the exponent form
// (the fixed one on a tie), an integer in the fixed form with every digit of
// its exact value. The digits come from Dragonbox; the layout is ours.
#include "numtext/numtext.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <dragonbox/dragonbox.h>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora::fmt {

namespace {

// 10^0 to 10^17
constexpr auto kPow10 = [] {
    std::array<std::uint64_t, 18> p{1};
    for (std::size_t i = 1; i < p.size(); ++i)
        p[i] = 10 * p[i - 1];
    return p;
}();

// value = digits x 10^(sciExp - 16), exactly 17 digits (trailing zeros too)
struct Digits17 {
    std::uint64_t digits;
    int sciExp;
};

// The shortest digits of a finite nonzero x. They are left with any
// trailing zeros, which the layout finds in the digit text at no cost.
Digits17 shortestDigits(double x) {
    namespace policy = jkj::dragonbox::policy;
    const auto d =
        jkj::dragonbox::to_decimal(x, policy::sign::ignore, policy::trailing_zero::ignore);
    // the number of digits, at most 17: about bits x log10 2, then one more
    // when that falls short
    const int bits = 64 - __builtin_clzll(d.significand);
    int n = (bits * 1233) >> 12;
    n += d.significand >= kPow10[n];
    return {d.significand * kPow10[17 - n], d.exponent + n - 1};
}

constexpr char kTwoDigits[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536"
    "37383940414243444546474849505152535455565758596061626364656667686970717273"
    "7475767778798081828384858687888990919293949596979899";

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
    std::memcpy(p, kTwoDigits + 2 * e, 2);
    return p + 2;
}

// An integer of 2^53 or more (below 10^22 here) with every digit of its
// exact value: `length` digits.
char* writeExactInteger(char* p, std::uint64_t magnitude, int length) {
    using u128 = unsigned __int128;
    const std::uint64_t c = (magnitude & ((std::uint64_t{1} << 52) - 1)) | (std::uint64_t{1} << 52);
    u128 v = static_cast<u128>(c) << ((magnitude >> 52) - 1075);
    char* end = p + length;
    for (char* q = end; q != p;) {
        *--q = static_cast<char>('0' + static_cast<int>(v % 10));
        v /= 10;
    }
    return end;
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
// The eight digits of x < 10^8, four lanes at a time.
std::uint64_t digitValues8(std::uint32_t x) {
    const std::uint64_t v = x;
    const std::uint64_t abcd = (v * 109951163) >> 40; // v / 10000
    const std::uint64_t merged = abcd | ((v - abcd * 10000) << 32);
    const std::uint64_t hundreds = ((merged * 10486) >> 20) & ((0x7FULL << 32) | 0x7FULL);
    const std::uint64_t pairs = hundreds | ((merged - 100 * hundreds) << 16);
    const std::uint64_t tens =
        ((pairs * 103) >> 10) & ((0xFULL << 48) | (0xFULL << 32) | (0xFULL << 16) | 0xFULL);
    return tens | ((pairs - 10 * tens) << 8);
}

void digitValues16(std::uint32_t high, std::uint32_t low, std::uint64_t& first,
                   std::uint64_t& second) {
    first = digitValues8(high);
    second = digitValues8(low);
}
#endif

// The text of the digits d of a finite nonzero |x| with the given bits.
char* writeDigits(char* p, const Digits17& d, std::uint64_t magnitude) {
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
                return writeExactInteger(p, magnitude, fixedLength);
            put17(p);
            return p + fixedLength;
        }
        if (sciExp >= 0) { // point inside the digits: digits 1 to 16 moved one place on
            const int intDigits = sciExp + 1;
            put17(p);
            using u128 = unsigned __int128;
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

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

} // namespace

char* shortestTo(char* first, char* last, double x) {
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    const std::uint64_t magnitude = bits & ~kSignBit;
    // infinite or NaN; the layout writes words as a little-endian machine
    // holds them
    if ((magnitude >> 52) == 0x7FF || std::endian::native != std::endian::little)
        return std::to_chars(first, last, x).ptr;
    char* p = first;
    if (bits >> 63) *p++ = '-';
    if (magnitude == 0) {
        *p++ = '0';
        return p;
    }
    return writeDigits(p, shortestDigits(x), magnitude);
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
        bool plain[kGroup];
        for (std::size_t i = 0; i < n; ++i) {
            std::uint64_t bits;
            std::memcpy(&bits, &x[i], sizeof bits);
            // zero, infinite and NaN go the long way
            plain[i] = std::endian::native == std::endian::little &&
                       (bits & ~kSignBit) - 1 < 0x7FEFFFFFFFFFFFFFu;
            if (plain[i]) digits[i] = shortestDigits(x[i]);
        }
        for (std::size_t i = 0; i < n; ++i) {
            *p++ = separator;
            if (plain[i]) {
                std::uint64_t bits;
                std::memcpy(&bits, &x[i], sizeof bits);
                *p = '-';
                p += bits >> 63;
                p = writeDigits(p, digits[i], bits & ~kSignBit);
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

} // namespace velmora::fmt
