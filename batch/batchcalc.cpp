#include "batch/batchcalc.h"

#include "engine/numformat.h"
#include "options/sweepsettings.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <new>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>

namespace velmora::batch {

namespace {

// The analysis columns in the order their cells are checked, with the box
// each one stands for; then the sample identifier.
struct Column {
    const char* name;
    std::string AnalysisTexts::*box;
};
constexpr Column kColumns[] = {
    {"tds", &AnalysisTexts::tds}, {"ec", &AnalysisTexts::ec},     {"t", &AnalysisTexts::t},
    {"ph", &AnalysisTexts::ph},   {"alk", &AnalysisTexts::alk},   {"ca", &AnalysisTexts::ca},
    {"mg", &AnalysisTexts::mg},   {"k", &AnalysisTexts::k},       {"na", &AnalysisTexts::na},
    {"zn", &AnalysisTexts::zn},   {"mn", &AnalysisTexts::mn},     {"fe", &AnalysisTexts::fe},
    {"al", &AnalysisTexts::al},   {"hco3", &AnalysisTexts::hco3}, {"co3", &AnalysisTexts::co3},
    {"no2", &AnalysisTexts::no2}, {"no3", &AnalysisTexts::no3},   {"f", &AnalysisTexts::f},
    {"cl", &AnalysisTexts::cl},   {"so4", &AnalysisTexts::so4},
};
constexpr std::size_t kAnalysisColumns = std::size(kColumns);
constexpr std::size_t kSampleColumn = kAnalysisColumns; // index of "sample" in Calculator::column_
constexpr std::size_t kPhColumn = 3;
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
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
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
  --activity EQUATION activity coefficient equation: none (default: the
                      Debye-Huckel limiting law), limiting, extended,
                      guntelberg or davies
  --larson-skold      the Larson-Skold index is chosen: chloride and sulphate
                      are read with every ionic strength equation
  --sweep START,INCREMENT,STEPS
                      a pH sweep after the measured point: START 1 to 14,
                      INCREMENT 0.1 to 2 (or 0 or less), STEPS 1 to 140, and
                      no sweep point above pH 14; a rejected sweep is a usage
                      error with the Options dialog's message
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
        } else if (arg.rfind("-o", 0) == 0) {
            name = "output";
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
    if (!error.empty()) throw UsageError(error);
    if (o.sweep) {
        OptionState state;
        double phstart = 0;
        applySweepOptions(o, state, phstart);
    }
    return o;
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
    end_ = source_.read(buf_.data(), buf_.size());
    if (end_ == 0) eof_ = true;
    return end_ > 0;
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
        *endsAt_++ = text_.size();
    } else {
        ++dropped_;
    }
}

// A line of blanks and tabs alone, which reads as one unquoted field.
bool CsvReader::blankOnly() const {
    if (fieldCount() != 1 || quoted_) return false;
    for (char c : text_)
        if (c != ' ' && c != '\t') return false;
    return true;
}

bool CsvReader::readRecord() {
    text_.clear();
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
            const std::size_t n = source_.read(buf_.data() + end_, buf_.size() - end_);
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

    auto append = [this](const char* p, std::size_t n) {
        if (text_.size() + n > kMaxRecord) {
            tooLong_ = true;
            n = kMaxRecord - std::min(kMaxRecord, text_.size());
        }
        text_.append(p, n);
    };

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
                append(&c, 1);
            }
        } else { // after a quote inside a quoted field
            if (c == '"') {
                append(&c, 1);
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
    engine_.setObserver(&collector_);
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
        while (c < kAnalysisColumns && name != kColumns[c].name)
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
    // or two instead of a call for each array)
    for (auto a : kArrays) {
        void* elements = static_cast<void*>(&(sw.*a));
        std::memset(elements, 0, 4 * sizeof(double));
        if (last >= 4) std::memset(elements, 0, sizeof(double) * (last + 1));
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

void Calculator::pointRow(std::string_view sample, int point, OutputBuffer& out) const {
    const SweepArrays& s = engine_.sw;
    const AnalysisRecord& r = engine_.rec;
    appendField(out, sample);
    out.append(',');
    char buf[16];
    out.append(std::string_view(
        buf, static_cast<std::size_t>(std::to_chars(buf, buf + sizeof buf, point).ptr - buf)));
    // the ion balance's sums last, written only when it ran
    const double values[] = {
        s.ph(point), s.li(point), s.ri(point), s.por(point),   s.ai(point),   s.dfi(point),
        s.lr(point), s.me(point), s.sl(point), s.phs(point),   s.ch(point),   s.oh(point),
        s.a0(point), s.a1(point), s.a2(point), s.h2co3(point), s.hco3(point), s.co3(point),
        r.ionic,     r.lanm,      r.land,      r.lant,         s.ct,          r.sumca,
        r.suman,     r.diff};
    if (flags_.bllewis) {
        out.appendNumbers(values, std::size(values));
        out.append(",\n");
    } else {
        out.appendNumbers(values, std::size(values) - 3);
        out.append(",,,,\n");
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
    out.append(',');
    appendField(out, text);
    out.append('\n');
}

// A record that cannot be read as a sample: its message row. Kept out of
// processRecord, whose every-row path stays small enough to be inlined well.
void Calculator::badRecordRow(const CsvReader& record, std::string_view sample,
                              OutputBuffer& out) const {
    std::string text = "line " + std::to_string(record.line()) + ": ";
    if (record.tooLong())
        text += "the row is longer than " + std::to_string(CsvReader::kMaxRecord) + " characters";
    else if (record.unterminated())
        text += "a quoted field is not closed";
    else if (record.malformed())
        text += "the row is malformed: field " + std::to_string(record.malformedField()) +
                " has text after its closing quote";
    else
        text += std::to_string(record.fieldCount()) + " fields where the header has " +
                std::to_string(fieldCount_);
    messageRow(sample, "", text, false, out);
}

bool Calculator::processRecord(const CsvReader& record, OutputBuffer& out) {
    const int sampleField = column_[kSampleColumn];
    const std::string_view sample =
        sampleField >= 0 && static_cast<std::size_t>(sampleField) < record.keptFieldCount()
            ? record.field(static_cast<std::size_t>(sampleField))
            : std::string_view();

    if (record.tooLong() || record.unterminated() || record.malformed() ||
        record.fieldCount() != fieldCount_) {
        badRecordRow(record, sample, out);
        return true;
    }

    // the boxes, each as typed, each checked as its box checks it (the copies
    // unrolled: each box's member is then known where it is written)
#pragma GCC unroll 20
    for (std::size_t c = 0; c < kAnalysisColumns; ++c) {
        std::string& box = texts_.*kColumns[c].box;
        if (column_[c] >= 0) {
            box.assign(record.field(static_cast<std::size_t>(column_[c])));
        } else {
            box.clear();
        }
    }
    for (std::size_t c = 0; c < kAnalysisColumns; ++c) {
        if (auto m = checkBoxText(texts_.*kColumns[c].box, c == kPhColumn)) {
            messageRow(sample, "", *m, false, out);
            return true;
        }
    }

    freshProgram();
    try {
        const ReadDataResult r = readAnalysis(engine_, texts_, flags_, applied_.index.bllr);
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

    WindowInputs in = windowInputs(texts_);
    in.sweepChecked = options_.sweep;
    if (options_.sweep) {
        in.initialText = options_.sweepStart;
        in.incrementText = options_.sweepIncrement;
        in.stepText = options_.sweepSteps;
    }
    CalcOutcome outcome;
    try {
        outcome = engine_.calculate(flags_, in);
    } catch (const EngineError& e) {
        messageRow(sample, "0", runtimeText(e), false, out);
        return true;
    }

    bool message = false;
    if (outcome.computed) {
        pointRow(sample, 0, out);
        const int last = outcome.sweepError ? outcome.sweepErrorPoint - 1
                                            : std::min(outcome.sweepPoints, PointArray::kSize - 1);
        for (int p = 1; p <= last; ++p)
            pointRow(sample, p, out);
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

int runBatch(const Options& options, ByteSource& in, ByteSink& sink) {
    Calculator calc(options);
    CsvReader reader(in);
    reader.keepFields(kHeaderFields);
    if (!reader.next()) throw UsageError("the input has no header row");
    calc.setHeader(reader);
    // a row with more fields than the header is only counted past them
    reader.keepFields(reader.fieldCount());

    constexpr std::size_t kFlushAt = 1 << 16;
    OutputBuffer out;
    out.append(kOutputHeader);
    out.append('\n');
    int status = 0;
    while (reader.next()) {
        if (calc.processRecord(reader, out)) status = 1;
        if (out.size() >= kFlushAt) {
            sink.write(out.view().data(), out.size());
            out.clear();
        }
    }
    sink.write(out.view().data(), out.size());
    return status;
}

namespace {

void writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t r = ::write(fd, text.data(), text.size());
        if (r < 0) {
            if (errno == EINTR) continue;
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(r));
    }
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
        const int status = runBatch(o, source, sink);

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
