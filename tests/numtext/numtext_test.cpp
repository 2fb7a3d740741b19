#include "numtext/numtext.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using namespace velmora;

namespace {

TEST(NumText, RoundHalfEven) {
    struct Case {
        double x;
        int decimals;
        double expected;
    };
    // the decimal the double stands for decides, not its binary expansion
    // (2.675, 1.005); every digit dropped rounds to zero or one unit of the
    // last place
    const Case cases[] = {{0.125, 2, 0.12},     {0.375, 2, 0.38},     {-0.125, 2, -0.12},
                          {2.5, 0, 2},          {3.5, 0, 4},          {1.23456, 4, 1.2346},
                          {1.23454, 4, 1.2345}, {2.675, 2, 2.68},     {1.005, 2, 1.0},
                          {9.99995, 4, 10.0},   {0.99995, 4, 1.0},    {0.00005, 4, 0.0},
                          {0.00015, 4, 0.0002}, {0.00006, 4, 0.0001}, {4e-7, 6, 0.0},
                          {1.5, 10, 1.5},       {0.0, 4, 0.0}};
    for (const Case& c : cases)
        EXPECT_EQ(fmt::roundHalfEven(c.x, c.decimals), c.expected) << c.x << " to " << c.decimals;
    // a negative value that rounds to zero gives zero, not minus zero
    EXPECT_FALSE(std::signbit(fmt::roundHalfEven(-0.00001, 4)));
}

// The display texts, each format over a row of values, joined by '|':
// numberText, rounded, scientific (15 significant digits first, so
// 2.5e-5 x 1190.1, the double below 0.0297525, shows 2.9753E-2), the chart's
// data labels and the report's print format.
TEST(NumText, DisplayTexts) {
    const double inf = HUGE_VAL, nan = std::nan("");
    const auto texts = [](auto format, std::initializer_list<double> values) {
        std::string s;
        for (double x : values)
            s.append(s.empty() ? "" : "|").append(format(x));
        return s;
    };
    const auto rounded = [](int decimals) {
        return [decimals](double x) { return fmt::rounded(x, decimals); };
    };
    const auto label = [](const char* pattern) {
        return [pattern](double x) { return fmt::dataLabel(x, pattern); };
    };
    EXPECT_EQ(texts(fmt::numberText,
                    {0.25, -0.0, 2.0 / 3, 0.00001, 123456789012345.0, 1e20, -1.5e-20, nan, -inf}),
              "0.25|0|0.666666666666667|0.00001|123456789012345|1E+20|-1.5E-20|NaN|-Infinity");
    EXPECT_EQ(texts(rounded(4), {0.123456, -0.00001, 2}), "0.1235|0|2");
    EXPECT_EQ(texts(rounded(5), {0.630957344480193}), "0.63096");
    EXPECT_EQ(texts(fmt::scientific, {0.0012345, 25, -0.000123, 0, 1.23455, 9.99996, 6.02214e23,
                                      2.5e-5 * 1190.1, 0.02975249999999, nan, inf, -inf}),
              "1.2345E-3|2.500E1|-1.230E-4|0.000E0|1.2346E0|1.000E1|6.0221E23|2.9753E-2|2.9752E-2|"
              "NaN|Infinity|-Infinity");
    EXPECT_EQ(texts(label("0.000"), {1.5, -1.23456, -0.0125, 2.0005, 9.9996, 0.0005, -0.0004, -0.0,
                                     12345.6789, inf}),
              "1.500|-1.235|-0.013|2.001|10.000|0.001|-0.000|0.000|12345.679|Infinity");
    EXPECT_EQ(texts(label("0.00000"), {0.000123456, 3e-9}), "0.00012|0.00000");
    EXPECT_EQ(texts(label("0.00E-00"), {1.234e-5, 12345, -0.000987, 0, 9.996e-3, 2.5e-123}),
              "1.23E-05|1.23E04|-9.87E-04|0.00E00|1.00E-02|2.50E-123");
    EXPECT_EQ(texts(label("0.00E+00"), {12345, -inf}), "1.23E+04|-Infinity");
    EXPECT_EQ(texts(label("General"), {0.25}), "0.25");
    EXPECT_EQ(
        texts(fmt::printNum, {0.345678, 0.000012, -0.5, 0, 0.0001, -1.25, 1e15, 7, nan, -inf}),
        " .345678 | 1.2E-05 |-.5 | 0 | .0001 |-1.25 | 1E+15 | 7 | NaN | -Infinity ");
}

std::string toCharsText(double x) {
    char buf[64];
    return std::string(buf, std::to_chars(buf, buf + sizeof buf, x).ptr);
}

// The shortest text is the one std::to_chars writes, character for
// character, one value at a time and as lists of every length: any bits,
// subnormals, powers of two and ten and their neighbours, short decimals,
// integers of every size (all digits of the exact value when fixed).
TEST(NumText, ShortestAgreesWithToChars) {
    std::mt19937_64 random(2024);
    const auto fromBits = [](std::uint64_t bits) {
        double x;
        std::memcpy(&x, &bits, sizeof x);
        return x;
    };
    std::vector<double> values = {0.0,  -0.0,   HUGE_VAL,   -HUGE_VAL,       NAN,    1e22, 1e23,
                                  1e21, 5e-324, 0x1p53 + 2, 0x1p70 + 0x1p20, DBL_MAX};
    for (int e = -1074; e <= 1023; ++e) {
        const double p = std::ldexp(1.0, e);
        values.insert(values.end(), {p, std::nextafter(p, 0.0), std::nextafter(p, HUGE_VAL)});
    }
    for (int e = -330; e <= 310; ++e) {
        for (int i = 0; i < 20; ++i) {
            const std::string text =
                std::to_string(i == 0 ? 1 : random() % 100000) + "e" + std::to_string(e);
            double x = 0;
            std::from_chars(text.data(), text.data() + text.size(), x);
            values.insert(values.end(), {x, std::nextafter(x, 0.0), std::nextafter(x, HUGE_VAL)});
        }
    }
    for (int i = 0; i < 60000; ++i) {
        values.insert(values.end(), {fromBits(random()), fromBits(random() >> 12),
                                     std::ldexp(static_cast<double>(random() >> (random() % 64)),
                                                static_cast<int>(random() % 40) - 8),
                                     static_cast<double>(random() % 10000000) / 1000});
    }
    std::string expected;
    int mismatches = 0;
    for (double v : values) {
        const std::string text = toCharsText(v);
        expected += ';' + text;
        if (fmt::shortest(v) != text && ++mismatches <= 10)
            ADD_FAILURE() << text << " written as " << fmt::shortest(v);
    }
    EXPECT_EQ(mismatches, 0);
    std::vector<char> buffer(49 * values.size());
    char* end = buffer.data();
    for (std::size_t start = 0, count = 0; start < values.size(); start += count, count += 7)
        end = fmt::shortestListTo(end, values.data() + start,
                                  std::min(count, values.size() - start), ';');
    EXPECT_TRUE(std::string_view(buffer.data(), end - buffer.data()) == expected);
}

// Texts read exactly as std::from_chars reads the same number, by the
// grammar [sign] (digits [. digits] | . digits) [e [sign] digits] between
// blanks: every text of up to five characters over the characters that
// matter, texts near the eight characters the quick reading takes, and long
// digit strings with exponents.
TEST(NumText, TextsReadAsFromChars) {
    auto check = [](const std::string& text) {
        std::size_t b = text.find_first_not_of(" \t"), e = text.find_last_not_of(" \t");
        const std::string core = b == std::string::npos ? "" : text.substr(b, e - b + 1);
        std::size_t i = 0, digits = 0;
        const auto skipDigits = [&] {
            while (i < core.size() && std::isdigit(static_cast<unsigned char>(core[i])))
                ++i, ++digits;
        };
        if (i < core.size() && (core[i] == '+' || core[i] == '-')) ++i;
        skipDigits();
        if (i < core.size() && core[i] == '.') ++i;
        skipDigits();
        bool valid = digits > 0;
        if (valid && i < core.size() && (core[i] == 'e' || core[i] == 'E')) {
            if (++i < core.size() && (core[i] == '+' || core[i] == '-')) ++i;
            const std::size_t start = i;
            skipDigits();
            valid = i > start;
        }
        valid = valid && i == core.size();
        double expected = 0;
        if (valid) {
            const std::size_t skip = core[0] == '+' ? 1 : 0;
            const auto r = std::from_chars(core.data() + skip, core.data() + core.size(), expected);
            if (r.ec == std::errc::result_out_of_range) {
                // too small reads as zero, too large is not a number
                valid = core.find("e-") != std::string::npos;
                expected = core[0] == '-' ? -0.0 : 0.0;
            }
        }
        const auto mine = fmt::strictNumber(text);
        ASSERT_EQ(mine.has_value(), valid) << "[" << text << "]";
        ASSERT_EQ(fmt::isNumber(text), valid) << "[" << text << "]";
        if (!valid) return;
        ASSERT_EQ(std::signbit(*mine), std::signbit(expected)) << text;
        ASSERT_EQ(*mine, expected) << text;
        if (core == text) {
            ASSERT_EQ(fmt::leadingNumber(text), expected) << text;
        }
    };
    const std::string alphabet = "059.-+e a";
    std::vector<std::string> texts = {""};
    for (std::size_t k = 0; k < texts.size() && texts[k].size() < 5; ++k)
        for (char c : alphabet)
            texts.push_back(texts[k] + c);
    std::mt19937_64 random(4);
    const auto digits = [&random](std::size_t n) {
        std::string s(n, '0');
        for (char& c : s)
            c = static_cast<char>('0' + random() % 10);
        return s;
    };
    for (int i = 0; i < 200000; ++i) {
        std::string t;
        if (i % 2) {
            t.assign(6 + random() % 5, ' ');
            for (char& c : t)
                c = "0123456789012345678901234567890123456789.-+"[random() % 43];
        } else {
            t = digits(random() % 22);
            if (random() % 2) t += '.' + digits(random() % 22);
            if (random() % 3 == 0) t += 'e' + std::to_string(static_cast<int>(random() % 60) - 30);
        }
        texts.push_back(t);
    }
    for (const std::string& t : texts)
        check(t);
}

// The quick reading looks only at the characters of the text, wherever it
// lies in memory: a text cut from a longer one reads as its own characters.
TEST(NumText, ReadingStopsAtTheEndOfTheText) {
    const char buffer[] = "-12.5999999";
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 1)), std::nullopt);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 2)), -1.0);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 5)), -12.5);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 9)), -12.59999);
    EXPECT_EQ(fmt::leadingNumber(std::string_view(buffer + 1, 3)), 12.0);
    EXPECT_EQ(fmt::leadingNumber(std::string_view(buffer + 1, 7)), 12.5999);
    EXPECT_EQ(fmt::strictNumber("\xc3\xa9"), std::nullopt);                 // not ASCII
    EXPECT_EQ(fmt::strictNumber(std::string_view("7\0", 2)), std::nullopt); // a zero byte
}

// What the grammar test above leaves out: the leading number of texts that
// are not numbers, other blanks and characters, and values out of range.
TEST(NumText, LeadingAndStrictNumber) {
    struct Case {
        const char* text;
        double leading;
        std::optional<double> strict;
    };
    const Case cases[] = {
        {"1 2 . 5", 12.5, std::nullopt},
        {"\t3\n4", 34, std::nullopt},
        {"\t8\t", 8, 8},
        {"\n5", 5, std::nullopt},
        {"12abc", 12, std::nullopt},
        {"1.2.3", 1.2, std::nullopt},
        {"1-2", 1, std::nullopt},
        {"1,5", 1, std::nullopt},
        {"--5", 0, std::nullopt},
        {"abc", 0, std::nullopt},
        {"-3.5e2x", -350, std::nullopt},
        {"1e+", 1, std::nullopt},
        {"inf", 0, std::nullopt},
        {"0x10", 0, std::nullopt},
        {"2E-3", 0.002, 0.002},
        {"  ", 0, std::nullopt},
        {"1e-400", 0, 0},
        {"1e400", HUGE_VAL, std::nullopt},
        {"-1e400", -HUGE_VAL, std::nullopt},
        {"1.7976931348623157e308", 1.7976931348623157e308, 1.7976931348623157e308},
        {"1.8e308", HUGE_VAL, std::nullopt}};
    for (const Case& c : cases) {
        EXPECT_EQ(fmt::leadingNumber(c.text), c.leading) << c.text;
        EXPECT_EQ(fmt::strictNumber(c.text), c.strict) << c.text;
    }
}

} // namespace

// Texts of hundreds of thousands of digits: the value they stand for decides
// whether they are a number, never the length of the text or its exponent.
TEST(NumText, LongTextsAreReadByTheirValue) {
    const std::string zeros100k(100000, '0'), zeros200k(200000, '0');
    struct Case {
        std::string text;
        std::optional<double> value;
    };
    const Case cases[] = {{"0." + zeros100k + "7e1000003", std::nullopt}, // 7e900002
                          {"1e800009", std::nullopt},
                          {"0." + zeros100k + "7e100003", 700},
                          {"-0." + zeros100k + "25e100001", -2.5},
                          {"0." + zeros100k + "7e-1000003", 0},
                          {"7e-1000000000000000000000", 0},
                          {"1e" + zeros200k + "5", 1e5},
                          {"7" + zeros200k + "e-200000", 7},
                          {"7" + zeros200k, std::nullopt}};
    for (const Case& c : cases) {
        EXPECT_EQ(fmt::strictNumber(c.text), c.value) << c.text.size();
        // the leading number agrees: out of range is infinite
        EXPECT_EQ(fmt::leadingNumber(c.text), c.value.value_or(HUGE_VAL)) << c.text.size();
    }
}
