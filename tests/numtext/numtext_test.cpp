#include "numtext/numtext.h"

#include <gtest/gtest.h>

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

using namespace velmora;

namespace {

struct RoundCase {
    const char* name;
    double x;
    int decimals;
    double expected;
};

TEST(NumFormat, RoundHalfEven) {
    const std::vector<RoundCase> cases = {
        {"quarter_down_to_even", 0.125, 2, 0.12},
        {"three_eighths_up_to_even", 0.375, 2, 0.38},
        {"negative_half_to_even", -0.125, 2, -0.12},
        {"integer_half_down", 2.5, 0, 2},
        {"integer_half_up", 3.5, 0, 4},
        {"negative_integer_half", -2.5, 0, -2},
        {"langelier_display", 0.123456, 4, 0.1235},
        {"above_half", 1.23456, 4, 1.2346},
        {"below_half", 1.23454, 4, 1.2345},
        // the decimal the double stands for decides, not its binary expansion
        {"decimal_half_odd_up", 2.675, 2, 2.68},
        {"decimal_half_even_down", 1.005, 2, 1.0},
        {"decimal_half_4_decimals", 0.12345, 4, 0.1234},
        {"carry_through_nines", 9.99995, 4, 10.0},
        {"carry_below_one", 0.99995, 4, 1.0},
        {"first_dropped_digit_is_half_of_zero", 0.00005, 4, 0.0},
        {"first_dropped_digit_is_half_of_odd", 0.00015, 4, 0.0002},
        {"first_dropped_digit_is_half_of_even", 0.00025, 4, 0.0002},
        {"all_digits_dropped_above_half", 0.00006, 4, 0.0001},
        {"far_below_the_last_place", 4e-7, 6, 0.0},
        {"exact_already", 0.25, 4, 0.25},
        {"large_value", 123456.789, 1, 123456.8},
        {"more_decimals_than_digits", 1.5, 10, 1.5},
        {"zero", 0.0, 4, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::roundHalfEven(c.x, c.decimals), c.expected);
    }
    // a negative value that rounds to zero gives zero, not minus zero
    EXPECT_FALSE(std::signbit(fmt::roundHalfEven(-0.00001, 4)));
}

struct TextCase {
    const char* name;
    double x;
    const char* expected;
};

TEST(NumFormat, NumberText) {
    const std::vector<TextCase> cases = {
        {"quarter", 0.25, "0.25"},
        {"negative_integer", -2, "-2"},
        {"zero", 0, "0"},
        {"negative_zero", -0.0, "0"},
        {"fifteen_significant", 1.0 / 3, "0.333333333333333"},
        {"fifteen_significant_rounded", 2.0 / 3, "0.666666666666667"},
        {"no_trailing_zeros", 12.5000, "12.5"},
        {"small_plain", 0.00001, "0.00001"},
        {"large_plain", 123456789012345.0, "123456789012345"},
        {"huge_exponent", 1e20, "1E+20"},
        {"tiny_exponent", -1.5e-20, "-1.5E-20"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::numberText(c.x), c.expected);
    }
}

TEST(NumFormat, Rounded) {
    struct Case {
        const char* name;
        double x;
        int decimals;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"langelier_0_123456", 0.123456, 4, "0.1235"},
        {"minus_one_and_a_half", -1.5, 4, "-1.5"},
        {"two", 2, 4, "2"},
        {"quarter", 0.25, 4, "0.25"},
        {"four_decimals", 1.23456, 4, "1.2346"},
        {"minus_two", -2, 4, "-2"},
        {"tiny_negative_is_zero", -0.00001, 4, "0"},
        // the accuracy sums of the ion balance example, to 5 decimals
        {"sum_of_cations", 8.056027, 5, "8.05603"},
        {"percent_difference", 9.489978, 5, "9.48998"},
        {"activity_limiting_law", 0.891250938133746, 5, "0.89125"},
        {"activity_divalent", 0.630957344480193, 5, "0.63096"},
        {"five_decimals_small", 0.000012, 5, "0.00001"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::rounded(c.x, c.decimals), c.expected);
    }
}

TEST(NumFormat, Scientific) {
    const std::vector<TextCase> cases = {
        {"four_decimals_when_nonzero", 0.0012345, "1.2345E-3"},
        {"three_decimals_always", 25, "2.500E1"},
        {"positive_exponent", 12345, "1.2345E4"},
        {"driving_force_half", 0.5, "5.000E-1"},
        {"negative_momentary_excess", -0.000123, "-1.230E-4"},
        {"exponent_zero", 7.25, "7.250E0"},
        {"zero", 0, "0.000E0"},
        {"rounds_fifth_digit", 1.234567e-5, "1.2346E-5"},
        {"half_away_from_zero", 1.23455, "1.2346E0"},
        {"carry_into_exponent", 9.99996, "1.000E1"},
        {"fourth_decimal_zero_dropped", 3.00001, "3.000E0"},
        {"big_exponent", 6.02214e23, "6.0221E23"},
        {"ionic_strength", 0.01, "1.000E-2"},
        // 1190.1 mg/L of dissolved solids: 2.5e-5 x 1190.1 is the double below 0.0297525
        {"half_at_fifteen_digits", 2.5e-5 * 1190.1, "2.9753E-2"},
        {"below_half_at_fifteen_digits", 0.02975249999999, "2.9752E-2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::scientific(c.x), c.expected);
    }
}

struct LabelCase {
    const char* name;
    const char* pattern;
    double x;
    const char* expected;
};

TEST(NumFormat, DataLabel) {
    const std::vector<LabelCase> cases = {
        {"fixed_pads_decimals", "0.000", 1.5, "1.500"},
        {"fixed_negative_index", "0.000", -1.23456, "-1.235"},
        {"fixed_half_away_from_zero", "0.000", 0.0125, "0.013"},
        {"fixed_negative_half_away", "0.000", -0.0125, "-0.013"},
        {"fixed_decimal_value_decides", "0.000", 2.0005, "2.001"},
        {"fixed_carry_into_integer", "0.000", 9.9996, "10.000"},
        {"fixed_rounds_up_from_below_all_digits", "0.000", 0.0005, "0.001"},
        {"fixed_small_negative_keeps_sign", "0.000", -0.0004, "-0.000"},
        {"fixed_zero", "0.000", 0, "0.000"},
        {"fixed_minus_zero_has_no_sign", "0.000", -0.0, "0.000"},
        {"fixed_large", "0.000", 12345.6789, "12345.679"},
        {"fixed_species", "0.00000", 0.000123456, "0.00012"},
        {"fixed_species_tiny", "0.00000", 3e-9, "0.00000"},
        {"fixed_species_half", "0.00000", 0.000015, "0.00002"},
        {"exp_minus_negative_exponent", "0.00E-00", 1.234e-5, "1.23E-05"},
        {"exp_minus_positive_exponent_no_sign", "0.00E-00", 12345, "1.23E04"},
        {"exp_minus_exponent_zero", "0.00E-00", 7.5, "7.50E00"},
        {"exp_minus_negative_value", "0.00E-00", -0.000987, "-9.87E-04"},
        {"exp_minus_zero", "0.00E-00", 0, "0.00E00"},
        {"exp_minus_carry_into_exponent", "0.00E-00", 9.996e-3, "1.00E-02"},
        {"exp_minus_half_away", "0.00E-00", 1.235e-3, "1.24E-03"},
        {"exp_minus_three_digit_exponent", "0.00E-00", 2.5e-123, "2.50E-123"},
        {"exp_plus_positive_exponent", "0.00E+00", 12345, "1.23E+04"},
        {"exp_plus_negative_exponent", "0.00E+00", 4.567e-7, "4.57E-07"},
        {"exp_plus_negative_value", "0.00E+00", -31.4159, "-3.14E+01"},
        {"exp_plus_zero", "0.00E+00", 0, "0.00E+00"},
        {"other_pattern_is_number_text", "General", 0.25, "0.25"},
        {"not_finite", "0.000", std::numeric_limits<double>::infinity(), "Infinity"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::dataLabel(c.x, c.pattern), c.expected);
    }
}

TEST(NumFormat, PrintNum) {
    const std::vector<TextCase> cases = {
        {"below_one_no_zero", 0.345678, " .345678 "},
        {"exponent_below_0_0001", 0.000012, " 1.2E-05 "},
        {"negative_below_one", -0.5, "-.5 "},
        {"zero", 0, " 0 "},
        {"rounded_langelier_0_0000004", fmt::roundHalfEven(0.0000004, 6), " 0 "},
        {"rounded_negative_to_zero", fmt::roundHalfEven(-0.0000004, 6), " 0 "},
        {"exactly_0_0001_is_plain", 0.0001, " .0001 "},
        {"integer", 7, " 7 "},
        {"negative_with_integer_part", -1.25, "-1.25 "},
        {"fifteen_digits", 1.0 / 3, " .333333333333333 "},
        {"large_exponent", 1e15, " 1E+15 "},
        {"negative_exponent_form", -0.00002, "-2E-05 "},
        {"six_decimals", fmt::roundHalfEven(0.240594, 6), " .240594 "},
        {"ryznar_like", fmt::roundHalfEven(7.018821, 6), " 7.018821 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::printNum(c.x), c.expected);
    }
}

TEST(NumFormat, ShortestReadsBack) {
    const std::vector<double> values = {0.1,           1.0 / 3, -2.5,       1e-5,
                                        123456789.123, 7.25941, 1e300,      5e-324,
                                        -0.0,          0.0,     2.23665e-4, 0.630957344480193};
    for (double v : values) {
        const std::string s = fmt::shortest(v);
        SCOPED_TRACE(s);
        const auto back = fmt::strictNumber(s);
        ASSERT_TRUE(back.has_value());
        EXPECT_EQ(*back, v);
        EXPECT_EQ(std::signbit(*back), std::signbit(v));
    }
    EXPECT_EQ(fmt::shortest(0.1), "0.1");
    EXPECT_EQ(fmt::shortest(-2.5), "-2.5");
    EXPECT_EQ(fmt::shortest(200), "200");
}

// The shortest text is computed by the program itself; it must agree with
// the standard library's to_chars character for character.
TEST(NumFormat, ShortestAgreesWithToChars) {
    std::mt19937_64 random(12345);
    std::uniform_real_distribution<double> exponent(-20, 20);
    std::vector<double> values;
    for (int i = 0; i < 200000; ++i) {
        std::uint64_t bits = random();
        double x;
        std::memcpy(&x, &bits, sizeof x);
        if (std::isfinite(x)) values.push_back(x);
        const double y = std::pow(10.0, exponent(random));
        values.push_back(y);
        values.push_back(std::round(y));
        values.push_back(std::round(y * 1000) / 1000);
    }
    for (int e = -1074; e <= 1023; ++e) { // powers of two and their neighbours
        const double p = std::ldexp(1.0, e);
        values.insert(values.end(), {p, std::nextafter(p, 0.0), std::nextafter(p, HUGE_VAL)});
    }
    for (int i = 0; i < 1000; ++i) // integers, tenths, small subnormals
        values.insert(values.end(), {double(i), i / 10.0, i * 5e-324, i * 1e15});
    values.insert(values.end(), {0.0, -0.0, std::numeric_limits<double>::max(),
                                 std::numeric_limits<double>::min(), 2.2250738585072009e-308});
    int mismatches = 0;
    for (double v : values) {
        char expected[64];
        const auto end = std::to_chars(expected, expected + sizeof expected, v).ptr;
        const std::string mine = fmt::shortest(v);
        if (mine != std::string(expected, end) && ++mismatches <= 10)
            ADD_FAILURE() << std::string(expected, end) << " written as " << mine;
        const auto back = fmt::strictNumber(mine);
        if (!back || *back != v) ADD_FAILURE() << mine << " does not read back";
    }
    EXPECT_EQ(mismatches, 0);
}

// The digits of most values come from one product with a cached power of
// ten, and only the cases on the edge of the rounding interval take the long
// way; those edges are where short decimals and their neighbours lie, and
// every binary exponent has its own cached power.
TEST(NumFormat, ShortestAgreesWithToCharsAtEveryExponentAndEdge) {
    std::mt19937_64 random(2024);
    std::vector<double> values;
    for (std::uint64_t e = 1; e < 2047; ++e) { // normal numbers, random mantissas
        for (int i = 0; i < 40; ++i) {
            const std::uint64_t bits = (e << 52) | (random() & ((std::uint64_t{1} << 52) - 1));
            double x;
            std::memcpy(&x, &bits, sizeof x);
            values.push_back(x);
        }
    }
    for (int i = 0; i < 40000; ++i) { // short decimals and their nearest neighbours
        const std::string text = std::to_string(random() % 100000000) + "e" +
                                 std::to_string(static_cast<int>(random() % 640) - 320);
        double x = 0;
        std::from_chars(text.data(), text.data() + text.size(), x);
        double up = x, down = x;
        for (int k = 0; k < 3; ++k) {
            values.insert(values.end(), {up, down});
            up = std::nextafter(up, HUGE_VAL);
            down = std::nextafter(down, 0.0);
        }
    }
    for (int i = 0; i < 20000; ++i) { // integers, halves and quarters of every size
        const std::uint64_t m = random() >> (random() % 64);
        values.push_back(std::ldexp(static_cast<double>(m), static_cast<int>(random() % 8) - 2));
    }
    int mismatches = 0;
    for (double v : values) {
        if (!std::isfinite(v)) continue;
        char expected[64];
        const auto end = std::to_chars(expected, expected + sizeof expected, v).ptr;
        const std::string mine = fmt::shortest(v);
        if (mine != std::string(expected, end) && ++mismatches <= 10)
            ADD_FAILURE() << std::string(expected, end) << " written as " << mine;
    }
    EXPECT_EQ(mismatches, 0);
}

// A row of numbers at once gives the same text as one number at a time,
// special values and groups of every length included.
TEST(NumFormat, ShortestListMatchesShortest) {
    const double specials[] = {0.0,
                               -0.0,
                               HUGE_VAL,
                               -HUGE_VAL,
                               std::numeric_limits<double>::quiet_NaN(),
                               5e-324,
                               -2.2250738585072009e-308,
                               0.5,
                               1024,
                               9007199254740994.0,
                               123456789012345680000.0,
                               1e22,
                               1e23,
                               0.0001234,
                               -1e-5,
                               7.46,
                               -0.0193472861,
                               1.7976931348623157e308};
    std::mt19937_64 random(99);
    std::vector<double> values(std::begin(specials), std::end(specials));
    std::uniform_real_distribution<double> exponent(-12, 6);
    while (values.size() < 200) {
        const double x = std::pow(10.0, exponent(random));
        values.push_back(random() % 2 ? x : -x);
    }
    for (std::size_t count : {0, 1, 3, 23, 26, 32, 33, 70, 200}) {
        SCOPED_TRACE(count);
        std::string expected;
        for (std::size_t i = 0; i < count; ++i)
            expected += ';' + fmt::shortest(values[i]);
        std::vector<char> buffer(49 * count + 1);
        char* end = fmt::shortestListTo(buffer.data(), values.data(), count, ';');
        EXPECT_EQ(std::string(buffer.data(), end), expected);
    }
}

// Short texts of every shape read exactly as the standard library reads the
// same number: all texts of up to five characters over the characters that
// matter, then longer ones at random, some of them just past the eight
// characters the quick reading takes.
TEST(NumFormat, ShortTextsReadAsFromChars) {
    auto check = [](const std::string& text) {
        std::size_t b = text.find_first_not_of(" \t"), e = text.find_last_not_of(" \t");
        const std::string core = b == std::string::npos ? "" : text.substr(b, e - b + 1);
        // [sign] (digits [. digits] | . digits) [e [sign] digits]
        std::size_t i = 0;
        if (i < core.size() && (core[i] == '+' || core[i] == '-')) ++i;
        const std::size_t mantissa = i;
        std::size_t digits = 0;
        while (i < core.size() && std::isdigit(static_cast<unsigned char>(core[i])))
            ++i, ++digits;
        if (i < core.size() && core[i] == '.') ++i;
        while (i < core.size() && std::isdigit(static_cast<unsigned char>(core[i])))
            ++i, ++digits;
        bool valid = digits > 0 && i > mantissa;
        if (valid && i < core.size() && (core[i] == 'e' || core[i] == 'E')) {
            ++i;
            if (i < core.size() && (core[i] == '+' || core[i] == '-')) ++i;
            const std::size_t start = i;
            while (i < core.size() && std::isdigit(static_cast<unsigned char>(core[i])))
                ++i;
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
        if (!valid) return;
        ASSERT_EQ(std::signbit(*mine), std::signbit(expected)) << text;
        ASSERT_EQ(*mine, expected) << text;
        if (core == text) {
            ASSERT_EQ(fmt::leadingNumber(text), expected) << text;
        }
    };
    const std::string alphabet = "059.-+e a";
    std::vector<std::string> texts = {""};
    for (int length = 1; length <= 5; ++length) {
        std::vector<std::string> longer;
        for (const std::string& t : texts)
            if (t.size() == static_cast<std::size_t>(length - 1))
                for (char c : alphabet)
                    longer.push_back(t + c);
        texts.insert(texts.end(), longer.begin(), longer.end());
    }
    for (const std::string& t : texts)
        check(t);
    std::mt19937 random(4);
    const std::string characters = "0123456789012345678901234567890123456789.-+";
    for (int i = 0; i < 200000; ++i) {
        std::string t(6 + random() % 5, ' ');
        for (char& c : t)
            c = characters[random() % characters.size()];
        check(t);
    }
}

// The quick reading looks only at the characters of the text, wherever it
// lies in memory: a text cut from a longer one reads as its own characters.
TEST(NumFormat, ReadingStopsAtTheEndOfTheText) {
    const char buffer[] = "-12.5999999";
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 1)), std::nullopt);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 2)), -1.0);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 4)), -12.0);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 5)), -12.5);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 8)), -12.5999);
    EXPECT_EQ(fmt::strictNumber(std::string_view(buffer, 9)), -12.59999);
    EXPECT_EQ(fmt::leadingNumber(std::string_view(buffer + 1, 3)), 12.0);
    EXPECT_EQ(fmt::leadingNumber(std::string_view(buffer + 1, 7)), 12.5999);
    EXPECT_TRUE(std::signbit(*fmt::strictNumber("-0")));
    EXPECT_TRUE(std::signbit(*fmt::strictNumber("-0.000")));
    EXPECT_EQ(fmt::strictNumber("12345678"), 12345678.0);
    EXPECT_EQ(fmt::strictNumber("-1234567"), -1234567.0);
    EXPECT_EQ(fmt::strictNumber("0.0000001"), 1e-7);
    EXPECT_EQ(fmt::strictNumber("\xc3\xa9"), std::nullopt);                 // not ASCII
    EXPECT_EQ(fmt::strictNumber(std::string_view("7\0", 2)), std::nullopt); // a zero byte
}

// The quick conversion of short numbers must give the correctly rounded value.
TEST(NumFormat, StrictNumberAgreesWithFromChars) {
    std::mt19937_64 random(777);
    for (int i = 0; i < 200000; ++i) {
        std::string text;
        const int whole = static_cast<int>(random() % 22),
                  fraction = static_cast<int>(random() % 22);
        for (int k = 0; k < whole; ++k)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 2) {
            text += '.';
            for (int k = 0; k < fraction; ++k)
                text += static_cast<char>('0' + random() % 10);
        }
        if (random() % 3 == 0) {
            text += 'e';
            text += std::to_string(static_cast<int>(random() % 60) - 30);
        }
        double expected = 0;
        const auto r = std::from_chars(text.data(), text.data() + text.size(), expected);
        const auto mine = fmt::strictNumber(text);
        if (r.ec != std::errc() || r.ptr != text.data() + text.size()) {
            EXPECT_FALSE(mine.has_value()) << text;
            continue;
        }
        ASSERT_TRUE(mine.has_value()) << text;
        ASSERT_EQ(*mine, expected) << text;
        ASSERT_EQ(fmt::leadingNumber(text), expected) << text;
    }
}

struct LeadingCase {
    const char* name;
    const char* text;
    double expected;
};

TEST(NumFormat, LeadingNumber) {
    const std::vector<LeadingCase> cases = {
        {"plain", "7.5", 7.5},
        {"surrounding_blanks", " 7.5 ", 7.5},
        {"blanks_inside_are_ignored", "1 2 . 5", 12.5},
        {"tab_and_line_feed_ignored", "\t3\n4", 34},
        {"stops_at_letter", "12abc", 12},
        {"stops_at_second_point", "1.2.3", 1.2},
        {"stops_at_inner_sign", "1-2", 1},
        {"empty", "", 0},
        {"only_blanks", "   ", 0},
        {"no_number", "abc", 0},
        {"lone_minus", "-", 0},
        {"lone_point", ".", 0},
        {"double_sign", "--5", 0},
        {"leading_point", ".5", 0.5},
        {"plus_sign", "+4", 4},
        {"negative", "-3.25", -3.25},
        {"exponent", "-3.5e2x", -350},
        {"capital_exponent", "2E-3", 0.002},
        {"bare_exponent_letter", "1e", 1},
        {"exponent_sign_without_digits", "1e+", 1},
        {"trailing_point", "5.", 5},
        {"comma_is_not_a_separator", "1,5", 1},
        {"underflow_reads_zero", "1e-400", 0},
        {"long_text",
         "000000000000000000000000000000000000000000000000000000000000000000000000000"
         "00000000000000000000000000000000000000000000000000000000000000000000012.5",
         12.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::leadingNumber(c.text), c.expected);
    }
    // a number beyond the range of a double reads as infinite, which the
    // callers refuse before it reaches the engine
    EXPECT_TRUE(std::isinf(fmt::leadingNumber("1e400")));
    EXPECT_LT(fmt::leadingNumber("-1e400"), 0);
}

struct IsNumberCase {
    const char* name;
    const char* text;
    bool number;
    double value;
};

TEST(NumFormat, IsNumberAndStrictNumber) {
    const std::vector<IsNumberCase> cases = {
        {"integer", "7", true, 7},
        {"decimal", "7.25", true, 7.25},
        {"surrounding_blanks", " 7.5 ", true, 7.5},
        {"surrounding_tabs", "\t8\t", true, 8},
        {"leading_zero_below_one", "0.5", true, 0.5},
        // pasted whole, ".5" converts completely; typed, its first keystroke
        // "." is already rejected
        {"leading_point_pasted", ".5", true, 0.5},
        {"trailing_point", "5.", true, 5},
        {"plus_sign", "+3", true, 3},
        {"minus_sign", "-3", true, -3},
        {"exponent", "1e5", true, 1e5},
        {"exponent_signed", "1.5E-3", true, 1.5e-3},
        {"exponent_plus", "2e+2", true, 200},
        {"largest_finite", "1.7976931348623157e308", true, 1.7976931348623157e308},
        {"underflow_is_zero", "1e-400", true, 0},
        {"out_of_range", "1e400", false, 0},
        {"out_of_range_negative", "-1e400", false, 0},
        {"lone_minus", "-", false, 0},
        {"lone_plus", "+", false, 0},
        {"lone_point", ".", false, 0},
        {"signed_point", "-.", false, 0},
        {"bare_exponent", "1e", false, 0},
        {"exponent_sign_only", "1e-", false, 0},
        {"exponent_only", "e5", false, 0},
        {"empty", "", false, 0},
        {"only_blanks", "  ", false, 0},
        {"blank_inside", "1 2", false, 0},
        {"two_points", "1.2.3", false, 0},
        {"letters", "abc", false, 0},
        {"trailing_letter", "12a", false, 0},
        {"comma", "1,5", false, 0},
        {"double_sign", "--1", false, 0},
        {"infinity_word", "inf", false, 0},
        {"nan_word", "nan", false, 0},
        {"hex", "0x10", false, 0},
        {"line_feed_around", "\n5", false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fmt::isNumber(c.text), c.number);
        const auto v = fmt::strictNumber(c.text);
        EXPECT_EQ(v.has_value(), c.number);
        if (v && c.number) {
            EXPECT_EQ(*v, c.value);
        }
    }
}

} // namespace

// Texts of hundreds of thousands of digits: the value they stand for decides
// whether they are a number, never the length of the text or its exponent.
TEST(NumFormat, LongTextsAreReadByTheirValue) {
    const std::string zeros100k(100000, '0'), zeros200k(200000, '0');
    struct Case {
        const char* name;
        std::string text;
        bool number;
        double value;
    };
    const std::vector<Case> cases = {
        {"far_beyond_range", "0." + zeros100k + "7e1000003", false, 0},   // 7e900002
        {"far_beyond_range_2", "0." + zeros200k + "1e1000010", false, 0}, // 1e800009
        {"short_text_same_range", "1e800009", false, 0},
        {"in_range_after_many_zeros", "0." + zeros100k + "7e100003", true, 700},
        {"negative_in_range", "-0." + zeros100k + "25e100001", true, -2.5},
        {"tiny", "0." + zeros100k + "7e-1000003", true, 0},
        {"tiny_short_fraction", "7e-1000000000000000000000", true, 0},
        {"huge_exponent_digits", "1e" + zeros200k + "5", true, 1e5},
        {"many_integer_digits", "7" + zeros200k + "e-200000", true, 7},
        {"many_integer_digits_overflow", "7" + zeros200k, false, 0},
        {"just_beyond_largest", "1.8e308", false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto v = fmt::strictNumber(c.text);
        EXPECT_EQ(v.has_value(), c.number);
        if (v && c.number) {
            EXPECT_EQ(*v, c.value);
        }
        // the reading of a box's leading number agrees: out of range is infinite
        const double lead = fmt::leadingNumber(c.text);
        if (c.number)
            EXPECT_EQ(lead, c.value);
        else
            EXPECT_TRUE(std::isinf(lead));
    }
}
