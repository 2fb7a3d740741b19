// The shortest text that reads back to the same double, laid out as
// std::to_chars lays it out: the shorter of the fixed and the exponent form
// (the fixed one on a tie), an integer in the fixed form with every digit of
// its exact value.
#include "numtext/numtext.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora::fmt {

namespace {

// ---------------------------------------------------------------------------
// The shortest decimal digits of a double by exact 128-bit arithmetic
// (Giulietti's Schubfach method): the digits d and the exponent e of the
// shortest d x 10^e that reads back to the value, the nearest such one when
// there are several. d may end in zeros.

#include "numtext/shortest_pow10.inc"

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

#include "numtext/shortest_cache.inc"

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

} // namespace velmora::fmt
