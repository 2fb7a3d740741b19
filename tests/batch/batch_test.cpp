#include "batch/run.h"
#include "intake/readdata.h"

#include "numtext/numtext.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using namespace velmora;
using namespace velmora::batch;

namespace {

using Rows = std::vector<std::vector<std::string>>;

// Every record of a CSV text, read in pieces of `piece` bytes.
Rows readAll(const std::string& text, std::size_t piece = 1 << 16) {
    StringSource source(text, piece);
    CsvReader reader(source);
    Rows rows;
    while (reader.next()) {
        std::vector<std::string> fields;
        for (std::size_t i = 0; i < reader.fieldCount(); ++i)
            fields.emplace_back(reader.field(i));
        rows.push_back(std::move(fields));
    }
    return rows;
}

struct Result {
    int status = -1;
    std::string text;
    Rows rows; // the output without its header
};

Result calc(const std::string& input, const std::vector<std::string>& args = {},
            std::size_t piece = 1 << 16) {
    const Options options = parseCommandLine(args);
    StringSource source(input, piece);
    StringSink sink;
    Result r;
    r.status = runBatch(options, source, sink);
    r.text = sink.text;
    r.rows = readAll(sink.text);
    EXPECT_FALSE(r.rows.empty());
    if (!r.rows.empty()) r.rows.erase(r.rows.begin());
    return r;
}

// Output columns by name.
enum Col {
    kSample = 0,
    kPoint = 1,
    kPh = 2,
    kLi = 3,
    kRi = 4,
    kPor = 5,
    kAi = 6,
    kDfi = 7,
    kLr = 8,
    kMe = 9,
    kSl = 10,
    kPhs = 11,
    kH2co3 = 17,
    kHco3 = 18,
    kCo3 = 19,
    kIonic = 20,
    kLanm = 21,
    kLand = 22,
    kCt = 24,
    kSumca = 25,
    kSuman = 26,
    kDiff = 27,
    kMessage = 28,
    kColumns = 29,
};

double num(const std::string& cell) {
    const auto v = fmt::strictNumber(cell);
    EXPECT_TRUE(v.has_value()) << "not a number: \"" << cell << "\"";
    return v.value_or(0);
}

bool numbersEmpty(const std::vector<std::string>& row) {
    for (int c = kPh; c <= kCt; ++c)
        if (!row[c].empty()) return false;
    return true;
}

const std::string kHeader = "sample,t,ph,alk,ca,tds,mg,cl,so4\n";
const std::string kWorked = "worked,25,7.5,200,80,400,24,50,60\n";

const char* kTdsMessage = "you Should enter TDS,T,pH,Ca and Alk values at least !";
const char* kNumberMessage = "You must enter a number!";
const char* kPhMessage = "pH must be a positive number up to 14 .";

// ---------------------------------------------------------------------------
// Reading CSV

struct ReadCase {
    const char* name;
    std::string text;
    Rows expected;
};

TEST(CsvReading, RecordsAndFields) {
    const std::vector<ReadCase> cases = {
        {"plain_lf", "a,b\n1,2\n", {{"a", "b"}, {"1", "2"}}},
        {"crlf", "a,b\r\n1,2\r\n", {{"a", "b"}, {"1", "2"}}},
        {"lone_cr", "a,b\r1,2\r", {{"a", "b"}, {"1", "2"}}},
        {"no_final_line_end", "a,b\n1,2", {{"a", "b"}, {"1", "2"}}},
        {"byte_order_mark",
         "\xEF\xBB\xBF"
         "a,b\n1,2\n",
         {{"a", "b"}, {"1", "2"}}},
        {"blank_lines_skipped", "\n\na,b\r\n\r\n\n1,2\n\n", {{"a", "b"}, {"1", "2"}}},
        {"empty_fields", ",\n,,x\n", {{"", ""}, {"", "", "x"}}},
        {"quoted_comma", "\"a,b\",c\n", {{"a,b", "c"}}},
        {"doubled_quote", "\"say \"\"hi\"\"\",x\n", {{"say \"hi\"", "x"}}},
        {"quoted_line_ends", "\"two\r\nlines\",\"and\nmore\"\n", {{"two\r\nlines", "and\nmore"}}},
        {"quoted_empty", "\"\",\"\"\n", {{"", ""}}},
        {"quote_inside_unquoted", "ab\"c,d\n", {{"ab\"c", "d"}}},
        {"text_after_closing_quote", "\"ab\"cd,e\n", {{"abcd", "e"}}},
        {"blanks_kept", " 7.5 , x\n", {{" 7.5 ", " x"}}},
        {"blank_only_lines_skipped", "a,b\n   \n\t \t\r\n1,2\n \n", {{"a", "b"}, {"1", "2"}}},
        {"blank_only_lines_skipped_with_one_column", "a\n  \n1\n\t\n2", {{"a"}, {"1"}, {"2"}}},
        {"blank_only_last_line_without_line_end", "a\n1\n  ", {{"a"}, {"1"}}},
        {"blank_only_first_line", " \na\n", {{"a"}}},
        {"quoted_blanks_kept", "a\n\"  \"\n", {{"a"}, {"  "}}},
        {"blank_fields_kept", "a,b\n , \n", {{"a", "b"}, {" ", " "}}},
        {"bom_only_at_start",
         "a\n\xEF\xBB\xBF"
         "b\n",
         {{"a"},
          {"\xEF\xBB\xBF"
           "b"}}},
    };
    for (const auto& c : cases) {
        for (std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{7},
                                  std::size_t{1} << 16}) {
            SCOPED_TRACE(std::string(c.name) + " in pieces of " + std::to_string(piece));
            EXPECT_EQ(readAll(c.text, piece), c.expected);
        }
    }
}

TEST(CsvReading, LineNumbersAndUnterminatedQuote) {
    StringSource source("h\n\n\"a\nb\"\nc\n\"open\nrest");
    CsvReader reader(source);
    std::vector<long> lines;
    bool unterminated = false;
    while (reader.next()) {
        lines.push_back(reader.line());
        unterminated = reader.unterminated();
    }
    EXPECT_EQ(lines, (std::vector<long>{1, 3, 5, 6}));
    EXPECT_TRUE(unterminated);
}

// A line end inside a quoted field is one line whatever its kind, as it is
// between records.
TEST(CsvReading, LineEndsInsideQuotedFieldsAreCountedLikeAnyOther) {
    struct Case {
        const char* name;
        std::string text;
    };
    const std::vector<Case> cases = {
        {"lf", "h\n\"a\nb\"\nc\n\"d\n\ne\"\nf\n"},
        {"crlf", "h\r\n\"a\r\nb\"\r\nc\r\n\"d\r\n\r\ne\"\r\nf\r\n"},
        {"cr", "h\r\"a\rb\"\rc\r\"d\r\re\"\rf\r"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{1} << 16}) {
            StringSource source(c.text, piece);
            CsvReader reader(source);
            std::vector<long> lines;
            while (reader.next())
                lines.push_back(reader.line());
            EXPECT_EQ(lines, (std::vector<long>{1, 2, 4, 5, 8}));
        }
    }
}

TEST(CsvReading, LineNumbersCountSkippedBlankOnlyLines) {
    StringSource source("h\n  \n\t\nx\n \r\ny\n");
    CsvReader reader(source);
    std::vector<long> lines;
    while (reader.next())
        lines.push_back(reader.line());
    EXPECT_EQ(lines, (std::vector<long>{1, 4, 6}));
}

TEST(CsvReading, TextAfterAClosingQuoteMakesTheRecordMalformed) {
    struct Case {
        const char* name;
        std::string text;
        std::vector<std::size_t> malformedField; // per record, 0: well formed
    };
    const std::vector<Case> cases = {
        {"closing_quote_then_text", "\"7\"5,x\n", {1}},
        {"in_a_later_field", "a,b,\"c\"d\nok,\"fine\",\"\"\"q\"\"\"\n", {3, 0}},
        {"blank_after_closing_quote", "\"a\" ,b\n", {1}},
        {"first_of_two_reported", "\"a\"x,\"b\"y\n", {1}},
        {"closing_quote_then_line_ends", "\"a\"\r\n\"b\"\n\"c\"", {0, 0, 0}},
        {"next_record_starts_where_it_should", "\"a\"b,c\nd,e\n", {1, 0}},
    };
    for (const auto& c : cases) {
        for (std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{1} << 16}) {
            SCOPED_TRACE(std::string(c.name) + " in pieces of " + std::to_string(piece));
            StringSource source(c.text, piece);
            CsvReader reader(source);
            std::vector<std::size_t> found;
            while (reader.next()) {
                found.push_back(reader.malformedField());
                EXPECT_EQ(reader.malformed(), reader.malformedField() != 0);
            }
            EXPECT_EQ(found, c.malformedField);
        }
    }
}

TEST(CsvReading, FieldsPastTheLimitAreCountedNotKept) {
    const std::size_t commas = 3'000'000;
    std::string text = "a,b,c\n" + std::string(commas, ',') + "\nx,\"y\",z\n1,2\n";
    StringSource source(text);
    CsvReader reader(source);
    reader.keepFields(3);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.fieldCount(), 3u);
    EXPECT_EQ(reader.keptFieldCount(), 3u);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.fieldCount(), commas + 1);
    EXPECT_EQ(reader.keptFieldCount(), 3u);
    EXPECT_EQ(reader.field(2), "");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.fieldCount(), 3u);
    EXPECT_EQ(reader.field(0), "x");
    EXPECT_EQ(reader.field(1), "y");
    EXPECT_EQ(reader.field(2), "z");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.fieldCount(), 2u);
    EXPECT_EQ(reader.keptFieldCount(), 2u);
    EXPECT_FALSE(reader.next());
}

TEST(CsvReading, LongRecordIsCutAndFlagged) {
    std::string text = "a\n" + std::string(CsvReader::kMaxRecord + 10, 'x') + "\nb\n";
    StringSource source(text);
    CsvReader reader(source);
    ASSERT_TRUE(reader.next());
    EXPECT_FALSE(reader.tooLong());
    ASSERT_TRUE(reader.next());
    EXPECT_TRUE(reader.tooLong());
    EXPECT_EQ(reader.field(0).size(), CsvReader::kMaxRecord);
    ASSERT_TRUE(reader.next());
    EXPECT_FALSE(reader.tooLong());
    EXPECT_EQ(reader.field(0), "b");
}

// ---------------------------------------------------------------------------
// Header

struct HeaderCase {
    const char* name;
    std::string header;
    const char* inMessage; // nullptr: accepted
};

TEST(BatchHeader, ColumnNames) {
    const std::vector<HeaderCase> cases = {
        {"any_order_any_case_trimmed", " PH ,Ca,  t,ALK,tds,Sample\n", nullptr},
        {"every_column",
         "tds,ec,t,ph,alk,ca,mg,k,na,zn,mn,fe,al,hco3,co3,no2,no3,f,cl,so4,sample\n", nullptr},
        {"unknown", "t,ph,calcium\n", "unknown column \"calcium\""},
        {"box_name_with_txt", "txtca\n", "unknown column \"txtca\""},
        {"empty_name", "t,,ph\n", "unknown column \"\""},
        {"repeated", "ca,t,CA \n", "column \"CA\" appears twice"},
        {"repeated_sample", "sample,ph,sample\n", "column \"sample\" appears twice"},
        {"after_blank_only_lines", " \t\n  \nt,ph\n", nullptr},
        {"quote_not_closed", "t,\"ph\n", "the header row has a quoted field that is not closed"},
        {"quote_not_closed_rows_after", "t,\"ph,ca\n1,2,3\n",
         "the header row has a quoted field that is not closed"},
        {"text_after_closing_quote", "t,\"ph\"x\n",
         "the header row is malformed: field 2 has text after its closing quote"},
        {"millions_of_fields", "t,ph" + std::string(2'000'000, ',') + "\n", "unknown column \"\""},
        {"more_fields_than_names",
         "tds,ec,t,ph,alk,ca,mg,k,na,zn,mn,fe,al,hco3,co3,no2,no3,f,cl,so4,sample,ph\n",
         "column \"ph\" appears twice"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        StringSource source(c.header);
        StringSink sink;
        if (c.inMessage) {
            try {
                runBatch(Options{}, source, sink);
                ADD_FAILURE() << "expected a usage error";
            } catch (const UsageError& e) {
                EXPECT_NE(std::string(e.what()).find(c.inMessage), std::string::npos) << e.what();
            }
        } else {
            EXPECT_EQ(runBatch(Options{}, source, sink), 0);
            EXPECT_EQ(sink.text, std::string(kOutputHeader) + "\n");
        }
    }
}

TEST(BatchHeader, EmptyInputHasNoHeader) {
    for (const char* text : {"", "\n\r\n\n", "\xEF\xBB\xBF"}) {
        StringSource source(text);
        StringSink sink;
        EXPECT_THROW(runBatch(Options{}, source, sink), UsageError);
    }
}

// ---------------------------------------------------------------------------
// Rows

TEST(BatchRows, WorkedSampleAtTheMeasuredPoint) {
    const Result r = calc(kHeader + kWorked);
    EXPECT_EQ(r.status, 0);
    ASSERT_EQ(r.rows.size(), 1u);
    const auto& row = r.rows[0];
    ASSERT_EQ(row.size(), static_cast<std::size_t>(kColumns));
    EXPECT_EQ(row[kSample], "worked");
    EXPECT_EQ(row[kPoint], "0");
    // each column holds its own quantity of the measured point
    Engine e;
    EquationFlags flags;
    flags.bllang = true;
    const AnalysisTexts boxes = [] {
        AnalysisTexts b;
        b[Field::t] = "25", b[Field::ph] = "7.5", b[Field::alk] = "200", b[Field::ca] = "80";
        b[Field::tds] = "400", b[Field::mg] = "24", b[Field::cl] = "50", b[Field::so4] = "60";
        return b;
    }();
    readAnalysis(e, boxes, flags, false);
    e.calculate(flags, calcInputs(boxes));
    const SweepArrays& s = e.sw;
    const double expected[] = {s.ph(0),     s.li(0),    s.ri(0),    s.por(0),   s.ai(0),   s.dfi(0),
                               s.lr(0),     s.me(0),    s.sl(0),    s.phs(0),   s.ch(0),   s.oh(0),
                               s.a0(0),     s.a1(0),    s.a2(0),    s.h2co3(0), s.hco3(0), s.co3(0),
                               e.rec.ionic, e.rec.lanm, e.rec.land, e.rec.lant, s.ct};
    for (int c = kPh; c <= kCt; ++c)
        EXPECT_EQ(row[c], fmt::shortest(expected[c - kPh])) << "column " << c;
    // without the Larson-Skold index, Langelier does not read chloride and sulphate
    EXPECT_EQ(num(row[kLr]), 0);
    // no ion balance with the Langelier equation
    EXPECT_EQ(row[kSumca], "");
    EXPECT_EQ(row[kSuman], "");
    EXPECT_EQ(row[kDiff], "");
    EXPECT_EQ(row[kMessage], "");
}

TEST(BatchRows, SweepRowsFollowTheMeasuredPoint) {
    const Result r = calc(kHeader + kWorked, {"--sweep", "6.5,0.5,5"});
    EXPECT_EQ(r.status, 0);
    ASSERT_EQ(r.rows.size(), 6u);
    const double ph[] = {7.5, 6.5, 7.0, 7.5, 8.0, 8.5};
    for (int p = 0; p < 6; ++p) {
        EXPECT_EQ(r.rows[p][kPoint], std::to_string(p));
        EXPECT_EQ(num(r.rows[p][kPh]), ph[p]);
        EXPECT_NEAR(num(r.rows[p][kCt]), 0.00421, 1e-5);
    }
    EXPECT_NEAR(num(r.rows[2][kLi]), -0.30747, 1e-5); // pH 7.0
    EXPECT_NEAR(num(r.rows[2][kMe]), -3.38209e-6, 1e-10);
    // the measured point survives the sweep in element 0
    EXPECT_EQ(r.rows[0][kLi], r.rows[3][kLi]);
}

TEST(BatchRows, ACompleteSweepOf140PointsShowsNothingAtTheEnd) {
    const Result r = calc(kHeader + kWorked, {"--sweep", "7,0,140"});
    EXPECT_EQ(r.status, 0);
    ASSERT_EQ(r.rows.size(), 141u);
    EXPECT_EQ(r.rows[140][kPoint], "140");
    EXPECT_EQ(num(r.rows[140][kPh]), 7);
    for (const auto& row : r.rows)
        EXPECT_EQ(row[kMessage], "");
}

struct MessageCase {
    const char* name;
    std::vector<std::string> args;
    std::string input;
    const char* message;
    const char* point; // "" for a failure while reading
};

TEST(BatchRows, MessageRows) {
    const std::string russellHeader = "sample,t,ph,alk,ca,ec\n";
    const std::vector<MessageCase> cases = {
        // 7e900002 written with 100,000 zeros and a seven-digit exponent
        {"out_of_range_long_text",
         {},
         kHeader + "s,25,7.5,200,80,0." + std::string(100000, '0') + "7e1000003,,,\n",
         kNumberMessage,
         ""},
        // Russell does not check the pH; Calculate does
        {"calculate_without_ph",
         {"--ionic", "russell"},
         russellHeader + "s,25,,200,80,60\n",
         "you Should enter TDS,T,pH,Mg,Ca and Alk values at least !",
         ""},
        {"zero_calcium",
         {},
         kHeader + "s,25,7.5,200,0,400,,,\n",
         "run-time error: logarithm of a non-positive number",
         "0"},
        {"zero_alkalinity",
         {},
         kHeader + "s,25,7.5,0,80,400,,,\n",
         "run-time error: logarithm of a non-positive number",
         "0"},
        {"negative_ionic_strength",
         {},
         kHeader + "s,25,7.5,200,80,-400,,,\n",
         "run-time error: square root of a negative number",
         ""},
        {"wrong_field_count",
         {},
         kHeader + "s,25,7.5\n",
         "line 2: 3 fields where the header has 9",
         ""},
        {"unterminated_quote",
         {},
         kHeader + "\"s,25,7.5,200,80,400,,,\n",
         "line 2: a quoted field is not closed",
         ""},
        {"text_after_closing_quote",
         {},
         kHeader + "s,25,\"7\"5,200,80,400,,,\n",
         "line 2: the row is malformed: field 3 has text after its closing quote",
         ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Result r = calc(c.input, c.args);
        EXPECT_EQ(r.status, 1);
        ASSERT_EQ(r.rows.size(), 1u) << r.text;
        const auto& row = r.rows[0];
        ASSERT_EQ(row.size(), static_cast<std::size_t>(kColumns));
        EXPECT_EQ(row[kMessage].rfind(c.message, 0), 0u) << row[kMessage];
        EXPECT_EQ(row[kPoint], c.point);
        EXPECT_TRUE(numbersEmpty(row));
        EXPECT_EQ(row[kSumca], "");
    }
}

// A rejected cell's row carries its box's message and nothing else.
TEST(BatchRows, ARejectedCellShowsItsBoxMessageAlone) {
    struct Case {
        const char* name;
        std::string row;     // under kHeader: sample,t,ph,alk,ca,tds,mg,cl,so4
        const char* message; // nullptr: the row is computed
    };
    const std::vector<Case> cases = {
        {"ph_14_accepted", "s,25,14,200,80,400,,,\n", nullptr},
        {"ph_minus_1", "s,25,-1,200,80,400,,,\n", kPhMessage},
        {"ph_0", "s,25,0,200,80,400,,,\n", kPhMessage},
        {"ph_14_01", "s,25,14.01,200,80,400,,,\n", kPhMessage},
        {"calcium_text", "s,25,7.5,200,x,400,,,\n", kNumberMessage},
        {"alkalinity_beyond_a_double", "s,25,7.5,1e400,80,400,,,\n", kNumberMessage},
        {"magnesium_lone_point", "s,25,7.5,200,80,400,.,,\n", kNumberMessage},
        // the first bad cell in the order tds, ec, t, ph, alk, ca, ... reports,
        // wherever the columns stand in the file
        {"tds_before_ph", "s,25,20,200,80,abc,,,\n", kNumberMessage},
        {"temperature_before_ph", "s,x,20,200,80,400,,,\n", kNumberMessage},
        {"ph_before_calcium", "s,25,20,200,x,400,,,\n", kPhMessage},
        {"ph_before_chloride", "s,25,-1,200,80,400,,zz,\n", kPhMessage},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Result r = calc(kHeader + c.row);
        ASSERT_EQ(r.rows.size(), 1u) << r.text;
        const auto& row = r.rows[0];
        ASSERT_EQ(row.size(), static_cast<std::size_t>(kColumns));
        EXPECT_EQ(row[kSample], "s");
        if (c.message) {
            EXPECT_EQ(r.status, 1);
            EXPECT_EQ(row[kMessage], c.message);
            EXPECT_EQ(row[kPoint], "");
            EXPECT_TRUE(numbersEmpty(row));
        } else {
            EXPECT_EQ(r.status, 0);
            EXPECT_EQ(row[kMessage], "");
            EXPECT_EQ(row[kPoint], "0");
            EXPECT_EQ(num(row[kPh]), 14);
        }
    }
}

TEST(BatchRows, MillionsOfFieldsAreAWrongFieldCount) {
    const std::size_t commas = 2'000'000;
    const Result r = calc(kHeader + "s" + std::string(commas, ',') + "\n" + kWorked);
    EXPECT_EQ(r.status, 1);
    ASSERT_EQ(r.rows.size(), 2u);
    EXPECT_EQ(r.rows[0][kSample], "s");
    EXPECT_EQ(r.rows[0][kMessage],
              "line 2: " + std::to_string(commas + 1) + " fields where the header has 9");
    EXPECT_TRUE(numbersEmpty(r.rows[0]));
    EXPECT_EQ(r.rows[1][kSample], "worked");
    EXPECT_EQ(r.rows[1][kPoint], "0");
    EXPECT_EQ(r.rows[1][kMessage], "");
}

TEST(BatchRows, AMalformedRowDoesNotStopTheNext) {
    const Result r = calc(kHeader + "bad,25,\"7\"5,200,80,400,,,\n" + kWorked);
    EXPECT_EQ(r.status, 1);
    ASSERT_EQ(r.rows.size(), 2u);
    EXPECT_EQ(r.rows[0][kSample], "bad");
    EXPECT_EQ(r.rows[0][kMessage],
              "line 2: the row is malformed: field 3 has text after its closing quote");
    EXPECT_TRUE(numbersEmpty(r.rows[0]));
    EXPECT_EQ(r.rows[1], calc(kHeader + kWorked).rows.at(0));
}

// A spreadsheet's export: a byte-order mark, CRLF line ends, blank lines and
// lines of blanks, read as the plain file is.
TEST(BatchRows, ByteOrderMarkCrlfAndBlankLines) {
    const std::string second = "second,20,8.1,150,60,300,10,40,30\n";
    const Result plain = calc(kHeader + kWorked + second);
    const std::string exported = "\xEF\xBB\xBF"
                                 "sample,t,ph,alk,ca,tds,mg,cl,so4\r\n"
                                 "\r\n"
                                 "worked,25,7.5,200,80,400,24,50,60\r\n"
                                 "  \t \r\n"
                                 "\r\n"
                                 "second,20,8.1,150,60,300,10,40,30\r\n"
                                 "\r\n"
                                 "   ";
    for (std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{1} << 16}) {
        SCOPED_TRACE("pieces of " + std::to_string(piece));
        const Result r = calc(exported, {}, piece);
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.text, plain.text);
    }
    ASSERT_EQ(plain.rows.size(), 2u);
    EXPECT_EQ(plain.rows[0][kSample], "worked");
    EXPECT_EQ(plain.rows[1][kSample], "second");
    EXPECT_EQ(num(plain.rows[1][kPh]), 8.1);
    // the output has LF line ends only
    EXPECT_EQ(plain.text.find('\r'), std::string::npos);
}

TEST(BatchRows, UnacceptableAnalysisKeepsTheSums) {
    const std::string input = "sample,t,ph,alk,ca,mg,na,k,cl,so4,hco3,co3\n"
                              "ion balance,25,7.5,200,80,24,46,3.9,50,60,244,0\n";
    const Result r = calc(input, {"--ionic", "lewis"});
    EXPECT_EQ(r.status, 1);
    ASSERT_EQ(r.rows.size(), 1u);
    const auto& row = r.rows[0];
    EXPECT_EQ(row[kMessage], "water analysis is unacceptable");
    EXPECT_EQ(row[kPoint], "");
    EXPECT_TRUE(numbersEmpty(row));
    EXPECT_GT(num(row[kDiff]), 2); // above the 2 % the anion sum allows
    EXPECT_NEAR((num(row[kSumca]) - num(row[kSuman])) / (num(row[kSumca]) + num(row[kSuman])) * 100,
                num(row[kDiff]), 1e-9);
}

// Every number of a point row is written as the shortest text of its value:
// the 23 of every row, and the three sums when the ion balance ran.
TEST(BatchRows, NumbersAreTheirShortestTexts) {
    const std::string balanced = "sample,t,ph,alk,ca,na,cl,hco3,co3\n"
                                 "balanced,25,7,50,20.1,22.99,35.453,61,0\n";
    struct Case {
        const char* name;
        std::string input;
        std::vector<std::string> args;
        int lastNumber; // the last column that holds a number
    };
    const std::vector<Case> cases = {
        {"langelier", kHeader + kWorked, {}, kCt},
        {"langelier_sweep", kHeader + kWorked, {"--sweep", "6.5,0.5,5"}, kCt},
        {"lewis", balanced, {"--ionic", "lewis"}, kDiff},
        {"lewis_sweep_davies",
         balanced,
         {"--ionic=lewis", "--activity=davies", "--sweep=4,0.2,50"},
         kDiff},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Result r = calc(c.input, c.args);
        EXPECT_EQ(r.status, 0) << r.text;
        ASSERT_FALSE(r.rows.empty());
        for (const auto& row : r.rows) {
            ASSERT_EQ(row.size(), static_cast<std::size_t>(kColumns));
            for (int col = kPh; col < kMessage; ++col) {
                if (col > c.lastNumber) {
                    EXPECT_EQ(row[col], "") << "column " << col;
                    continue;
                }
                const double v = num(row[col]);
                EXPECT_EQ(row[col], fmt::shortest(v)) << "column " << col;
            }
        }
    }
}

TEST(BatchRows, SweepFailingMidwayReportsItsPoint) {
    // a measured pH of 13 with little alkalinity leaves a negative carbonate
    // total; at pH 11 the alkalinity of the point is negative
    const std::string input = "sample,t,ph,alk,ca,tds\nhigh,25,13,10,80,400\n";
    const Result r = calc(input, {"--sweep", "13,-1,5"});
    EXPECT_EQ(r.status, 1);
    ASSERT_EQ(r.rows.size(), 3u) << r.text;
    EXPECT_EQ(r.rows[0][kPoint], "0");
    EXPECT_EQ(r.rows[1][kPoint], "1");
    EXPECT_EQ(r.rows[1][kMessage], "");
    EXPECT_EQ(r.rows[2][kPoint], "2"); // point 2 itself is not written
    EXPECT_TRUE(numbersEmpty(r.rows[2]));
    EXPECT_EQ(r.rows[2][kMessage], "run-time error: logarithm of a non-positive number in pAlk "
                                   "(alkalinity)");
}

TEST(BatchRows, EveryRowStartsFromAFreshProgram) {
    // An anion sum above 800 meq/L matches no band of the ion balance, so the
    // verdict is whatever it was before: a fresh program's, unacceptable.
    const std::string header = "sample,t,ph,alk,ca,na,cl,hco3,co3\n";
    const std::string balanced = "balanced,25,7,50,20.1,22.99,35.453,61,0\n";
    const std::string salty = "salty,25,7,50,20.1,22.99,30000,61,0\n";
    const Result alone = calc(header + salty, {"--ionic", "lewis"});
    const Result after = calc(header + balanced + salty, {"--ionic", "lewis"});
    ASSERT_EQ(alone.rows.size(), 1u);
    ASSERT_EQ(after.rows.size(), 2u);
    EXPECT_EQ(after.rows[0][kMessage], ""); // accepted
    EXPECT_EQ(alone.rows[0][kMessage], "water analysis is unacceptable");
    EXPECT_EQ(after.rows[1], alone.rows[0]);

    // a failing row leaves nothing behind for the next one
    const std::string good = kWorked;
    const Result goodAlone = calc(kHeader + good, {"--sweep", "6.5,0.5,5"});
    const Result goodAfter =
        calc(kHeader + "bad,25,13,10,80,400,,,\n" + good, {"--sweep", "6.5,0.5,5"});
    ASSERT_GE(goodAfter.rows.size(), goodAlone.rows.size());
    const Rows tail(goodAfter.rows.end() - static_cast<long>(goodAlone.rows.size()),
                    goodAfter.rows.end());
    EXPECT_EQ(tail, goodAlone.rows);
}

TEST(BatchRows, RowsAfterAMessageGoOn) {
    const Result r = calc(kHeader + "a,25,7.5\n" + kWorked + "b,,7.5,200,80,400,,,\n" + kWorked);
    EXPECT_EQ(r.status, 1);
    ASSERT_EQ(r.rows.size(), 4u);
    EXPECT_NE(r.rows[0][kMessage], "");
    EXPECT_EQ(r.rows[1][kPoint], "0");
    EXPECT_EQ(r.rows[2][kMessage], kTdsMessage);
    EXPECT_EQ(r.rows[3], r.rows[1]);
}

TEST(BatchRows, SampleIdentifiersAreQuotedWhenNeeded) {
    const Result r = calc("sample,t,ph,alk,ca,tds\n\"North, \"\"A\"\"\",25,7.5,200,80,400\n"
                          "plain,25,7.5,200,80,400\n");
    ASSERT_EQ(r.rows.size(), 2u);
    EXPECT_EQ(r.rows[0][kSample], "North, \"A\"");
    EXPECT_NE(r.text.find("\n\"North, \"\"A\"\"\",0,"), std::string::npos);
    EXPECT_NE(r.text.find("\nplain,0,"), std::string::npos);
    // messages with commas are quoted too
    const Result m = calc("sample,t,ph,alk,ca,tds\nx,,7.5,200,80,400\n");
    EXPECT_NE(m.text.find(",\"you Should enter TDS,T,pH,Ca and Alk values at least !\"\n"),
              std::string::npos);
}

TEST(BatchRows, WithoutSampleColumnTheSampleIsEmpty) {
    const Result r = calc("t,ph,alk,ca,tds\n25,7.5,200,80,400\n");
    ASSERT_EQ(r.rows.size(), 1u);
    EXPECT_EQ(r.rows[0][kSample], "");
    EXPECT_EQ(r.rows[0][kPoint], "0");
}

// The output of several workers is byte for byte that of one, with the same
// exit status, on inputs of every kind: message rows, malformed rows, quoted
// fields, CRLF, sweeps, shorter than a chunk, many chunks, empty.
TEST(BatchRows, OutputIsTheSameWithAnyNumberOfWorkers) {
    // a sample of each kind, in turn: computed, rejected cell, Read Data
    // message, run-time error, quoted identifier, wrong field count, text
    // after a closing quote, bad pH, a line end inside a quoted field
    const std::vector<std::string> kinds = {
        "w%d,25,7.5,200,80,400,24,50,60\n",
        "bad%d,25,7.5,abc,80,400,24,50,60\n",
        "missing%d,,7.5,200,80,400,24,50,60\n",
        "zero%d,25,7.5,200,0,400,,,\n",
        "\"q,\"\"%d\"\"\",12,8.1,150,60,300,10,20,30\r\n",
        "short%d,25,7.5\n",
        "\"mal\"x%d,25,7.5,200,80,400,24,50,60\n",
        "ph%d,25,15,200,80,400,24,50,60\n",
        "\"two\nlines %d\",30,6.9,90,40,250,5,10,20\n",
    };
    auto file = [&](int rows) {
        std::string text = kHeader;
        char line[128];
        for (int i = 0; i < rows; ++i) {
            std::snprintf(line, sizeof line,
                          kinds[static_cast<std::size_t>(i) % kinds.size()].c_str(), i);
            text += line;
        }
        return text;
    };
    struct Case {
        const char* name;
        std::string input;
        std::vector<std::string> args;
    };
    const std::vector<Case> cases = {
        {"one_row", file(1), {}},
        {"shorter_than_a_chunk", file(50), {}},
        {"many_chunks", file(7000), {}},
        {"many_chunks_lewis", file(3000), {"--ionic", "lewis", "--larson-skold"}},
        {"sweep", file(300), {"--sweep", "12.95,-0.05,140"}},
        {"sweep_short", file(40), {"--sweep", "6.5,0.5,5", "--activity", "davies"}},
        {"sweep_into_errors", file(200), {"--sweep", "3,-2,140"}},
        {"ccpp_and_crossings", file(500), {"--ccpp", "--crossings=table", "--sweep", "6,0.5,8"}},
        {"header_only", kHeader, {}},
        {"one_unterminated_row", kHeader + "\"open,25", {}},
        {"empty", "", {}},
    };
    auto outcome = [](const std::string& input, std::vector<std::string> args, int jobs) {
        args.push_back("--jobs=" + std::to_string(jobs));
        const Options options = parseCommandLine(args);
        StringSource source(input, 4096);
        StringSink sink;
        try {
            return std::to_string(runBatch(options, source, sink)) + "\n" + sink.text;
        } catch (const UsageError& e) {
            return std::string("usage error: ") + e.what() + "\n" + sink.text;
        }
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string one = outcome(c.input, c.args, 1);
        for (int jobs : {2, 7})
            EXPECT_TRUE(outcome(c.input, c.args, jobs) == one) << jobs << " workers";
    }
    // the inputs hold what they are meant to
    const std::string many = outcome(file(7000), {}, 1);
    EXPECT_EQ(many.rfind("1\n", 0), 0u); // message rows: exit status 1
    for (const char* seen :
         {"You must enter a number!", "run-time error", "fields where the header has",
          "has text after its closing quote", "pH must be a positive", "\"q,\"\"4\"\"\",0,"}) {
        EXPECT_NE(many.find(seen), std::string::npos) << seen;
    }
    EXPECT_EQ(outcome("", {}, 2), "usage error: the input has no header row\n");
}

// The columns of --ccpp and --crossings: before message, filled on the
// measured point's row only, the numbers the definitions give for the worked
// sample.
TEST(BatchRows, CcppAndCrossingColumns) {
    const std::string input = "sample,t,ph,alk,ca,tds\n"
                              "worked,25,7.5,200,80,400\n"
                              "bad,25,7.5,x,80,400\n";
    const std::vector<std::string> neutral = {"ph_li_0",  "ph_ri_6p5", "ph_por_6", "ph_ai_12",
                                              "ph_ai_10", "ph_dfi_1",  "ph_sl_1"};
    const Result r = calc(input, {"--ccpp", "--crossings", "--sweep", "6,0.1,39"});
    const Rows header = readAll(r.text.substr(0, r.text.find('\n') + 1));
    ASSERT_EQ(header.size(), 1u);
    std::vector<std::string> added(header[0].begin() + kMessage, header[0].end() - 1);
    std::vector<std::string> expected = {"ccpp", "ph_eq", "ccpp_note"};
    expected.insert(expected.end(), neutral.begin(), neutral.end());
    EXPECT_EQ(added, expected);
    EXPECT_EQ(header[0].back(), "message");

    ASSERT_EQ(r.rows.size(), 41u); // the measured point, 39 sweep points, a message row
    const auto& measured = r.rows[0];
    ASSERT_EQ(measured.size(), header[0].size());
    EXPECT_NEAR(num(measured[kMessage]), 10.949982089, 1e-9);
    EXPECT_NEAR(num(measured[kMessage + 1]), 7.308343853, 1e-9);
    EXPECT_EQ(measured[kMessage + 2], "");
    EXPECT_NEAR(num(measured[kMessage + 3]), 7.275242468, 1e-9);
    EXPECT_EQ(measured.back(), "");
    for (std::size_t i = 1; i < r.rows.size(); ++i) {
        ASSERT_EQ(r.rows[i].size(), header[0].size()) << i;
        for (std::size_t c = kMessage; c + 1 < r.rows[i].size(); ++c)
            EXPECT_EQ(r.rows[i][c], "") << i << " " << c;
    }
    EXPECT_EQ(r.rows.back().back(), kNumberMessage);
    EXPECT_EQ(r.status, 1);

    // a note is a result: no message row, no change of the exit status
    const Result note = calc("t,ph,alk,ca,tds\n25,11.5,2,80,400\n", {"--ccpp"});
    ASSERT_EQ(note.rows.size(), 1u);
    EXPECT_EQ(note.rows[0][kMessage], "");
    EXPECT_EQ(note.rows[0][kMessage + 2], "no carbonate alkalinity");
    EXPECT_EQ(note.status, 0);
}

TEST(BatchRows, OutputIsTheSameHoweverTheInputIsSplit) {
    std::ifstream f(VELMORA_EXAMPLES "/waters.csv", std::ios::binary);
    std::stringstream ss;
    ss << f.rdbuf();
    const std::string input = ss.str();
    ASSERT_FALSE(input.empty());
    const Result whole = calc(input);
    EXPECT_EQ(whole.status, 0);
    EXPECT_EQ(whole.rows.size(), 12u);
    for (std::size_t piece : {1u, 5u, 64u})
        EXPECT_EQ(calc(input, {}, piece).text, whole.text);
}

// ---------------------------------------------------------------------------
// Command line

TEST(BatchCommandLine, Options) {
    Options o = parseCommandLine(
        {"--ionic=lewis", "--activity", "davies", "--larson-skold", "-o", "out.csv", "in.csv"});
    EXPECT_EQ(o.ionic, Options::Ionic::Lewis);
    EXPECT_EQ(o.activity, Options::Activity::Davies);
    EXPECT_TRUE(o.larsonSkold);
    EXPECT_EQ(o.output, "out.csv");
    EXPECT_EQ(o.input, "in.csv");
    const EquationFlags f = equationFlags(o);
    EXPECT_TRUE(f.bllewis && f.bldavies);
    EXPECT_FALSE(f.bllang || f.blrus || f.bldebye || f.bledebye || f.blgun);

    o = parseCommandLine({"--output=x.csv", "--sweep=6.5,0.5,5", "-"});
    EXPECT_EQ(o.output, "x.csv");
    EXPECT_TRUE(o.sweep);
    EXPECT_EQ(o.sweepStart, "6.5");
    EXPECT_EQ(o.sweepIncrement, "0.5");
    EXPECT_EQ(o.sweepSteps, "5");
    EXPECT_EQ(o.input, "-");

    o = parseCommandLine({});
    EXPECT_EQ(o.ionic, Options::Ionic::Langelier);
    EXPECT_EQ(o.activity, Options::Activity::None);
    const EquationFlags d = equationFlags(o);
    EXPECT_TRUE(d.bllang);
    EXPECT_FALSE(d.bldebye || d.bldavies || d.bledebye || d.blgun);

    struct ActivityCase {
        const char* name;
        bool EquationFlags::*flag;
    };
    for (const ActivityCase& c : {ActivityCase{"limiting", &EquationFlags::bldebye},
                                  ActivityCase{"extended", &EquationFlags::bledebye},
                                  ActivityCase{"guntelberg", &EquationFlags::blgun},
                                  ActivityCase{"davies", &EquationFlags::bldavies}}) {
        EXPECT_TRUE(equationFlags(parseCommandLine({"--activity", c.name})).*(c.flag)) << c.name;
    }
    EXPECT_TRUE(parseCommandLine({"--help"}).help);
    EXPECT_EQ(parseCommandLine({"--", "--odd-name.csv"}).input, "--odd-name.csv");
    // standard input unless a file is named; an empty name stays empty (and
    // cannot be opened)
    EXPECT_EQ(parseCommandLine({}).input, "-");
    EXPECT_EQ(parseCommandLine({""}).input, "");
    // workers: one per core unless told; the four spellings
    EXPECT_EQ(parseCommandLine({}).jobs, 0);
    EXPECT_GE(defaultJobs(), 1);
    for (const auto& args : std::vector<std::vector<std::string>>{
             {"--jobs", "3"}, {"--jobs=3"}, {"-j", "3"}, {"-j3"}, {"-j=3"}}) {
        EXPECT_EQ(parseCommandLine(args).jobs, 3) << args[0];
    }
    EXPECT_TRUE(parseCommandLine({"-q"}).quiet);
    EXPECT_TRUE(parseCommandLine({"--quiet"}).quiet);
    EXPECT_FALSE(parseCommandLine({}).quiet);
}

// With --help the rest of the command line is not checked, wherever it stands.
TEST(BatchCommandLine, HelpWinsOverMistakes) {
    const std::vector<std::vector<std::string>> mistakes = {
        {"--sweep", "1,2,140"},
        {"--sweep", "x,0.5,5"},
        {"--sweep=7,0.5"},
        {"--fast"},
        {"-x"},
        {"--ionic", "debye"},
        {"--activity=full"},
        {"--larson-skold=yes"},
        {"a.csv", "b.csv"},
        {"-o", ""},
        {"--ionic"},
    };
    for (const auto& mistake : mistakes) {
        for (const char* help : {"--help", "-h"}) {
            std::vector<std::string> before{help};
            before.insert(before.end(), mistake.begin(), mistake.end());
            std::vector<std::string> after = mistake;
            after.push_back(help);
            for (const auto& args : {before, after}) {
                std::string shown;
                for (const auto& a : args)
                    shown += " [" + a + "]";
                SCOPED_TRACE(shown);
                EXPECT_THROW(parseCommandLine(mistake), UsageError);
                try {
                    EXPECT_TRUE(parseCommandLine(args).help);
                } catch (const UsageError& e) {
                    ADD_FAILURE() << "usage error: " << e.what();
                }
            }
        }
    }
    // after "--" it is a file name
    EXPECT_FALSE(parseCommandLine({"--", "--help"}).help);
    // an option waiting for its value does not take the request for help
    EXPECT_TRUE(parseCommandLine({"--output", "--help"}).help);
    EXPECT_TRUE(parseCommandLine({"--sweep", "-h"}).help);
}

struct UsageCase {
    const char* name;
    std::vector<std::string> args;
    const char* message;
};

TEST(BatchCommandLine, UsageErrors) {
    const std::vector<UsageCase> cases = {
        {"unknown_option", {"--fast"}, "unknown option \"--fast\""},
        {"unknown_equation", {"--ionic", "debye"}, "--ionic: unknown equation \"debye\""},
        {"unknown_activity", {"--activity=full"}, "--activity: unknown equation \"full\""},
        {"missing_value", {"--ionic"}, "option \"--ionic\" needs a value"},
        {"flag_with_value", {"--larson-skold=yes"}, "option \"--larson-skold\" takes no value"},
        {"two_files", {"a.csv", "b.csv"}, "more than one input file"},
        {"first_of_two_mistakes", {"--fast", "--ionic", "debye"}, "unknown option \"--fast\""},
        {"value_starting_with_a_dash", {"--ionic", "-x"}, "--ionic: unknown equation \"-x\""},
        {"sweep_two_parts", {"--sweep", "7,0.5"}, "--sweep needs START,INCREMENT,STEPS"},
        {"crossings_without_sweep", {"--crossings"}, "--crossings needs --sweep"},
        {"crossings_unknown_set",
         {"--crossings=all", "--sweep", "7,0.5,5"},
         "--crossings: unknown set \"all\""},
        {"ccpp_with_value", {"--ccpp=yes"}, "option \"--ccpp\" takes no value"},
        {"sweep_four_parts", {"--sweep", "7,0.5,5,1"}, "--sweep needs START,INCREMENT,STEPS"},
        // the Options dialog's messages, blanks included
        {"sweep_start_range",
         {"--sweep", "15,0.5,5"},
         "--sweep: initial pH must be between 1 to 14 ."},
        {"sweep_start_text", {"--sweep", "x,0.5,5"}, "--sweep: You must enter a positive number!"},
        {"sweep_start_point", {"--sweep", ".,0.5,5"}, "--sweep: You must enter a positive number!"},
        {"sweep_increment_range",
         {"--sweep", "7,3,5"},
         "--sweep:  pH increment must be between 0.1  up to 2 ."},
        {"sweep_increment_point",
         {"--sweep", "7,.,5"},
         "--sweep: You must enter a positive number!"},
        {"sweep_steps_fraction",
         {"--sweep", "7,0.5,2.5"},
         "--sweep: You must enter an integer positive number!"},
        {"sweep_steps_range",
         {"--sweep", "7,0.5,141"},
         "--sweep: initial pH must be an integer number between 1 to 140 ."},
        {"sweep_empty_box",
         {"--sweep", "7,,5"},
         "--sweep: you should enter initial pH,pH increment and step numbers values"},
        {"sweep_past_14",
         {"--sweep", "1,2,140"},
         "--sweep: Step numbers must be less than 140 , 6 is better."},
        {"sweep_past_14_second",
         {"--sweep", "7,2,5"},
         "--sweep: Step numbers must be less than 5 , 3 is better."},
        {"sweep_start_14", {"--sweep", "14,0.5,3"}, "--sweep: pH should not be more than 14"},
        {"sweep_start_beyond_range_long_text",
         {"--sweep", "0." + std::string(100000, '0') + "7e1000003,0.5,5"},
         "--sweep: You must enter a positive number!"},
        {"jobs_zero", {"--jobs", "0"}, "--jobs needs a number of workers from 1 to 256"},
        {"jobs_text", {"-j", "two"}, "--jobs needs a number of workers from 1 to 256"},
        {"jobs_too_many", {"-j257"}, "--jobs needs a number of workers from 1 to 256"},
        {"jobs_fraction", {"--jobs=1.5"}, "--jobs needs a number of workers from 1 to 256"},
        {"jobs_missing", {"--jobs"}, "option \"--jobs\" needs a value"},
        {"quiet_with_value", {"--quiet=yes"}, "option \"--quiet\" takes no value"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        try {
            parseCommandLine(c.args);
            ADD_FAILURE() << "expected a usage error";
        } catch (const UsageError& e) {
            EXPECT_EQ(std::string(e.what()).rfind(c.message, 0), 0u) << e.what();
        }
    }
}

// ---------------------------------------------------------------------------
// The command itself

class Command : public ::testing::Test {
protected:
    std::string dir;

    void SetUp() override {
        std::string pattern = ::testing::TempDir() + "velmora-calc-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override { std::system(("rm -rf '" + dir + "'").c_str()); }

    std::string path(const std::string& name) const { return dir + "/" + name; }

    static void write(const std::string& file, const std::string& text) {
        std::ofstream(file, std::ios::binary) << text;
    }
    static std::string read(const std::string& file) {
        std::ifstream f(file, std::ios::binary);
        std::stringstream ss;
        ss << f.rdbuf();
        return ss.str();
    }

    // Runs velmora-calc with a shell command line's arguments; stdin from
    // `input` when given. Returns the exit status.
    int run(const std::string& args, const std::string& input = "") {
        std::string cmd = std::string("'") + VELMORA_CALC + "' " + args;
        if (!input.empty()) {
            write(path("stdin"), input);
            cmd += " < '" + path("stdin") + "'";
        } else {
            cmd += " < /dev/null";
        }
        cmd += " > '" + path("stdout") + "' 2> '" + path("stderr") + "'";
        const int status = std::system(cmd.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string out() const { return read(path("stdout")); }
    std::string err() const { return read(path("stderr")); }

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        if (DIR* d = ::opendir(dir.c_str())) {
            while (dirent* e = ::readdir(d))
                if (e->d_name[0] != '.') names.emplace_back(e->d_name);
            ::closedir(d);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(Command, ExitStatusZeroOneAndTwo) {
    EXPECT_EQ(run(std::string("'") + VELMORA_EXAMPLES + "/waters.csv'"), 0);
    EXPECT_EQ(out().rfind(std::string(kOutputHeader) + "\n", 0), 0u);
    EXPECT_EQ(err(), "");

    EXPECT_EQ(run("", kHeader + "s,25,7.5,200,0,400,,,\n"), 1);
    EXPECT_NE(out().find("run-time error"), std::string::npos);

    EXPECT_EQ(run("--sweep 1,2,140", kHeader + kWorked), 2);
    EXPECT_EQ(out(), "");
    EXPECT_NE(err().find("Step numbers must be less than 140 , 6 is better."), std::string::npos);

    EXPECT_EQ(run("'" + path("missing.csv") + "'"), 2);
    EXPECT_NE(err().find("cannot open"), std::string::npos);

    EXPECT_EQ(run("", "t,ph,potassium\n"), 2);
    EXPECT_NE(err().find("unknown column \"potassium\""), std::string::npos);
}

TEST_F(Command, HelpWhateverElseTheCommandLineHolds) {
    const std::vector<std::string> commandLines = {
        "--help --sweep 1,2,140",
        "--sweep 1,2,140 --help",
        "--fast -h",
        "-h --ionic debye",
        "--activity --help",
        "--help '' -o ''",
        "--help '" + path("missing.csv") + "'",
    };
    for (const std::string& args : commandLines) {
        SCOPED_TRACE(args);
        EXPECT_EQ(run(args, kHeader + kWorked), 0);
        EXPECT_EQ(out(), helpText());
        EXPECT_EQ(err(), "");
    }
    // without it the same mistakes are usage errors
    EXPECT_EQ(run("--sweep 1,2,140", kHeader + kWorked), 2);
    EXPECT_EQ(run("--fast", kHeader + kWorked), 2);
    EXPECT_NE(err().find("unknown option \"--fast\""), std::string::npos);
    EXPECT_NE(err().find("Try 'velmora-calc --help'"), std::string::npos);
    EXPECT_EQ(out(), "");
}

TEST_F(Command, AnEmptyFileNameIsAFileError) {
    EXPECT_EQ(run("''", kHeader + kWorked), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "velmora-calc: cannot open the input file: its name is empty\n");
    // "-" is standard input
    EXPECT_EQ(run("-", kHeader + kWorked), 0);
    EXPECT_NE(out().find("\nworked,0,"), std::string::npos);
}

TEST_F(Command, AQuoteLeftOpenInTheHeaderIsAUsageError) {
    EXPECT_EQ(run("", "sample,\"t,ph\n"), 2);
    EXPECT_EQ(out(), "");
    EXPECT_NE(err().find("the header row has a quoted field that is not closed"),
              std::string::npos);
}

// Enough rows and sweep points for megabytes of output.
std::string manySamples(int rows) {
    std::string input = kHeader;
    for (int i = 0; i < rows; ++i)
        input += kWorked;
    return input;
}

TEST_F(Command, AReaderThatGoesAwayIsAWriteError) {
    write(path("in.csv"), manySamples(200));
    for (const char* jobs : {"1", "2", "7"}) {
        SCOPED_TRACE(jobs);
        // the status of velmora-calc itself, not of head
        const std::string cmd = "( '" + std::string(VELMORA_CALC) + "' --jobs " + jobs +
                                " --sweep 7,0,140 '" + path("in.csv") + "' 2> '" + path("stderr") +
                                "'; echo $? > '" + path("status") + "' ) | head -c 10 > '" +
                                path("stdout") + "'";
        ASSERT_EQ(std::system(cmd.c_str()), 0);
        EXPECT_EQ(read(path("status")), "2\n"); // not 141: no death by SIGPIPE
        EXPECT_EQ(out(), std::string(kOutputHeader).substr(0, 10));
        EXPECT_EQ(err(), "velmora-calc: cannot write standard output: " +
                             std::string(std::strerror(EPIPE)) + "\n");
    }
}

// Standard input and output as pipes, with several workers: the output of
// the file read directly.
TEST_F(Command, PipesInAndOutWithSeveralWorkers) {
    write(path("in.csv"), manySamples(300) + "bad,25,7.5,x,80,400,24,50,60\n");
    EXPECT_EQ(run("--jobs 1 --sweep 6.5,0.5,5 '" + path("in.csv") + "'"), 1);
    const std::string direct = out();
    const std::string cmd = "cat '" + path("in.csv") + "' | ( '" + std::string(VELMORA_CALC) +
                            "' --jobs 3 --sweep 6.5,0.5,5; echo $? > '" + path("status") +
                            "' ) | cat > '" + path("stdout") + "'";
    ASSERT_EQ(std::system(cmd.c_str()), 0);
    EXPECT_EQ(read(path("status")), "1\n");
    EXPECT_TRUE(out() == direct);
}

TEST_F(Command, AFailedWriteLeavesTheOutputFileUntouched) {
    const std::string target = path("result.csv");
    write(target, "previous contents\n");
    write(path("in.csv"), manySamples(20));
    // a file-size limit of a few blocks stops the output part way
    const std::string cmd = "( ulimit -f 4; exec '" + std::string(VELMORA_CALC) +
                            "' --sweep 7,0,140 -o '" + target + "' '" + path("in.csv") + "' ) > '" +
                            path("stdout") + "' 2> '" + path("stderr") + "'";
    const int status = std::system(cmd.c_str());
    ASSERT_TRUE(WIFEXITED(status)) << "killed by a signal";
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_EQ(err(), "velmora-calc: cannot write " + target + ": " +
                         std::string(std::strerror(EFBIG)) + "\n");
    EXPECT_EQ(read(target), "previous contents\n");
    // no temporary file is left behind
    EXPECT_EQ(files(), (std::vector<std::string>{"in.csv", "result.csv", "stderr", "stdout"}));
}

TEST_F(Command, OutputFileReplacedOnlyOnSuccess) {
    const std::string target = path("result.csv");
    write(target, "previous contents\n");
    write(path("in.csv"), kHeader + kWorked);

    // a bad header: the existing file stays as it was, no temporary file is left
    write(path("bad.csv"), "t,ph,bogus\n1,2,3\n");
    EXPECT_EQ(run("-o '" + target + "' '" + path("bad.csv") + "'"), 2);
    EXPECT_EQ(read(target), "previous contents\n");
    EXPECT_EQ(files(),
              (std::vector<std::string>{"bad.csv", "in.csv", "result.csv", "stderr", "stdout"}));

    // a missing input file, and a rejected sweep: the same
    EXPECT_EQ(run("-o '" + target + "' '" + path("none.csv") + "'"), 2);
    EXPECT_EQ(run("--sweep 7,2,5 -o '" + target + "' '" + path("in.csv") + "'"), 2);
    EXPECT_EQ(read(target), "previous contents\n");

    // success, message rows included, replaces it
    EXPECT_EQ(run("--output='" + target + "' '" + path("in.csv") + "'"), 0);
    EXPECT_EQ(out(), "");
    const std::string written = read(target);
    EXPECT_EQ(written.rfind(std::string(kOutputHeader) + "\n", 0), 0u);
    EXPECT_NE(written.find("\nworked,0,7.5,"), std::string::npos);

    // a directory that does not exist cannot be written
    EXPECT_EQ(run("-o '" + path("no/such/dir.csv") + "' '" + path("in.csv") + "'"), 2);
    EXPECT_NE(err().find("cannot write"), std::string::npos);
}

TEST_F(Command, OutputThroughASymbolicLinkReplacesTheFileItPointsTo) {
    write(path("real.csv"), "old\n");
    ASSERT_EQ(::symlink(path("real.csv").c_str(), path("link.csv").c_str()), 0);
    EXPECT_EQ(run("-o '" + path("link.csv") + "'", kHeader + kWorked), 0);
    struct stat st;
    ASSERT_EQ(::lstat(path("link.csv").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    EXPECT_NE(read(path("real.csv")).find("\nworked,0,"), std::string::npos);
}

// The file replaced keeps its mode; one the user may not write is refused.
TEST_F(Command, OutputFileKeepsItsModeAndAReadOnlyOneIsRefused) {
    write(path("in.csv"), kHeader + kWorked);
    for (mode_t mode : {0600, 0640, 0664}) {
        SCOPED_TRACE(mode);
        const std::string target = path("result.csv");
        write(target, "old\n");
        ASSERT_EQ(::chmod(target.c_str(), mode), 0);
        EXPECT_EQ(run("-o '" + target + "' '" + path("in.csv") + "'"), 0);
        struct stat st;
        ASSERT_EQ(::stat(target.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, mode);
        EXPECT_NE(read(target).find("\nworked,0,"), std::string::npos);
    }
    const std::string locked = path("locked.csv");
    write(locked, "keep me\n");
    ASSERT_EQ(::chmod(locked.c_str(), 0444), 0);
    EXPECT_EQ(run("-o '" + locked + "' '" + path("in.csv") + "'"), 2);
    EXPECT_EQ(err().rfind("velmora-calc: cannot write " + locked + ": ", 0), 0u) << err();
    EXPECT_EQ(out(), "");
    EXPECT_EQ(read(locked), "keep me\n");
    EXPECT_EQ(files(),
              (std::vector<std::string>{"in.csv", "locked.csv", "result.csv", "stderr", "stdout"}));
}

// The progress report: only on a terminal, only after a second, cleared at
// the end.
TEST(Progress, OnlyOnATerminalAndAfterASecond) {
    double now = 0;
    auto clock = [&now] { return now; };
    auto drain = [](int fd) {
        std::string text;
        char buf[4096];
        for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0;)
            text.append(buf, static_cast<std::size_t>(n));
        return text;
    };
    // a pipe is not a terminal: nothing, however long the run
    int pipeFds[2];
    ASSERT_EQ(::pipe2(pipeFds, O_NONBLOCK), 0);
    {
        TerminalProgress progress(pipeFds[1], 1000, clock);
        for (int i = 1; i <= 10; ++i) {
            now = i;
            progress.advance(100 * i, 100 * i);
        }
    }
    EXPECT_EQ(drain(pipeFds[0]), "");
    ::close(pipeFds[0]);
    ::close(pipeFds[1]);

    // a terminal: nothing in the first second, then rows, rate and percentage
    int master = -1, slave = -1;
    if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        GTEST_SKIP() << "no pseudo-terminal here";
    termios raw;
    ASSERT_EQ(::tcgetattr(slave, &raw), 0);
    ::cfmakeraw(&raw);
    ASSERT_EQ(::tcsetattr(slave, TCSANOW, &raw), 0);
    ::fcntl(master, F_SETFL, O_NONBLOCK);
    now = 0;
    {
        TerminalProgress progress(slave, 1000, clock);
        now = 0.5;
        progress.advance(10, 100);
        EXPECT_EQ(drain(master), "");
        now = 2;
        progress.advance(3000, 250);
        EXPECT_EQ(drain(master), "\rvelmora-calc: 3000 rows, 1500 rows/s, 25%\033[K");
        now = 2.1; // too soon for another refresh
        progress.advance(3100, 260);
        EXPECT_EQ(drain(master), "");
    }
    EXPECT_EQ(drain(master), "\r\033[K");
    now = 2;
    {
        TerminalProgress unknownSize(slave, 0, clock);
        now = 4.5;
        unknownSize.advance(500, 100);
        unknownSize.finish();
    }
    EXPECT_EQ(drain(master), "\rvelmora-calc: 500 rows, 200 rows/s\033[K\r\033[K");
    ::close(master);
    ::close(slave);
}

// Through the command: standard error a file, nothing but the output.
TEST_F(Command, NoProgressWhenStandardErrorIsNotATerminal) {
    write(path("in.csv"), manySamples(400));
    EXPECT_EQ(run("--jobs 2 --sweep 12.95,-0.05,140 '" + path("in.csv") + "'"), 0);
    EXPECT_EQ(err(), "");
    const std::string output = out();
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 1 + 400 * 141);
}

} // namespace
