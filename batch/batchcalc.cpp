#include "batch/batchcalc.h"

#include "engine/ccpp.h"

#include "numtext/numtext.h"
#include "options/sweepsettings.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <iterator>
#include <mutex>
#include <new>
#include <sched.h>
#include <sys/stat.h>
#include <thread>
#include <time.h>
#include <type_traits>
#include <unistd.h>

namespace velmora::batch {

namespace {

// The analysis columns are the fields, in their order (the order their
// cells are checked); then the sample identifier.
constexpr std::size_t kAnalysisColumns = kFieldCount;
constexpr std::size_t kSampleColumn = kAnalysisColumns; // index of "sample" in Calculator::column_
constexpr std::size_t kPhColumn = static_cast<std::size_t>(Field::ph);
// Fields of the header the reader keeps: one more than there are names.
constexpr std::size_t kHeaderFields = kAnalysisColumns + 2;

// Every per-point array of the engine, so that a sample can start from the
// state of a freshly started program without clearing all 141 elements.
constexpr PointArray SweepArrays::*kArrays[] = {
    &SweepArrays::ph,    &SweepArrays::ch,      &SweepArrays::oh,     &SweepArrays::a0,
    &SweepArrays::a1,    &SweepArrays::a2,      &SweepArrays::ctnum,  &SweepArrays::ctden,
    &SweepArrays::h2co3, &SweepArrays::hco3,    &SweepArrays::co3,    &SweepArrays::alk,
    &SweepArrays::alkmg, &SweepArrays::alkeq,   &SweepArrays::alkt,   &SweepArrays::palk,
    &SweepArrays::phs,   &SweepArrays::pheq,    &SweepArrays::li,     &SweepArrays::ri,
    &SweepArrays::por,   &SweepArrays::ai,      &SweepArrays::dfi,    &SweepArrays::lr,
    &SweepArrays::me,    &SweepArrays::sl,      &SweepArrays::co3dfi, &SweepArrays::qb,
    &SweepArrays::qc,    &SweepArrays::hco3meq,
};
// ct, qa, clmeq, so4meq, phstart, phincrement, phsteps and ipoint
static_assert(sizeof(SweepArrays) == std::size(kArrays) * sizeof(PointArray) + 8 * sizeof(double),
              "SweepArrays changed: update kArrays and Calculator::freshProgram");
// A point array is its 141 doubles and nothing else, element 0 first.
static_assert(std::is_standard_layout_v<PointArray> && std::is_trivially_copyable_v<PointArray> &&
              sizeof(PointArray) == PointArray::kSize * sizeof(double));

std::string lower(std::string_view s) {
    std::string r(s);
    for (char& c : r)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return r;
}

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    return s;
}

void appendField(OutputBuffer& out, std::string_view text) {
    // (a loop of its own: find_first_of searches the set for every character)
    bool plain = true;
    for (char c : text)
        if (c == ',' || c == '"' || c == '\r' || c == '\n') {
            plain = false;
            break;
        }
    if (plain) {
        out.append(text);
        return;
    }
    out.append('"');
    for (char c : text) {
        if (c == '"') out.append('"');
        out.append(c);
    }
    out.append('"');
}

// Everything written to fd, errors ignored (the messages of the command).
void writeAllTo(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t r = ::write(fd, text.data(), text.size());
        if (r < 0) {
            if (errno == EINTR) continue;
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(r));
    }
}

constexpr int kMaxJobs = 256;

std::string runtimeText(const EngineError& e) {
    return std::string("run-time error: ") + e.what();
}

// Checks the sweep texts as the Options dialog's boxes and Apply do; the
// sweep list and start as Apply leaves them.
void applySweepOptions(const Options& o, OptionState& state, double& phstart) {
    const std::string where = "--sweep: ";
    if (auto m = checkInitialPh(o.sweepStart)) throw UsageError(where + *m);
    if (auto m = checkIncrementPh(o.sweepIncrement)) throw UsageError(where + *m);
    if (auto m = checkSteps(o.sweepSteps)) throw UsageError(where + *m);
    SweepApplyResult r;
    try {
        r = applySweep(o.sweepStart, o.sweepIncrement, o.sweepSteps, state.sweep, phstart);
    } catch (const EngineError& e) {
        throw UsageError(where + "You must enter a positive number! (" + e.what() + ")");
    }
    if (r.outcome != SweepApplyResult::Outcome::Applied) throw UsageError(where + r.message);
}

} // namespace

// ---------------------------------------------------------------------------
// Command line

const char* helpText() {
    return R"(Usage: velmora-calc [options] [FILE]

Computes the corrosion and scaling indices of many water samples. Reads CSV
from FILE (or standard input when FILE is absent or "-") and writes CSV to
standard output.

Options (--opt value and --opt=value both work):
  -o, --output FILE   write to FILE instead of standard output; the output
                      goes to a temporary file that is renamed at the end, so
                      a failed run leaves an existing FILE untouched
  --ionic EQUATION    ionic strength equation: langelier (default), russell
                      or lewis (Lewis and Randall, with the ion balance)
  --activity EQUATION
                      activity coefficient equation: none (default: the
                      Debye-Huckel limiting law), limiting, extended,
                      guntelberg or davies
  --larson-skold      the Larson-Skold index is chosen: chloride and sulphate
                      are read with every ionic strength equation
  --sweep START,INCREMENT,STEPS
                      a pH sweep after the measured point: START 1 to 14,
                      INCREMENT 0.1 to 2 (or 0 or less), STEPS 1 to 140, and
                      no sweep point above pH 14; a rejected sweep is a usage
                      error with the Options dialog's message
  --ccpp              add the columns ccpp, ph_eq and ccpp_note: the calcium
                      carbonate precipitation potential, the mg/L of CaCO3
                      the water deposits (positive) or dissolves (negative)
                      to reach saturation, and its pH once saturated
  --crossings[=SET]   needs --sweep: add, for each index and threshold, the
                      pH inside the swept range where the index equals the
                      threshold (found by root finding on the sweep's own
                      formulas; empty when there is none in the range). SET
                      neutral (default): ph_li_0, ph_ri_6p5, ph_por_6,
                      ph_ai_12, ph_ai_10, ph_dfi_1, ph_sl_1; table: every
                      boundary of the interpretation tables of LI, RI, PSI,
                      AI, DFI and SL ('.' written 'p', '-' written 'm')
  -j, --jobs N        compute with N workers (default: one for each core
                      the command may run on); the output is the same
  -q, --quiet         no progress report (it is shown only when standard
                      error is a terminal and the run lasts over a second)
  -h, --help          show this text and nothing else, whatever else the
                      command line holds
An unknown option or a missing value is a usage error, an empty FILE name a
file error.

Input: a header row, then one sample per row. Columns (any order, names
trimmed and case-insensitive): tds, ec, t, ph, alk, ca, mg, k, na, zn, mn, fe,
al, hco3, co3, no2, no3, f, cl, so4 (mg/L; alkalinity as CaCO3; t in degrees
Celsius; ec in mS/m) and an optional sample identifier, copied to the output.
A missing column is an empty box; an unknown or repeated column is a usage
error naming it. RFC 4180 quoting; CRLF or LF line ends; a UTF-8 byte-order
mark is ignored; blank lines and lines of only blanks and tabs are skipped.
A row with the wrong number of fields, text after a closing quote or a quote
left open becomes a message row saying so; in the header these are usage
errors.

Each row is computed as if typed into a freshly started program with these
options applied:
  1. Every cell is checked as its box checks its text, the whole cell as if
     pasted (an empty cell is an empty box). A cell that is not a number
     ("1e400" is not one) is rejected with "You must enter a number!", a pH
     of 0 or less or above 14 with "pH must be a positive number up to 14 .".
     Of several bad cells, the first in the column order above (tds, ec, t,
     ph, ...) reports, wherever the columns stand in the file.
  2. Read Data, with its own messages for missing values, the conversion,
     the activity and the ion balance. An unacceptable analysis stops here.
  3. Calculate, with its own message when the pH cell is empty and no sweep
     is given.

Output columns:
  sample,point,ph,li,ri,por,ai,dfi,lr,me,sl,phs,ch,oh,a0,a1,a2,h2co3,hco3,co3,
  ionic,lanm,land,lant,ct,sumca,suman,diff,message
One row per computed point, in input order: point 0 is the measured point,
1 to STEPS the sweep points. Numbers are written as the shortest text that
reads back to exactly the same value. sumca, suman and diff are filled when
the Lewis and Randall equation ran the ion balance; message is empty.
A message the program would show is a row of its own with the numbers empty
and the text in message: a rejected cell, a Read Data message, "water
analysis is unacceptable" (this row keeps sumca, suman and diff, to show
why), Calculate's message, a run-time error or a malformed row. For a
run-time error point says where it happened: 0 for the measured point, k for
sweep point k (the points before it are written, the sample ends there),
empty while reading the analysis.
With --ccpp and --crossings their columns stand just before message and are
filled on the measured point's row only. Both are computed in a closed
system, in this program's model: the measured water's ionic strength,
activity coefficients and constants, no exchange of CO2 with the air and no
ion pairs. CCPP: precipitating x mol/L of CaCO3 lowers calcium and total
carbonate by x and the alkalinity by 2x; ccpp = 100090 x mg/L where the
Langelier index of that water is 0, ph_eq its pH. ccpp_note says why no
value exists: "no carbonate alkalinity", "all carbonate precipitates" (ccpp
is then all the carbonate there is) or "not saturated after dissolving
100090 mg/L". The worked sample (t 25, ph 7.5, alk 200, ca 80, tds 400)
gives ccpp 10.949982089 and ph_eq 7.308343853, and with --sweep 6,0.1,39
ph_li_0 7.275242468.
Lines end in LF; a field is quoted only when it holds a comma, a quote or a
line end.

Exit status: 0 when no message row was written, 1 when one was, 2 for a
usage or file error (the reason is written to standard error).
)";
}

Options parseCommandLine(const std::vector<std::string>& args) {
    Options o;
    // The first mistake is reported at the end, unless help was asked for:
    // then the command line is only read for it.
    std::string error;
    auto fail = [&error](std::string message) {
        if (error.empty()) error = std::move(message);
    };
    auto isHelp = [](const std::string& arg) { return arg == "--help" || arg == "-h"; };
    bool haveFile = false;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (onlyFiles || arg == "-" || arg.empty() || arg[0] != '-') {
            if (haveFile) fail("more than one input file: \"" + arg + "\"");
            haveFile = true;
            o.input = arg;
            continue;
        }
        if (arg == "--") {
            onlyFiles = true;
            continue;
        }
        std::string name, value;
        bool hasValue = false;
        if (arg.rfind("--", 0) == 0) {
            const auto eq = arg.find('=');
            name = arg.substr(2, eq == std::string::npos ? std::string::npos : eq - 2);
            if (eq != std::string::npos) {
                value = arg.substr(eq + 1);
                hasValue = true;
            }
        } else if (arg == "-h") {
            name = "help";
        } else if (arg == "-q") {
            name = "quiet";
        } else if (arg.rfind("-o", 0) == 0 || arg.rfind("-j", 0) == 0) {
            name = arg[1] == 'o' ? "output" : "jobs";
            if (arg.size() > 2) {
                value = arg.substr(arg[2] == '=' ? 3 : 2);
                hasValue = true;
            }
        } else {
            fail("unknown option \"" + arg + "\"");
            continue;
        }

        // the option's value, from "--opt=value" or the next argument (never
        // a request for help); false when there is none
        auto takeValue = [&]() {
            if (hasValue) return true;
            if (i + 1 >= args.size() || isHelp(args[i + 1])) {
                fail("option \"" + arg + "\" needs a value");
                return false;
            }
            value = args[++i];
            hasValue = true;
            return true;
        };
        auto noValue = [&]() {
            if (hasValue) fail("option \"--" + name + "\" takes no value");
        };

        if (name == "help") {
            noValue();
            o.help = true;
        } else if (name == "output") {
            if (!takeValue()) continue;
            if (value.empty())
                fail("option \"" + arg + "\" needs a file name");
            else
                o.output = value;
        } else if (name == "ionic") {
            if (!takeValue()) continue;
            const std::string v = lower(value);
            if (v == "langelier")
                o.ionic = Options::Ionic::Langelier;
            else if (v == "russell")
                o.ionic = Options::Ionic::Russell;
            else if (v == "lewis")
                o.ionic = Options::Ionic::Lewis;
            else
                fail("--ionic: unknown equation \"" + value + "\" (langelier, russell or lewis)");
        } else if (name == "activity") {
            if (!takeValue()) continue;
            const std::string v = lower(value);
            if (v == "none")
                o.activity = Options::Activity::None;
            else if (v == "limiting")
                o.activity = Options::Activity::Limiting;
            else if (v == "extended")
                o.activity = Options::Activity::Extended;
            else if (v == "guntelberg")
                o.activity = Options::Activity::Guntelberg;
            else if (v == "davies")
                o.activity = Options::Activity::Davies;
            else
                fail("--activity: unknown equation \"" + value +
                     "\" (none, limiting, extended, guntelberg or davies)");
        } else if (name == "larson-skold") {
            noValue();
            o.larsonSkold = true;
        } else if (name == "quiet") {
            noValue();
            o.quiet = true;
        } else if (name == "ccpp") {
            noValue();
            o.ccpp = true;
        } else if (name == "crossings") {
            const std::string v = hasValue ? lower(value) : "neutral";
            if (v == "neutral")
                o.crossings = Options::Crossings::Neutral;
            else if (v == "table")
                o.crossings = Options::Crossings::Table;
            else
                fail("--crossings: unknown set \"" + value + "\" (neutral or table)");
        } else if (name == "jobs") {
            if (!takeValue()) continue;
            int n = 0;
            const auto r = std::from_chars(value.data(), value.data() + value.size(), n);
            if (r.ec != std::errc() || r.ptr != value.data() + value.size() || n < 1 ||
                n > kMaxJobs)
                fail("--jobs needs a number of workers from 1 to " + std::to_string(kMaxJobs) +
                     ", got \"" + value + "\"");
            else
                o.jobs = n;
        } else if (name == "sweep") {
            if (!takeValue()) continue;
            const auto c1 = value.find(',');
            const auto c2 = c1 == std::string::npos ? c1 : value.find(',', c1 + 1);
            if (c2 == std::string::npos || value.find(',', c2 + 1) != std::string::npos) {
                fail("--sweep needs START,INCREMENT,STEPS, got \"" + value + "\"");
                continue;
            }
            o.sweep = true;
            o.sweepStart = value.substr(0, c1);
            o.sweepIncrement = value.substr(c1 + 1, c2 - c1 - 1);
            o.sweepSteps = value.substr(c2 + 1);
        } else {
            fail("unknown option \"" + arg + "\"");
        }
    }
    if (o.help) return o;
    if (error.empty() && o.crossings != Options::Crossings::None && !o.sweep)
        fail("--crossings needs --sweep: the crossings are searched in the swept pH range");
    if (!error.empty()) throw UsageError(error);
    if (o.sweep) {
        OptionState state;
        double phstart = 0;
        applySweepOptions(o, state, phstart);
    }
    return o;
}

namespace {

const std::vector<Threshold>* crossingSet(const Options& o) {
    switch (o.crossings) {
    case Options::Crossings::None:
        break;
    case Options::Crossings::Neutral:
        return &crossingThresholds(CrossingSet::Neutral);
    case Options::Crossings::Table:
        return &crossingThresholds(CrossingSet::Table);
    }
    return nullptr;
}

} // namespace

std::string outputHeader(const Options& o) {
    std::string header = kOutputHeader;
    std::string added;
    if (o.ccpp) added += ",ccpp,ph_eq,ccpp_note";
    if (const auto* set = crossingSet(o))
        for (const Threshold& t : *set)
            added += "," + t.column;
    header.insert(header.size() - std::string_view(",message").size(), added);
    return header;
}

EquationFlags equationFlags(const Options& o) {
    EquationFlags f;
    switch (o.ionic) {
    case Options::Ionic::Langelier:
        f.bllang = true;
        break;
    case Options::Ionic::Russell:
        f.blrus = true;
        break;
    case Options::Ionic::Lewis:
        f.bllewis = true;
        break;
    }
    switch (o.activity) {
    case Options::Activity::None:
        break;
    case Options::Activity::Limiting:
        f.bldebye = true;
        break;
    case Options::Activity::Extended:
        f.bledebye = true;
        break;
    case Options::Activity::Guntelberg:
        f.blgun = true;
        break;
    case Options::Activity::Davies:
        f.bldavies = true;
        break;
    }
    return f;
}

// ---------------------------------------------------------------------------
// Byte streams

std::size_t FdSource::read(char* buf, std::size_t n) {
    for (;;) {
        const ssize_t r = ::read(fd_, buf, n);
        if (r >= 0) return static_cast<std::size_t>(r);
        if (errno == EINTR) continue;
        throw UsageError("cannot read " + name_ + ": " + std::strerror(errno));
    }
}

void FdSink::write(const char* data, std::size_t n) {
    while (n > 0) {
        const ssize_t r = ::write(fd_, data, n);
        if (r < 0) {
            if (errno == EINTR) continue;
            throw UsageError("cannot write " + name_ + ": " + std::strerror(errno));
        }
        data += r;
        n -= static_cast<std::size_t>(r);
    }
}

std::size_t StringSource::read(char* buf, std::size_t n) {
    const std::size_t k = std::min({n, piece_, text_.size() - pos_});
    std::memcpy(buf, text_.data() + pos_, k);
    pos_ += k;
    return k;
}

// ---------------------------------------------------------------------------
// CSV reading

bool CsvReader::fill() {
    if (eof_) return false;
    pos_ = 0;
    end_ = source_.read(buf_.data(), kBuffer);
    if (end_ == 0) eof_ = true;
    return end_ > 0;
}

void CsvReader::appendLong(const char* p, std::size_t n) {
    if (textSize_ + n > kMaxRecord) {
        tooLong_ = true;
        n = kMaxRecord - std::min(kMaxRecord, textSize_);
    }
    std::memcpy(text_.get() + textSize_, p, n);
    textSize_ += n;
}

bool CsvReader::next() {
    for (;;) {
        if (!readRecord()) return false;
        if (!blankOnly()) return true;
    }
}

// A field with no room left in ends_: more room up to the limit, past it
// only counted.
void CsvReader::moreFields() {
    if (ends_.size() < limit_) {
        const std::size_t kept = keptFieldCount();
        ends_.resize(std::min(limit_, std::max<std::size_t>(16, 2 * ends_.size())));
        endsAt_ = ends_.data() + kept;
        endsRoom_ = ends_.data() + ends_.size();
        *endsAt_++ = textSize_;
    } else {
        ++dropped_;
    }
}

// A line of blanks and tabs alone, which reads as one unquoted field.
bool CsvReader::blankOnly() const {
    if (fieldCount() != 1 || quoted_) return false;
    for (const char* p = text_.get(); p != text_.get() + textSize_; ++p)
        if (*p != ' ' && *p != '\t') return false;
    return true;
}

bool CsvReader::readRecord() {
    textSize_ = 0;
    if (ends_.size() > limit_) ends_.resize(limit_);
    endsAt_ = ends_.data();
    endsRoom_ = ends_.data() + ends_.size();
    dropped_ = 0;
    malformedField_ = 0;
    tooLong_ = false;
    unterminated_ = false;
    quoted_ = false;

    if (!started_) {
        started_ = true;
        // enough bytes to recognise a byte-order mark, however the source splits them
        while (end_ < 3 && !eof_) {
            const std::size_t n = source_.read(buf_.data() + end_, kBuffer - end_);
            if (n == 0) eof_ = true;
            end_ += n;
        }
        if (end_ >= 3 && std::memcmp(buf_.data(), "\xEF\xBB\xBF", 3) == 0) pos_ = 3;
    }

    // blank lines
    for (;;) {
        if (pos_ == end_ && !fill()) return false;
        const char c = buf_[pos_];
        if (skipLf_) {
            skipLf_ = false;
            if (c == '\n') {
                ++pos_;
                continue;
            }
        }
        if (c == '\n' || c == '\r') {
            ++pos_;
            ++nextLine_;
            skipLf_ = c == '\r';
            continue;
        }
        break;
    }
    line_ = nextLine_;

    enum class State { FieldStart, Unquoted, Quoted, QuoteInQuoted } state = State::FieldStart;
    bool crBefore = false; // the last character of a quoted field was a CR
    for (;;) {
        if (pos_ == end_ && !fill()) {
            if (state == State::Quoted) unterminated_ = true;
            endField();
            return true;
        }
        if (state == State::Unquoted || state == State::FieldStart) {
            if (state == State::FieldStart && buf_[pos_] == '"') {
                ++pos_;
                quoted_ = true;
                state = State::Quoted;
                continue;
            }
            // a run of ordinary characters at once
            const char* p = buf_.data() + pos_;
            const char* e = buf_.data() + end_;
            const char* q = p;
            while (q != e && *q != ',' && *q != '\n' && *q != '\r')
                ++q;
            append(p, static_cast<std::size_t>(q - p));
            pos_ = static_cast<std::size_t>(q - buf_.data());
            state = State::Unquoted;
            if (q == e) continue;
            ++pos_;
            endField();
            if (*q == ',') {
                state = State::FieldStart;
                continue;
            }
            ++nextLine_;
            skipLf_ = *q == '\r';
            return true;
        }
        const char c = buf_[pos_++];
        if (state == State::Quoted) {
            if (c == '"') {
                state = State::QuoteInQuoted;
                crBefore = false;
            } else {
                // a line end inside the field: CR, LF or CRLF, each one line
                if (c == '\r' || (c == '\n' && !crBefore)) ++nextLine_;
                crBefore = c == '\r';
                append(buf_.data() + pos_ - 1, 1);
            }
        } else { // after a quote inside a quoted field
            if (c == '"') {
                append(buf_.data() + pos_ - 1, 1);
                state = State::Quoted;
            } else {
                // the field ends here, or text follows its closing quote
                if (c != ',' && c != '\n' && c != '\r' && malformedField_ == 0)
                    malformedField_ = fieldCount() + 1;
                --pos_;
                state = State::Unquoted;
            }
        }
    }
}

// ---------------------------------------------------------------------------
// Samples

Calculator::Calculator(const Options& options) : options_(options) {
    applied_.index.bllr = options.larsonSkold;
    applied_.equations = equationFlags(options);
    if (options.sweep) {
        double phstart = 0;
        applySweepOptions(options, applied_, phstart);
        const double n = fmt::roundHalfEven(*fmt::strictNumber(options.sweepSteps), 0);
        touched_ = static_cast<int>(std::clamp(n, 1.0, 140.0));
    }
    column_.assign(kAnalysisColumns + 1, -1);
    if (options.ccpp) noExtras_ += ",,,";
    if (const auto* set = crossingSet(options)) noExtras_.append(set->size(), ',');
    engine_.setObserver(&collector_);
    // the sweep boxes read once for all rows
    in_.sweepChecked = options.sweep;
    if (options.sweep) {
        in_.initialText = options.sweepStart;
        in_.incrementText = options.sweepIncrement;
        in_.stepText = options.sweepSteps;
        in_.initialValue = fmt::strictNumber(options.sweepStart);
        in_.incrementValue = fmt::strictNumber(options.sweepIncrement);
        in_.stepValue = fmt::strictNumber(options.sweepSteps);
    }
}

void Calculator::setHeader(const CsvReader& header) {
    if (header.tooLong()) throw UsageError("the header row is too long");
    if (header.unterminated())
        throw UsageError("the header row has a quoted field that is not closed");
    if (header.malformed())
        throw UsageError("the header row is malformed: field " +
                         std::to_string(header.malformedField()) +
                         " has text after its closing quote");
    column_.assign(kAnalysisColumns + 1, -1);
    fieldCount_ = header.fieldCount();
    // The reader keeps kHeaderFields of the header's fields: with more fields
    // than there are names, an unknown or repeated one is among those.
    for (std::size_t i = 0; i < header.keptFieldCount(); ++i) {
        const std::string_view raw = trim(header.field(i));
        const std::string name = lower(raw);
        std::size_t c = 0;
        while (c < kAnalysisColumns && name != kFields[c].name)
            ++c;
        if (c == kAnalysisColumns && name != "sample")
            throw UsageError("unknown column \"" + std::string(raw) + "\" in the header");
        if (column_[c] >= 0)
            throw UsageError("column \"" + std::string(raw) + "\" appears twice in the header");
        column_[c] = static_cast<int>(i);
    }
    if (header.keptFieldCount() < fieldCount_)
        throw UsageError("the header row has more columns than there are names");
}

void Calculator::freshProgram() {
    AnalysisRecord& r = engine_.rec;
    r = AnalysisRecord{};
    SweepArrays& sw = engine_.sw;
    // a row writes elements 0 to touched_ at most and reads touched_ + 1
    const int last = std::min(touched_ + 1, PointArray::kSize - 1);
    // (the first four elements at least: a fixed size clears them in a store
    // or two instead of a call for each array; unrolled, each array's place
    // is a constant)
    if (last < 4) {
#pragma GCC unroll 30
        for (auto a : kArrays)
            std::memset(static_cast<void*>(&(sw.*a)), 0, 4 * sizeof(double));
    } else {
        for (auto a : kArrays)
            std::memset(static_cast<void*>(&(sw.*a)), 0, sizeof(double) * (last + 1));
    }
    sw.ct = sw.qa = sw.clmeq = sw.so4meq = 0;
    sw.phstart = options_.sweep ? applied_.sweep.entry[0] : 0;
    sw.phincrement = sw.phsteps = 0;
    sw.ipoint = 0;
    flags_ = applied_.equations;
    collector_.messages.clear();
}

void OutputBuffer::grow(std::size_t need) {
    const std::size_t capacity = std::max(need, 2 * capacity_ + 4096);
    auto bigger = std::make_unique<char[]>(capacity);
    if (size_ != 0) std::memcpy(bigger.get(), data_.get(), size_);
    data_ = std::move(bigger);
    capacity_ = capacity;
}

void Calculator::pointRows(std::string_view sample, int last, const CalcOutcome& outcome,
                           OutputBuffer& out) {
    const SweepArrays& s = engine_.sw;
    const AnalysisRecord& r = engine_.rec;
    // ionic to ct, then the ion balance's sums, written only when it ran
    const double same[] = {r.ionic, r.lanm, r.land, r.lant, s.ct, r.sumca, r.suman, r.diff};
    const std::size_t sameCount = flags_.bllewis ? std::size(same) : std::size(same) - 3;
    const std::string_view end = flags_.bllewis ? ",\n" : ",,,,\n";
    const std::string_view gap = end.substr(0, end.size() - 2); // the ion balance left empty
    const bool extras = !noExtras_.empty();
    // the columns of a point: ph, li to phs, ch, oh to co3
    auto point = [&](int p, OutputBuffer& row) {
        phTexts_.append(row, s.ph(p));
        const double indices[] = {s.li(p), s.ri(p), s.por(p), s.ai(p), s.dfi(p),
                                  s.lr(p), s.me(p), s.sl(p),  s.phs(p)};
        row.appendNumbers(indices, std::size(indices));
        hydrogenTexts_.append(row, s.ch(p));
        const double carbonate[] = {s.oh(p),    s.a0(p),   s.a1(p), s.a2(p),
                                    s.h2co3(p), s.hco3(p), s.co3(p)};
        row.appendNumbers(carbonate, std::size(carbonate));
    };
    // the end of the measured point's row: the added columns hold its values
    auto measuredEnd = [&](OutputBuffer& row) {
        if (!extras) return row.append(end);
        row.append(gap);
        extraColumns(outcome, row);
        row.append(",\n");
    };
    if (last == 0) { // the measured point alone: nothing repeats
        appendField(out, sample);
        out.append(",0");
        point(0, out);
        out.appendNumbers(same, sameCount);
        measuredEnd(out);
        return;
    }
    head_.clear();
    appendField(head_, sample);
    head_.append(',');
    tail_.clear();
    tail_.appendNumbers(same, sameCount);
    const std::size_t numbersEnd = tail_.size();
    if (extras) {
        tail_.append(gap);
        tail_.append(noExtras_);
        tail_.append(",\n");
    } else {
        tail_.append(end);
    }
    for (int p = 0; p <= last; ++p) {
        out.append(head_.view());
        char buf[16];
        out.append(std::string_view(
            buf, static_cast<std::size_t>(std::to_chars(buf, buf + sizeof buf, p).ptr - buf)));
        point(p, out);
        if (p == 0 && extras) {
            out.append(tail_.view().substr(0, numbersEnd));
            measuredEnd(out);
        } else {
            out.append(tail_.view());
        }
    }
}

void Calculator::extraColumns(const CalcOutcome& outcome, OutputBuffer& out) const {
    auto number = [&out](const std::optional<double>& v) {
        out.append(',');
        if (v) out.appendNumber(*v);
    };
    if (options_.ccpp) {
        const CcppResult c = computeCcpp(engine_);
        number(c.ccpp);
        number(c.phEq);
        out.append(',');
        appendField(out, c.note);
    }
    if (const auto* set = crossingSet(options_)) {
        const CrossingSet which = options_.crossings == Options::Crossings::Table
                                      ? CrossingSet::Table
                                      : CrossingSet::Neutral;
        const std::vector<std::optional<double>> ph = findCrossings(engine_, outcome, which);
        for (std::size_t i = 0; i < set->size(); ++i)
            number(i < ph.size() ? ph[i] : std::nullopt);
    }
}

void Calculator::messageRow(std::string_view sample, const std::string& point,
                            std::string_view text, bool balance, OutputBuffer& out) const {
    appendField(out, sample);
    out.append(',');
    out.append(point);
    out.append(23, ',');
    if (balance) {
        const AnalysisRecord& r = engine_.rec;
        for (double v : {r.sumca, r.suman, r.diff}) {
            out.append(',');
            out.appendNumber(v);
        }
    } else {
        out.append(",,,");
    }
    out.append(noExtras_);
    out.append(',');
    appendField(out, text);
    out.append('\n');
}

// A record that cannot be read as a sample: its message row. Kept out of
// processRecord, whose every-row path stays small enough to be inlined well.
void Calculator::badRecordRow(const RecordView& record, std::string_view sample,
                              OutputBuffer& out) const {
    std::string text = "line " + std::to_string(record.line) + ": ";
    if (record.tooLong)
        text += "the row is longer than " + std::to_string(CsvReader::kMaxRecord) + " characters";
    else if (record.unterminated)
        text += "a quoted field is not closed";
    else if (record.malformedField != 0)
        text += "the row is malformed: field " + std::to_string(record.malformedField) +
                " has text after its closing quote";
    else
        text += std::to_string(record.count) + " fields where the header has " +
                std::to_string(fieldCount_);
    messageRow(sample, "", text, false, out);
}

bool Calculator::rejectedCell(BoxCheck check, std::string_view sample, OutputBuffer& out) const {
    messageRow(sample, "", check == BoxCheck::PhOutOfRange ? kPhRangeMessage : kNotANumberMessage,
               false, out);
    return true;
}

bool Calculator::processRecord(const RecordView& record, OutputBuffer& out) {
    const int sampleField = column_[kSampleColumn];
    const std::string_view sample =
        sampleField >= 0 && static_cast<std::size_t>(sampleField) < record.kept
            ? record.field(static_cast<std::size_t>(sampleField))
            : std::string_view();

    if (record.tooLong || record.unterminated || record.malformedField != 0 ||
        record.count != fieldCount_) {
        badRecordRow(record, sample, out);
        return true;
    }

    // every cell checked and read in one pass, as its box checks it, in the
    // column order (the first bad one reports)
#pragma GCC unroll 20
    for (std::size_t c = 0; c < kAnalysisColumns; ++c) {
        BoxValue& box = values_.of[c];
        box = BoxValue{};
        if (column_[c] < 0) continue;
        const BoxCheck check = readBoxText(record.field(static_cast<std::size_t>(column_[c])),
                                           c == kPhColumn, box.value);
        if (check == BoxCheck::Number)
            box.empty = false;
        else if (check != BoxCheck::Empty)
            return rejectedCell(check, sample, out);
    }
    // the window inputs of the row: the pH as read, the carbonate pair's boxes
    // (the pH text itself is not needed: an empty cell leaves it empty, a
    // number is given as read)
    in_.phValue.reset();
    if (!values_[Field::ph].empty) in_.phValue = values_[Field::ph].value;
    in_.hco3Empty = values_[Field::hco3].empty;
    in_.co3Empty = values_[Field::co3].empty;

    freshProgram();
    try {
        const ReadDataResult r = readAnalysis(engine_, values_, flags_, applied_.index.bllr, in_);
        if (r.outcome == ReadDataResult::Outcome::Message) {
            messageRow(sample, "", r.messageText, false, out);
            return true;
        }
        if (r.outcome == ReadDataResult::Outcome::Rejected) {
            messageRow(sample, "", "water analysis is unacceptable", flags_.bllewis, out);
            return true;
        }
    } catch (const EngineError& e) {
        messageRow(sample, "", runtimeText(e), false, out);
        return true;
    }

    CalcOutcome outcome;
    try {
        outcome = engine_.calculate(flags_, in_);
    } catch (const EngineError& e) {
        messageRow(sample, "0", runtimeText(e), false, out);
        return true;
    }

    bool message = false;
    if (outcome.computed) {
        const int last = outcome.sweepError ? outcome.sweepErrorPoint - 1
                                            : std::min(outcome.sweepPoints, PointArray::kSize - 1);
        pointRows(sample, std::max(last, 0), outcome, out);
        if (outcome.sweepError) {
            messageRow(sample, std::to_string(outcome.sweepErrorPoint),
                       runtimeText(*outcome.sweepError), false, out);
            message = true;
        }
    }
    for (const std::string& m : collector_.messages) {
        messageRow(sample, "", m, false, out);
        message = true;
    }
    return message;
}

// ---------------------------------------------------------------------------
// Runs

int defaultJobs() {
    cpu_set_t set;
    CPU_ZERO(&set);
    const int cores = ::sched_getaffinity(0, sizeof set, &set) == 0
                          ? CPU_COUNT(&set)
                          : static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(cores, 1, kMaxJobs);
}

namespace {

constexpr std::size_t kFlushAt = 1 << 16;

// The bytes a source has given.
class CountingSource : public ByteSource {
public:
    explicit CountingSource(ByteSource& source) : source_(source) {}
    std::size_t read(char* buf, std::size_t n) override {
        const std::size_t k = source_.read(buf, n);
        bytes += k;
        return k;
    }
    std::uint64_t bytes = 0;

private:
    ByteSource& source_;
};

// Records handed to a worker together, with the output they make.
struct Chunk {
    struct Record {
        std::size_t textBegin, endsBegin;
        RecordView view; // without text and ends: they move as the chunk grows
    };
    std::string text;              // the kept fields' text of every record
    std::vector<std::size_t> ends; // field ends, each from the start of its record
    std::vector<Record> records;
    std::uint64_t inputBytes = 0; // of the input read when the chunk was full
    OutputBuffer out;
    bool message = false;
    bool done = false; // computed: its output can be written
    std::exception_ptr error;

    void clear() {
        text.clear();
        ends.clear();
        records.clear();
        out.clear();
        message = false;
        error = nullptr;
    }
    void add(const RecordView& r) {
        Record rec{text.size(), ends.size(), r};
        rec.view.text = nullptr;
        rec.view.ends = nullptr;
        text.append(r.text, r.textSize());
        ends.insert(ends.end(), r.ends, r.ends + r.kept);
        records.push_back(rec);
    }
    RecordView view(const Record& rec) const {
        RecordView v = rec.view;
        v.text = text.data() + rec.textBegin;
        v.ends = ends.data() + rec.endsBegin;
        return v;
    }
    void compute(Calculator& calc) {
        try {
            for (const Record& rec : records)
                if (calc.processRecord(view(rec), out)) message = true;
        } catch (...) {
            error = std::current_exception();
        }
    }
};

// The workers: each takes the next chunk that is full, computes it with a
// calculator of its own and marks it done. The chunks live in a ring that
// the reading thread fills and empties in input order.
class Workers {
public:
    Workers(const Calculator& header, const Options& options, std::vector<Chunk>& ring, int count)
        : ring_(ring) {
        calculators_.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            calculators_.push_back(std::make_unique<Calculator>(options));
            calculators_.back()->adoptColumns(header);
        }
        threads_.reserve(static_cast<std::size_t>(count));
        try {
            for (int i = 0; i < count; ++i)
                threads_.emplace_back(
                    [this, i] { work(*calculators_[static_cast<std::size_t>(i)]); });
        } catch (...) {
            stop();
            throw;
        }
    }
    ~Workers() { stop(); }

    // Chunk number `filled()` is full: hands it to the workers.
    void submit() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            ring_[filled_ % ring_.size()].done = false;
            ++filled_;
        }
        work_.notify_one();
    }
    std::uint64_t filled() const { return filled_; } // only the reading thread changes it
    // Waits until chunk number n is computed.
    void waitFor(std::uint64_t n) {
        std::unique_lock<std::mutex> lock(mutex_);
        Chunk& c = ring_[n % ring_.size()];
        done_.wait(lock, [&c] { return c.done; });
    }
    bool isDone(std::uint64_t n) {
        std::lock_guard<std::mutex> lock(mutex_);
        return ring_[n % ring_.size()].done;
    }

private:
    void work(Calculator& calc) {
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            work_.wait(lock, [this] { return stopping_ || taken_ < filled_; });
            if (stopping_) return;
            Chunk& c = ring_[taken_++ % ring_.size()];
            lock.unlock();
            c.compute(calc);
            lock.lock();
            c.done = true;
            done_.notify_all();
        }
    }
    void stop() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            stopping_ = true;
        }
        work_.notify_all();
        for (std::thread& t : threads_)
            t.join();
        threads_.clear();
    }

    std::vector<Chunk>& ring_;
    std::vector<std::unique_ptr<Calculator>> calculators_;
    std::vector<std::thread> threads_;
    std::mutex mutex_;
    std::condition_variable work_, done_;
    std::uint64_t filled_ = 0, taken_ = 0;
    bool stopping_ = false;
};

// Every record in the reading thread, one after the other.
int runOneWorker(Calculator& calc, CsvReader& reader, const CountingSource& counted,
                 OutputBuffer& out, ByteSink& sink, ProgressSink* progress) {
    int status = 0;
    std::uint64_t rows = 0;
    while (reader.next()) {
        if (calc.processRecord(reader, out)) status = 1;
        ++rows;
        if (out.size() >= kFlushAt) {
            sink.write(out.view().data(), out.size());
            out.clear();
            if (progress) progress->advance(rows, counted.bytes);
        }
    }
    sink.write(out.view().data(), out.size());
    if (progress) progress->advance(rows, counted.bytes);
    return status;
}

// The records in chunks computed by `jobs` workers, the output written in
// input order by the reading thread. At most a few chunks per worker are in
// flight, each of bounded size, so memory stays flat.
int runWorkers(const Calculator& calc, const Options& options, int jobs, CsvReader& reader,
               const CountingSource& counted, OutputBuffer& first, ByteSink& sink,
               ProgressSink* progress) {
    // about 2,000 output rows or a megabyte of input a chunk
    const std::size_t rowsPerSample = static_cast<std::size_t>(calc.rowsPerSample());
    const std::size_t perChunk = std::max<std::size_t>(1, 2048 / rowsPerSample);
    constexpr std::size_t kChunkText = 1 << 20;
    std::vector<Chunk> ring(2 * static_cast<std::size_t>(jobs) + 2);
    Workers workers(calc, options, ring, jobs);

    int status = 0;
    std::uint64_t written = 0, rows = 0;
    sink.write(first.view().data(), first.size()); // the header
    auto writeNext = [&] {
        workers.waitFor(written);
        Chunk& c = ring[written % ring.size()];
        if (c.error) std::rethrow_exception(c.error);
        sink.write(c.out.view().data(), c.out.size());
        if (c.message) status = 1;
        rows += c.records.size();
        ++written;
        if (progress) progress->advance(rows, c.inputBytes);
    };
    for (bool more = true; more;) {
        if (workers.filled() - written == ring.size()) writeNext();
        Chunk& c = ring[workers.filled() % ring.size()];
        c.clear();
        while (c.records.size() < perChunk && c.text.size() < kChunkText) {
            if (!reader.next()) {
                more = false;
                break;
            }
            c.add(reader.view());
        }
        c.inputBytes = counted.bytes;
        if (!c.records.empty()) workers.submit();
        // what is done already goes out at once
        while (written < workers.filled() && workers.isDone(written))
            writeNext();
    }
    while (written < workers.filled())
        writeNext();
    return status;
}

} // namespace

int runBatch(const Options& options, ByteSource& in, ByteSink& sink, ProgressSink* progress) {
    Calculator calc(options);
    CountingSource counted(in);
    CsvReader reader(counted);
    reader.keepFields(kHeaderFields);
    if (!reader.next()) throw UsageError("the input has no header row");
    calc.setHeader(reader);
    // a row with more fields than the header is only counted past them
    reader.keepFields(reader.fieldCount());

    OutputBuffer out;
    out.append(outputHeader(options));
    out.append('\n');
    const int jobs = options.jobs > 0 ? options.jobs : defaultJobs();
    if (jobs == 1) return runOneWorker(calc, reader, counted, out, sink, progress);
    return runWorkers(calc, options, jobs, reader, counted, out, sink, progress);
}

// ---------------------------------------------------------------------------
// Progress on a terminal

TerminalProgress::TerminalProgress(int fd, std::uint64_t totalBytes, Clock clock)
    : fd_(fd), terminal_(::isatty(fd) == 1), total_(totalBytes), clock_(std::move(clock)) {
    if (!clock_)
        clock_ = [] {
            timespec t;
            ::clock_gettime(CLOCK_MONOTONIC, &t);
            return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
        };
    start_ = clock_();
}

void TerminalProgress::advance(std::uint64_t rows, std::uint64_t inputBytes) {
    if (!terminal_) return;
    const double now = clock_();
    const double elapsed = now - start_;
    // after the first second, a few times a second
    if (elapsed < 1.0 || (last_ >= 0 && now - last_ < 0.25)) return;
    last_ = now;
    char line[160];
    int n =
        std::snprintf(line, sizeof line, "\rvelmora-calc: %llu rows, %.0f rows/s",
                      static_cast<unsigned long long>(rows), static_cast<double>(rows) / elapsed);
    if (total_ > 0)
        n += std::snprintf(line + n, sizeof line - static_cast<std::size_t>(n), ", %.0f%%",
                           100.0 * static_cast<double>(std::min(inputBytes, total_)) /
                               static_cast<double>(total_));
    n += std::snprintf(line + n, sizeof line - static_cast<std::size_t>(n), "\033[K");
    shown_ = true;
    writeAllTo(fd_, std::string_view(line, static_cast<std::size_t>(n)));
}

void TerminalProgress::finish() {
    if (!shown_) return;
    shown_ = false;
    writeAllTo(fd_, "\r\033[K");
}

namespace {

void writeAll(int fd, std::string_view text) {
    writeAllTo(fd, text);
}

// A file descriptor closed when it goes out of scope.
struct Fd {
    int fd = -1;
    ~Fd() {
        if (fd > 2) ::close(fd);
    }
};

} // namespace

int commandMain(const std::vector<std::string>& args) {
    std::string tempName;
    Fd input, output;
    try {
        Options o;
        try {
            o = parseCommandLine(args);
        } catch (const UsageError& e) {
            throw UsageError(std::string(e.what()) +
                             "\nTry 'velmora-calc --help' for more information.");
        }
        if (o.help) {
            writeAll(1, helpText());
            return 0;
        }

        std::string inputName = "standard input";
        input.fd = 0;
        if (o.input.empty()) throw UsageError("cannot open the input file: its name is empty");
        if (o.input != "-") {
            inputName = o.input;
            input.fd = ::open(o.input.c_str(), O_RDONLY | O_CLOEXEC);
            if (input.fd < 0)
                throw UsageError("cannot open " + o.input + ": " + std::strerror(errno));
        }

        std::string outputName = "standard output";
        output.fd = 1;
        bool toFile = !o.output.empty() && o.output != "-";
        std::string target = o.output;
        int keepMode = -1; // the mode of the file replaced, if there is one
        if (toFile) {
            outputName = o.output;
            struct stat st;
            if (::stat(o.output.c_str(), &st) == 0) {
                if (S_ISDIR(st.st_mode))
                    throw UsageError("cannot write " + o.output + ": it is a directory");
                if (!S_ISREG(st.st_mode)) {
                    // a device or a pipe is written as it is: nothing to replace
                    toFile = false;
                    output.fd = ::open(o.output.c_str(), O_WRONLY | O_CLOEXEC);
                    if (output.fd < 0)
                        throw UsageError("cannot write " + o.output + ": " + std::strerror(errno));
                } else {
                    // a file the user may not write is not replaced behind
                    // his back; the replacement keeps the file's mode
                    if (::faccessat(AT_FDCWD, o.output.c_str(), W_OK, AT_EACCESS) != 0)
                        throw UsageError("cannot write " + o.output + ": " + std::strerror(errno));
                    if ((st.st_mode & 0222) == 0)
                        throw UsageError("cannot write " + o.output + ": the file is read-only");
                    keepMode = st.st_mode & 07777;
                    if (char* real = ::realpath(o.output.c_str(), nullptr)) {
                        // through a symbolic link the file it points to is replaced
                        target = real;
                        std::free(real);
                    }
                }
            }
        }
        if (toFile) {
            output.fd = -1;
            // next to the target, so that the rename stays on one file system
            for (int attempt = 0;; ++attempt) {
                tempName =
                    target + ".tmp" + std::to_string(::getpid()) + "-" + std::to_string(attempt);
                output.fd = ::open(tempName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
                if (output.fd >= 0) break;
                const int err = errno;
                tempName.clear();
                if (err != EEXIST || attempt > 100)
                    throw UsageError("cannot write " + o.output + ": " + std::strerror(err));
            }
            if (keepMode >= 0 && ::fchmod(output.fd, static_cast<mode_t>(keepMode)) != 0)
                throw UsageError("cannot write " + o.output + ": " + std::strerror(errno));
        }

        FdSource source(input.fd, inputName);
        FdSink sink(output.fd, outputName);
        std::unique_ptr<TerminalProgress> progress;
        if (!o.quiet) {
            struct stat in;
            const bool sized = ::fstat(input.fd, &in) == 0 && S_ISREG(in.st_mode);
            progress = std::make_unique<TerminalProgress>(
                2, sized ? static_cast<std::uint64_t>(in.st_size) : 0);
        }
        const int status = runBatch(o, source, sink, progress.get());
        progress.reset();

        if (toFile) {
            const int fd = output.fd;
            output.fd = -1;
            if (::close(fd) != 0)
                throw UsageError("cannot write " + o.output + ": " + std::strerror(errno));
            if (::rename(tempName.c_str(), target.c_str()) != 0)
                throw UsageError("cannot write " + o.output + ": " + std::strerror(errno));
            tempName.clear();
        }
        return status;
    } catch (const UsageError& e) {
        writeAll(2, std::string("velmora-calc: ") + e.what() + "\n");
    } catch (const std::bad_alloc&) {
        writeAll(2, "velmora-calc: out of memory\n");
    } catch (const std::exception& e) {
        writeAll(2, std::string("velmora-calc: ") + e.what() + "\n");
    }
    if (!tempName.empty()) ::unlink(tempName.c_str());
    return 2;
}

} // namespace velmora::batch
