#include "batch/run.h"
#include "intake/readdata.h"

#include "numtext/numtext.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

using namespace velmora;
using namespace velmora::batch;

namespace {

using Rows = std::vector<std::vector<std::string>>;
using Args = std::vector<std::string>;

Rows readAll(const std::string& text) {
    StringSource source(text);
    CsvReader reader(source);
    Rows rows;
    while (reader.next()) {
        rows.emplace_back();
        for (std::size_t i = 0; i < reader.fieldCount(); ++i)
            rows.back().emplace_back(reader.field(i));
    }
    return rows;
}

struct Result {
    int status = -1;  // 2: a usage error
    std::string text; // the output, or the usage error's message
    Rows header, rows;
};

Result calc(const std::string& input, Args args = {}, int jobs = 0, std::size_t piece = 1 << 16) {
    Result r;
    if (jobs) args.push_back("--jobs=" + std::to_string(jobs));
    try {
        StringSource source(input, piece);
        StringSink sink;
        r.status = runBatch(parseCommandLine(args), source, sink);
        r.text = sink.text;
    } catch (const UsageError& e) {
        r.status = 2;
        r.text = e.what();
        return r;
    }
    r.rows = readAll(r.text);
    r.header.assign(r.rows.begin(), r.rows.begin() + 1);
    r.rows.erase(r.rows.begin());
    return r;
}

// Output columns by name.
enum Col { kSample, kPoint, kPh, kLi, kRi, kPor, kAi, kDfi, kLr, kMe, kSl, kPhs };
constexpr int kIonic = 20, kCt = 24, kSumca = 25, kSuman = 26, kDiff = 27, kMessage = 28;
constexpr std::size_t kColumns = 29;

double num(const std::string& cell) {
    const auto v = fmt::strictNumber(cell);
    EXPECT_TRUE(v.has_value()) << "not a number: \"" << cell << "\"";
    return v.value_or(0);
}

bool numbersEmpty(const std::vector<std::string>& row) { // ph to ct
    return std::count(row.begin() + kPh, row.begin() + kCt + 1, "") == kCt - kPh + 1;
}

const std::string kHeader = "sample,t,ph,alk,ca,tds,mg,cl,so4\n";
const std::string kWorked = "worked,25,7.5,200,80,400,24,50,60\n";
const std::string kBom = "\xEF\xBB\xBF";

// ---------------------------------------------------------------------------
// Reading CSV

// The records as line[field|field]/line[...], each followed by !N for text
// after the closing quote of field N and ~ for a quoted field not closed.
std::string readBack(const std::string& text, std::size_t piece) {
    StringSource source(text, piece);
    CsvReader reader(source);
    std::string shown;
    while (reader.next()) {
        if (!shown.empty()) shown += '/';
        shown += std::to_string(reader.line());
        for (std::size_t i = 0; i < reader.fieldCount(); ++i)
            shown.append(i ? "|" : "[").append(reader.field(i));
        shown += reader.fieldCount() ? "]" : "[]";
        EXPECT_EQ(reader.malformed(), reader.malformedField() != 0);
        if (reader.malformed()) shown.append("!").append(std::to_string(reader.malformedField()));
        if (reader.unterminated()) shown += "~";
    }
    return shown;
}

TEST(CsvReading, RecordsFieldsAndLines) {
    const struct {
        const char* name;
        std::string text;
        std::string shown;
    } cases[] = {
        {"lf", "a,b\n1,2\n", "1[a|b]/2[1|2]"},
        {"crlf", "a,b\r\n1,2\r\n", "1[a|b]/2[1|2]"},
        {"lone_cr", "a,b\r1,2\r", "1[a|b]/2[1|2]"},
        {"byte_order_mark", kBom + "a,b\n1,2\n", "1[a|b]/2[1|2]"},
        {"bom_only_at_start", "a\n" + kBom + "b\n", "1[a]/2[" + kBom + "b]"},
        {"blank_lines_skipped", "\n\na,b\r\n\r\n\n1,2\n\n", "3[a|b]/6[1|2]"},
        {"blank_only_lines_skipped", "a,b\n   \n\t \t\r\n1,2\n \n", "1[a|b]/4[1|2]"},
        {"blank_only_one_column", "a\n  \n1\n\t\n2", "1[a]/3[1]/5[2]"},
        {"empty_fields", ",\n,,x\n", "1[|]/2[||x]"},
        {"blanks_kept", " 7.5 , x\n , \n", "1[ 7.5 | x]/2[ | ]"},
        {"quoted_comma", "\"a,b\",c\n", "1[a,b|c]"},
        {"doubled_quote", "\"say \"\"hi\"\"\",x\n", "1[say \"hi\"|x]"},
        {"quoted_lf", "h\n\"a\nb\"\nc\n\"d\n\ne\"\nf\n", "1[h]/2[a\nb]/4[c]/5[d\n\ne]/8[f]"},
        {"quoted_crlf", "h\r\n\"a\r\nb\"\r\nc\r\n\"d\r\n\r\ne\"\r\nf\r\n",
         "1[h]/2[a\r\nb]/4[c]/5[d\r\n\r\ne]/8[f]"},
        {"quoted_cr", "h\r\"a\rb\"\rc\r\"d\r\re\"\rf\r", "1[h]/2[a\rb]/4[c]/5[d\r\re]/8[f]"},
        {"unterminated", "h\n\n\"a\nb\"\nc\n\"open\nrest", "1[h]/3[a\nb]/5[c]/6[open\nrest]~"},
        {"text_after_quote", "\"7\"5,x\n", "1[75|x]!1"},
        {"blank_after_quote", "\"a\" ,b\n", "1[a |b]!1"},
        {"quote_then_line_ends", "\"a\"\r\n\"b\"\n\"c\"", "1[a]/2[b]/3[c]"},
        {"next_record_starts_well", "\"a\"b,c\nd,e\n", "1[ab|c]!1/2[d|e]"},
    };
    for (const auto& c : cases)
        for (std::size_t piece : {1, 2, 3, 7, 1 << 16})
            EXPECT_EQ(readBack(c.text, piece), c.shown) << c.name << " in pieces of " << piece;
}

// ---------------------------------------------------------------------------
// Header

TEST(BatchHeader, AcceptedOrAUsageError) {
    const struct {
        const char* name;
        std::string header;
        const char* inMessage; // empty: accepted
    } cases[] = {
        {"any_order_case_and_blanks", " PH ,Ca,  t,ALK,tds,Sample\n", ""},
        {"unknown", "t,ph,calcium\n", "unknown column \"calcium\""},
        {"repeated", "ca,t,CA \n", "column \"CA\" appears twice"},
        {"quote_not_closed", "t,\"ph,ca\n1,2,3\n", "a quoted field that is not closed"},
        {"text_after_quote", "t,\"ph\"x\n", "malformed: field 2 has text after its closing quote"},
        {"millions_of_fields", "t,ph" + std::string(2'000'000, ',') + "\n", "unknown column \"\""},
        {"too_long", std::string(CsvReader::kMaxRecord + 10, 'x') + "\n", "too long"},
        {"empty_input", "", "no header row"},
        {"only_a_byte_order_mark", kBom, "no header row"},
    };
    for (const auto& c : cases) {
        const Result r = calc(c.header);
        EXPECT_EQ(r.status, *c.inMessage ? 2 : 0) << c.name;
        EXPECT_TRUE(*c.inMessage ? r.text.find(c.inMessage) != std::string::npos
                                 : r.text == std::string(kOutputHeader) + "\n")
            << c.name << ": " << r.text;
    }
}

// ---------------------------------------------------------------------------
// Rows

TEST(BatchRows, MeasuredPointAndSweepRows) {
    const Result r = calc(kHeader + kWorked, {"--sweep", "6.5,0.5,5"}),
                 alone = calc(kHeader + kWorked);
    EXPECT_EQ(r.status + alone.status, 0);
    ASSERT_EQ(r.rows.size() + 10 * alone.rows.size(), 16u);
    EXPECT_EQ(r.rows[0], alone.rows[0]); // the measured point, first
    const auto& row = r.rows[0];
    ASSERT_EQ(row.size(), kColumns);
    // each column holds its own quantity (lr 0: without Larson-Skold)
    const std::pair<int, double> expected[] = {
        {kPh, 7.5},         {kLi, 0.2405903388}, {kRi, 7.018819322}, {kPor, 6.607810379},
        {kAi, 12.10119227}, {kDfi, 0.771772149}, {kLr, 0},           {kMe, 3.273402578e-6},
        {kSl, 0.368697632}, {kPhs, 7.259409661}, {kIonic, 0.01},     {kCt, 0.004210377859}};
    for (const auto& [col, value] : expected)
        EXPECT_NEAR(num(row[col]), value, 1e-9 * std::fabs(value) + 1e-15) << col;
    // no ion balance with Langelier
    EXPECT_EQ(row[kSample] + row[kSumca] + row[kSuman] + row[kDiff] + row[kMessage], "worked");
    const double ph[] = {7.5, 6.5, 7.0, 7.5, 8.0, 8.5};
    for (int p = 0; p < 6; ++p)
        EXPECT_EQ(r.rows[p][kPoint] + " " + r.rows[p][kPh],
                  std::to_string(p) + " " + fmt::shortest(ph[p]));
    EXPECT_NEAR(num(r.rows[2][kLi]), -0.30747, 1e-5);
    // failing midway: the points before it, then the failing point's message
    const Result mid = calc("sample,t,ph,alk,ca,tds\nhigh,25,13,10,80,400\n", {"--sweep=13,-1,5"});
    EXPECT_EQ(mid.status, 1);
    ASSERT_EQ(mid.rows.size(), 3u) << mid.text;
    EXPECT_EQ(mid.rows[1][kPoint] + mid.rows[1][kMessage], "1");
    EXPECT_EQ(mid.rows[2][kPoint], "2");
    EXPECT_TRUE(numbersEmpty(mid.rows[2]));
    EXPECT_EQ(mid.rows[2][kMessage].rfind("run-time error: logarithm", 0), 0u);
}

// A row that cannot be computed: one message row, its numbers empty.
TEST(BatchRows, MessageRows) {
    const std::string ph = kPhRangeMessage, number = kNotANumberMessage, lewis = "--ionic=lewis";
    const struct {
        const char* name;
        std::string input; // under kHeader unless it holds a header of its own
        std::string message, point, sums = "";
        Args args = {};
    } cases[] = {
        {"ph_0", "s,25,0,200,80,400,,,", ph, ""},
        // the first bad cell in the order tds, ec, t, ph, alk, ca, ... reports,
        // wherever the columns stand in the file
        {"tds_before_ph", "s,25,20,200,80,abc,,,", number, ""},
        {"temperature_before_ph", "s,x,20,200,80,400,,,", number, ""},
        {"ph_before_calcium", "s,25,20,200,x,400,,,", ph, ""},
        {"zero_calcium", "s,25,7.5,200,0,400,,,", "run-time error: logarithm", "0"},
        {"negative_ionic_strength", "s,25,7.5,200,80,-400,,,", "run-time error: square root", ""},
        {"wrong_field_count", "s,25,7.5", "line 2: 3 fields where the header has 9", ""},
        {"millions_of_fields", "s" + std::string(2'000'000, ','),
         "line 2: 2000001 fields where the header has 9", ""},
        {"unterminated_quote", kHeader + "\"s,25,7.5,200,80,400,,,",
         "line 2: a quoted field is not", ""},
        {"text_after_quote", "s,25,\"7\"5,200,80,400,,,",
         "line 2: the row is malformed: field 3 has text after its closing quote", ""},
        {"too_long", "s," + std::string(CsvReader::kMaxRecord, 'x'), "line 2: the row is longer",
         ""},
        {"calculate_without_ph", "sample,t,ph,alk,ca,ec\ns,25,,200,80,60\n",
         "you Should enter TDS,T,pH,Mg", "", "", Args{"--ionic", "russell"}},
        {"unacceptable_keeps_the_sums",
         "sample,t,ph,alk,ca,mg,na,k,cl,so4,hco3,co3\ns,25,7.5,200,80,24,46,3.9,50,60,244,0\n",
         "water analysis is unacceptable", "", "sums", Args{lewis}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const bool own = c.input.find('\n') != std::string::npos;
        const Result r = calc(own ? c.input : kHeader + c.input + "\n" + kWorked, c.args);
        ASSERT_EQ(r.rows.size(), own ? 1u : 2u) << r.text;
        const auto& row = r.rows[0];
        ASSERT_EQ(row.size(), kColumns);
        EXPECT_EQ(row[kSample].substr(0, 1) + "|" + row[kPoint], "s|" + c.point);
        EXPECT_EQ(row[kMessage].rfind(c.message, 0), 0u) << row[kMessage];
        EXPECT_TRUE(r.status == 1 && numbersEmpty(row));
        EXPECT_EQ(row[kSumca].empty(), c.sums.empty()); // the ion balance's sums, when it ran
        EXPECT_TRUE(own || r.rows[1][kSample] + r.rows[1][kMessage] == "worked"); // goes on
    }
}

// The output of several workers is byte for byte that of one, with the same
// exit status, on inputs of every kind. Every row starts from a fresh
// program: with the ion balance, the verdict on an anion sum above 800 meq/L
// (no band) would otherwise depend on the rows before, and on the chunks.
TEST(BatchRows, OutputIsTheSameWithAnyNumberOfWorkers) {
    const char* kinds[] = {"w%d,25,7.5,200,80,400,24,50,60\n",
                           "bad%d,25,7.5,abc,80,400,24,50,60\n",
                           "zero%d,25,7.5,200,0,400,,,\n",
                           "m%d,,7.5,200,80,400,,,\n",
                           "salt%d,25,7,50,20.1,,,30000,\n",
                           "s%d,25,7.5\n",
                           "\"q,\"\"%d\"\"\",12,8.1,150,60,300,10,20,30\r\n",
                           "\"mal\"x%d,25,7.5,200,80,400,24,50,60\n",
                           "\"two\nlines %d\",30,6.9,90,40,250,5,10,20\n"};
    auto file = [&](int rows) {
        std::string text = kHeader;
        char line[128];
        for (int i = 0; i < rows; ++i) {
            std::snprintf(line, sizeof line, kinds[static_cast<std::size_t>(i) % std::size(kinds)],
                          i);
            text += line;
        }
        return text;
    };
    const struct {
        std::string input;
        Args args;
    } cases[] = {{file(1), {"--activity=guntelberg"}},
                 {file(50), {"--activity", "limiting", "-q"}},
                 {file(7000), {"--activity=EXTENDED", "--quiet"}},
                 {kHeader, {"--ionic=langelier", "--activity=none"}},
                 {kHeader + "\"open,25", {"-"}},
                 {"", {}},
                 {file(3000), {"--ionic", "lewis", "--larson-skold"}},
                 {file(300), {"--sweep", "12.95,-0.05,140"}},
                 {file(200), {"--sweep", "3,-2,140", "--activity", "davies"}},
                 {file(500), {"--ccpp", "--crossings=table", "--sweep", "6,0.5,8"}}};
    for (const auto& c : cases) {
        const Result one = calc(c.input, c.args, 1, 4096);
        for (int jobs : {2, 7}) {
            const Result many = calc(c.input, c.args, jobs, 4096);
            EXPECT_TRUE(many.status == one.status && many.text == one.text)
                << c.input.size() << " bytes, " << jobs << " workers";
        }
    }
}

// The columns of --ccpp and --crossings stand before message and are filled
// on the measured point's row only.
TEST(BatchRows, CcppAndCrossingColumns) {
    const Result r = calc("sample,t,ph,alk,ca,tds\ns,25,7.5,200,80,400\nbad,25,7.5,x,80,400\n",
                          {"--ccpp", "--crossings", "--sweep", "6,0.1,39"});
    const auto& header = r.header.at(0);
    ASSERT_EQ(header.size(), kColumns + 3 + 7);
    EXPECT_EQ(header[kMessage] + "," + header.back(), "ccpp,message");
    ASSERT_EQ(r.rows.size(), 41u); // the measured point, 39 sweep points, a message row
    for (int c : {0, 1, 3})        // ccpp, ph_eq, the first crossing; no note
        EXPECT_GT(num(r.rows[0][kMessage + c]), 7) << c;
    EXPECT_EQ(r.rows[0][kMessage + 2], "");
    for (std::size_t i = 1; i < r.rows.size(); ++i) {
        ASSERT_EQ(r.rows[i].size(), header.size());
        EXPECT_EQ(std::count(r.rows[i].begin() + kMessage, r.rows[i].end() - 1, ""), 10) << i;
    }
    EXPECT_TRUE(r.status == 1 && r.rows.back().back() == kNotANumberMessage);
    // a note is a result: no message row, no change of the exit status
    const Result note = calc("t,ph,alk,ca,tds\n25,11.5,2,80,400\n", {"--ccpp"});
    ASSERT_EQ(note.rows.size() + note.status, 1u);
    EXPECT_EQ(note.rows[0][kMessage + 2] + note.rows[0][kMessage + 3], "no carbonate alkalinity");
}

// ---------------------------------------------------------------------------
// Command line

// Each mistake's message; with --help (or -h) anywhere, no mistake at all.
TEST(BatchCommandLine, UsageErrors) {
    const struct {
        Args args;
        const char* message; // how the message starts
    } cases[] = {
        {{"--fast"}, "unknown option \"--fast\""},
        {{"-x"}, "unknown option \"-x\""},
        {{"--ionic", "debye"}, "--ionic: unknown equation \"debye\""},
        {{"--activity=full"}, "--activity: unknown equation \"full\""},
        {{"-o", ""}, "option \"-o\" needs a file name"},
        {{"--larson-skold=yes"}, "option \"--larson-skold\" takes no value"},
        {{"a.csv", "b.csv"}, "more than one input file"},
        {{"--crossings"}, "--crossings needs --sweep"},
        {{"--crossings=all", "--sweep=7,0.5,5"}, "--crossings: unknown set \"all\""},
        {{"--sweep", "7,0.5"}, "--sweep needs START,INCREMENT,STEPS"},
        {{"--sweep", "7,0.5,5,1"}, "--sweep needs START,INCREMENT,STEPS"},
        // the Options dialog's box checks and Apply, each with its message
        {{"--sweep", "15,0.5,5"}, "--sweep: initial pH must be between 1 to 14 ."},
        {{"--sweep", "7,3,5"}, "--sweep:  pH increment must be between 0.1"},
        {{"--sweep", "7,.,5"}, "--sweep: You must enter a positive number! ("},
        {{"--sweep", "7,0.5,2.5"}, "--sweep: You must enter an integer positive"},
        {{"--sweep", "7,2,5"}, "--sweep: Step numbers must be less than 5 , 3 is better."},
        {{"--jobs", "0"}, "--jobs needs a number of workers from 1 to 256"},
        {{"--jobs=1.5"}, "--jobs needs a number of workers from 1 to 256"},
        {{"--jobs"}, "option \"--jobs\" needs a value"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args.back());
        try {
            parseCommandLine(c.args);
            ADD_FAILURE() << "expected a usage error";
        } catch (const UsageError& e) {
            EXPECT_EQ(std::string(e.what()).rfind(c.message, 0), 0u) << e.what();
        }
        for (const char* help : {"--help", "-h"}) {
            Args before{help}, after = c.args;
            before.insert(before.end(), c.args.begin(), c.args.end());
            after.push_back(help);
            EXPECT_TRUE(parseCommandLine(before).help && parseCommandLine(after).help) << help;
        }
    }
}

// ---------------------------------------------------------------------------
// The command itself

void write(const std::string& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}
std::string read(const std::string& file) {
    std::ifstream f(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(f), {}};
}

class Command : public ::testing::Test {
protected:
    const std::string dir = ::testing::TempDir() + "velmora-calc-" + std::to_string(::getpid());
    void SetUp() override { ASSERT_TRUE(std::filesystem::create_directory(dir)); }
    void TearDown() override { std::filesystem::remove_all(dir); }
    std::string path(const std::string& name) const { return dir + "/" + name; }
    // A shell command line, "calc " standing for velmora-calc, its output and
    // errors to files; its exit status.
    int shell(std::string cmd) {
        for (std::size_t at; (at = cmd.find("calc ")) != std::string::npos;)
            cmd.replace(at, 4, std::string("'") + VELMORA_CALC + "'");
        const int status = std::system(
            ("( " + cmd + " ) > '" + path("stdout") + "' 2> '" + path("stderr") + "'").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int run(const std::string& args, const std::string& input = "") {
        write(path("stdin"), input);
        const int status = shell("calc " + args + " < '" + path("stdin") + "'");
        std::filesystem::remove(path("stdin"));
        return status;
    }
    std::string out() const { return read(path("stdout")); }
    std::string err() const { return read(path("stderr")); }
    std::string files() { return shell("ls '" + dir + "' | tr '\\n' ' '") == 0 ? out() : ""; }
};

std::string manySamples(int rows) {
    const std::vector<std::string> lines(static_cast<std::size_t>(rows), kWorked);
    return std::accumulate(lines.begin(), lines.end(), kHeader);
}

TEST_F(Command, ExitStatusAndStreams) {
    const struct {
        std::string args, input;
        int status;
        const char* out; // how standard output starts
        const char* err; // in standard error
    } cases[] = {
        {std::string("'") + VELMORA_EXAMPLES + "/waters.csv'", "", 0, kOutputHeader, ""},
        {"-- -", kHeader + kWorked, 0, kOutputHeader, ""},
        {"", kHeader + "s,25,7.5,200,0,400,,,\n", 1, kOutputHeader, ""},
        {"--sweep 1,2,140", kHeader + kWorked, 2, "", "Step numbers must be less than 140"},
        {"--fast", kHeader + kWorked, 2, "", "Try 'velmora-calc --help'"},
        {"'" + path("missing.csv") + "'", "", 2, "", "cannot open"},
        {"''", kHeader, 2, "", "velmora-calc: cannot open the input file: its name is empty\n"},
        {"", "t,ph,potassium\n", 2, "", "unknown column \"potassium\""},
        {"", "sample,\"t,ph\n", 2, "", "quoted field that is not closed"},
        {"--fast -h '' -o ''", kHeader, 0, helpText(), ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run(c.args, c.input), c.status) << c.args;
        EXPECT_TRUE(out().rfind(c.out, 0) == 0 && (*c.out == 0) == out().empty()) << c.args;
        EXPECT_TRUE(err().find(c.err) != std::string::npos && (*c.err == 0) == err().empty())
            << c.args << ": " << err();
    }
    EXPECT_EQ(out(), helpText());
}

// Pipes in and out with several workers: the output of the file read
// directly; a reader that goes away is a write error, not death by SIGPIPE.
TEST_F(Command, Pipes) {
    write(path("in.csv"), manySamples(300) + "bad,25,7.5,x,80,400,24,50,60\n");
    EXPECT_EQ(run("--jobs 1 --sweep 6.5,0.5,5 '" + path("in.csv") + "'"), 1);
    const std::string direct = out(), status = path("status");
    EXPECT_EQ(shell("cat '" + path("in.csv") + "' | calc -j3 --sweep 6.5,0.5,5 | cat"), 0);
    EXPECT_TRUE(out() == direct);
    for (const char* jobs : {"1", "2", "7"}) {
        EXPECT_EQ(shell("( calc -j" + std::string(jobs) + " --sweep 7,0,140 '" + path("in.csv") +
                        "'; echo $? > '" + status + "' ) | head -c 10"),
                  0);
        EXPECT_EQ(read(status) + out(), "2\n" + std::string(kOutputHeader).substr(0, 10)) << jobs;
        EXPECT_EQ(err(), "velmora-calc: cannot write standard output: " +
                             std::string(std::strerror(EPIPE)) + "\n");
    }
}

TEST_F(Command, AFailedWriteLeavesTheOutputFileUntouched) {
    const std::string target = path("result.csv");
    write(target, "previous contents\n");
    write(path("in.csv"), manySamples(20));
    // a file-size limit of a few blocks stops the output part way
    EXPECT_EQ(shell("ulimit -f 4; exec calc --sweep 7,0,140 -o '" + target + "' '" +
                    path("in.csv") + "'"),
              2);
    EXPECT_EQ(err(), "velmora-calc: cannot write " + target + ": " +
                         std::string(std::strerror(EFBIG)) + "\n");
    EXPECT_EQ(read(target), "previous contents\n");
    EXPECT_EQ(files(), "in.csv result.csv stderr stdout ");
}

TEST_F(Command, OutputFileReplacedOnlyOnSuccess) {
    const std::string target = path("result.csv"), in = " '" + path("in.csv") + "'";
    write(target, "previous contents\n");
    write(path("in.csv"), kHeader + kWorked);
    write(path("bad.csv"), "t,ph,bogus\n1,2,3\n");
    // a bad header, a missing input file, a rejected sweep: nothing changes
    for (const std::string& args : {path("bad.csv"), path("none.csv"), "--sweep=7,2,5" + in})
        EXPECT_EQ(
            run("-o '" + target + "' " + args) * 100 + (read(target) == "previous contents\n"), 201)
            << args;
    EXPECT_EQ(files(), "bad.csv in.csv result.csv stderr stdout ");
    // success replaces it, keeping its mode; through a symbolic link, the
    // file it points to
    ASSERT_EQ(::symlink(target.c_str(), path("link.csv").c_str()), 0);
    for (mode_t mode : {0600, 0640, 0664}) {
        write(target, "old\n");
        ASSERT_EQ(::chmod(target.c_str(), mode), 0);
        EXPECT_EQ(run("--output='" + path(mode == 0640 ? "link.csv" : "result.csv") + "'" + in), 0);
        struct stat st;
        EXPECT_TRUE(::stat(target.c_str(), &st) == 0 && (st.st_mode & 07777) == mode &&
                    out().empty());
        EXPECT_NE(read(target).find("\nworked,0,7.5,"), std::string::npos);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.csv")));
    // a read-only file, a directory and a missing one are not written
    const std::string locked = path("locked.csv");
    write(locked, "keep me\n");
    ASSERT_EQ(::chmod(locked.c_str(), 0444), 0);
    for (const std::string& bad : {locked, path("no/such/dir.csv"), dir}) {
        EXPECT_EQ(run("-o '" + bad + "'" + in), 2);
        EXPECT_EQ(err().rfind("velmora-calc: cannot write " + bad + ": ", 0), 0u) << err();
        EXPECT_EQ(out(), "");
    }
    EXPECT_EQ(read(locked), "keep me\n");
    EXPECT_EQ(run("-o /dev/null" + in), 0); // a device is written as it is
}

// The progress report: only on a terminal, only after a second, cleared at
// the end. (Through the command standard error is a file: no report.)
TEST(Progress, OnlyAfterASecondAndClearedAtTheEnd) {
    int master = -1, slave = -1;
    if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        GTEST_SKIP() << "no pseudo-terminal here";
    ::fcntl(master, F_SETFL, O_NONBLOCK);
    auto drain = [master] {
        std::string text;
        char buf[4096];
        for (ssize_t n; (n = ::read(master, buf, sizeof buf)) > 0;)
            text.append(buf, static_cast<std::size_t>(n));
        return text;
    };
    double now = 0;
    auto progress = std::make_unique<TerminalProgress>(slave, 1000, [&now] { return now; });
    const struct {
        double now;
        int rows, bytes;
        const char* shown;
    } steps[] = {{0.5, 10, 100, ""},
                 {2, 3000, 250, "\rvelmora-calc: 3000 rows, 1500 rows/s, 25%\033[K"},
                 {2.1, 3100, 260, ""}}; // too soon for another refresh
    for (const auto& step : steps) {
        now = step.now;
        progress->advance(step.rows, step.bytes);
        EXPECT_EQ(drain(), step.shown) << step.now;
    }
    progress.reset();
    EXPECT_EQ(drain(), "\r\033[K");
    now = 2;
    progress = std::make_unique<TerminalProgress>(slave, 0, [&now] { return now; }); // size unknown
    now = 4.5;
    progress->advance(500, 100);
    progress->finish();
    EXPECT_EQ(drain(), "\rvelmora-calc: 500 rows, 200 rows/s\033[K\r\033[K");
    ::close(master);
    ::close(slave);
}

} // namespace
