// Number formats of the program, in one place: rounding, the texts the
// windows and the report show, and the readings of typed text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::fmt {

// x rounded to `decimals` decimal places, a half going to the even neighbour
// (decided on the decimal value of x, so 0.125 -> 0.12 and 0.375 -> 0.38).
double roundHalfEven(double x, int decimals);

// The default number text: up to 15 significant digits, no trailing zeros,
// a zero before the decimal point ("0.25", "-2", "1.2346").
std::string numberText(double x);

// roundHalfEven then numberText: the rounded displays ("0.1235", "-1.5", "2").
std::string rounded(double x, int decimals);

// The scientific pattern "0.000#E-#": 0.0012345 -> "1.2345E-3", 25 -> "2.500E1",
// 12345 -> "1.2345E4", -0.000123 -> "-1.230E-4".
std::string scientific(double x);

// The chart's data-label formats, written as a spreadsheet writes them
// (halves away from zero, decided on the decimal value of x):
//   "0.000"    -1.23456 -> "-1.235"          "0.00000"  0.000123456 -> "0.00012"
//   "0.00E-00" 1.234e-5 -> "1.23E-05", 12345 -> "1.23E04" (sign of a negative exponent only)
//   "0.00E+00" 1.234e-5 -> "1.23E-05", 12345 -> "1.23E+04" (sign always)
// A negative value that rounds to zero keeps its sign ("-0.000"). Any other
// pattern, and a value that is not finite, gets numberText.
std::string dataLabel(double x, std::string_view pattern);

// x with exactly `decimals` decimals, halves away from zero ("0.000" style).
std::string fixedDecimals(double x, int decimals);

// x as a mantissa with `decimals` decimals and an exponent of at least two
// digits; `plusSign` writes "+" before a positive exponent ("0.00E+00"
// style), otherwise it has no sign ("0.00E-00" style).
std::string exponentDecimals(double x, int decimals, bool plusSign);

// The report's print format num(x): a leading blank when x is not negative,
// no zero before the point below 1 (".345678"), exponent form below 0.0001
// ("1.2E-05"), then one trailing blank.
std::string printNum(double x);

// The shortest text that reads back to the same double (batch output).
std::string shortest(double x);
// The same text written into [first, last), which must hold at least 48
// characters (some of them past the text may be overwritten); returns the
// end of the text.
char* shortestTo(char* first, char* last, double x);
// For each of `count` values the separator, then its shortest text, written
// from `first`, which must have room for 49 characters a value; returns the
// end of the text. Faster than one value at a time.
char* shortestListTo(char* first, const double* values, std::size_t count, char separator);

// The leading-number reading of a box's text: blanks ignored, reading stops
// at the first character that cannot belong to a number, 0 when there is none.
double leadingNumber(std::string_view text);

// The is-a-number test of the entry boxes: the whole text (surrounding blanks
// allowed) is one finite number: optional sign, digits with one decimal point,
// optional exponent. "1e400" (out of range), "-", ".", "1e" are not numbers.
bool isNumber(std::string_view text);

// Strict conversion: the value when isNumber(text), nothing otherwise.
std::optional<double> strictNumber(std::string_view text);
// The same as a test: true and the value in `value` when isNumber(text)
// (quicker where every cell of a file is read).
bool strictNumberTo(std::string_view text, double& value);

} // namespace velmora::fmt
