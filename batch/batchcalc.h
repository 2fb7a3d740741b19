// The batch calculator velmora-calc: many samples from a CSV file through the
// same engine, Read Data and sweep settings as the desktop program, one
// output row per computed point and one per message.
#pragma once

#include "engine/engine.h"
#include "intake/readdata.h"
#include "numtext/numtext.h"
#include "options/optionstate.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::batch {

// A bad command line, a bad header or an input/output failure: exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Options {
    enum class Ionic { Langelier, Russell, Lewis };
    enum class Activity { None, Limiting, Extended, Guntelberg, Davies };
    Ionic ionic = Ionic::Langelier;
    Activity activity = Activity::None;
    bool larsonSkold = false;
    bool sweep = false;
    std::string sweepStart, sweepIncrement, sweepSteps; // the three box texts
    std::string input = "-";                            // "-": standard input
    std::string output;                                 // empty: standard output
    int jobs = 0;                                       // workers; 0: one per core
    bool quiet = false;                                 // no progress report
    bool help = false;
    bool ccpp = false; // the ccpp, ph_eq and ccpp_note columns
    enum class Crossings { None, Neutral, Table };
    Crossings crossings = Crossings::None; // the pH columns of the index crossings
};

// The number of cores the process may run on (at least 1): the default of
// --jobs.
int defaultJobs();

// The command line without the program name. Checks the sweep as the Options
// dialog checks its boxes and its Apply; throws UsageError with the message
// of the first mistake. With --help (or -h) anywhere before "--" nothing else
// is checked: the result only asks for the help text.
Options parseCommandLine(const std::vector<std::string>& args);

// The text of --help.
const char* helpText();

// The equation flags the options stand for, before the engine applies its defaults.
EquationFlags equationFlags(const Options& options);

// The header of the output without the columns of --ccpp and --crossings.
inline constexpr const char* kOutputHeader =
    "sample,point,ph,li,ri,por,ai,dfi,lr,me,sl,phs,ch,oh,a0,a1,a2,h2co3,hco3,co3,ionic,lanm,"
    "land,lant,ct,sumca,suman,diff,message";

// The header for these options: the columns the options add stand just
// before message.
std::string outputHeader(const Options& options);

// ---------------------------------------------------------------------------
// Byte streams, so that the batch runs on files, pipes and strings alike.

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Up to n bytes into buf; 0 at the end. Throws UsageError on a read failure.
    virtual std::size_t read(char* buf, std::size_t n) = 0;
};

class ByteSink {
public:
    virtual ~ByteSink() = default;
    // Throws UsageError on a write failure.
    virtual void write(const char* data, std::size_t n) = 0;
};

class FdSource : public ByteSource {
public:
    FdSource(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}
    std::size_t read(char* buf, std::size_t n) override;

private:
    int fd_;
    std::string name_;
};

class FdSink : public ByteSink {
public:
    FdSink(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}
    void write(const char* data, std::size_t n) override;

private:
    int fd_;
    std::string name_;
};

// A string read in pieces of at most `piece` bytes (small pieces test the
// reader across buffer boundaries).
class StringSource : public ByteSource {
public:
    explicit StringSource(std::string text, std::size_t piece = 1 << 16)
        : text_(std::move(text)), piece_(piece == 0 ? 1 : piece) {}
    std::size_t read(char* buf, std::size_t n) override;

private:
    std::string text_;
    std::size_t pos_ = 0, piece_;
};

class StringSink : public ByteSink {
public:
    void write(const char* data, std::size_t n) override { text.append(data, n); }
    std::string text;
};

// ---------------------------------------------------------------------------
// One record as read: the text of its kept fields back to back and where
// each ends, and what the reader found wrong with it.
struct RecordView {
    const char* text = nullptr;
    const std::size_t* ends = nullptr; // end of each kept field, counted from text
    std::size_t kept = 0;              // fields kept
    std::size_t count = 0;             // fields in all
    std::size_t malformedField = 0;    // field with text after its closing quote, from 1
    long line = 0;
    bool tooLong = false, unterminated = false;

    std::string_view field(std::size_t i) const {
        const std::size_t begin = i == 0 ? 0 : ends[i - 1];
        return {text + begin, ends[i] - begin};
    }
    // The text of the kept fields.
    std::size_t textSize() const { return kept == 0 ? 0 : ends[kept - 1]; }
};

// ---------------------------------------------------------------------------
// RFC 4180 reading, one record at a time: quoted fields with doubled quotes,
// commas and line ends inside; CRLF, LF or CR line ends; a UTF-8 byte-order
// mark at the start is dropped; empty lines and lines of nothing but blanks
// and tabs are skipped. Text after a closing quote makes the record
// malformed (it is still read up to its end, so the next record starts where
// it should).
class CsvReader {
public:
    static constexpr std::size_t kMaxRecord = 1 << 20; // bytes of field text per record

    explicit CsvReader(ByteSource& source)
        : source_(source), text_(new char[kMaxRecord + kSlack]) {}
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    // The next record, or false at the end. `line` is the line it starts on.
    bool next();
    // From the next record on, every field is counted but only the first
    // `limit` are kept, so that a record of millions of empty fields takes no
    // memory.
    void keepFields(std::size_t limit) { limit_ = limit; }
    std::size_t fieldCount() const { return keptFieldCount() + dropped_; }
    std::size_t keptFieldCount() const { return static_cast<std::size_t>(endsAt_ - ends_.data()); }
    // Field i of the kept ones.
    std::string_view field(std::size_t i) const {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return {text_.get() + begin, ends_[i] - begin};
    }
    long line() const { return line_; }
    // The record held more than kMaxRecord bytes; its text is cut short.
    bool tooLong() const { return tooLong_; }
    // The input ended inside a quoted field of the record.
    bool unterminated() const { return unterminated_; }
    // Text follows the closing quote of a field; malformedField() is its
    // number, counted from 1.
    bool malformed() const { return malformedField_ != 0; }
    std::size_t malformedField() const { return malformedField_; }
    // The record just read, valid until the next one is.
    RecordView view() const {
        return {text_.get(),     ends_.data(), keptFieldCount(), fieldCount(),
                malformedField_, line_,        tooLong_,         unterminated_};
    }

private:
    bool fill();
    bool readRecord();
    bool blankOnly() const;
    void endField() {
        // one test, as a push_back would make
        if (endsAt_ != endsRoom_)
            *endsAt_++ = textSize_;
        else
            moreFields();
    }
    void moreFields();
    // Appends the n characters at p to the record's text, up to kMaxRecord;
    // 16 characters from p must be readable.
    void append(const char* p, std::size_t n) {
        if (n <= 16 && textSize_ + 16 <= kMaxRecord) {
            // a short run in two fixed-size copies instead of a call
            std::memcpy(text_.get() + textSize_, p, 8);
            std::memcpy(text_.get() + textSize_ + 8, p + 8, 8);
            textSize_ += n;
            return;
        }
        appendLong(p, n);
    }
    void appendLong(const char* p, std::size_t n);

    static constexpr std::size_t kBuffer = 1 << 16;
    static constexpr std::size_t kSlack = 16; // readable past the end of buf_, text_
    ByteSource& source_;
    std::vector<char> buf_ = std::vector<char>(kBuffer + kSlack);
    std::size_t pos_ = 0, end_ = 0;
    bool eof_ = false, started_ = false, skipLf_ = false;
    long nextLine_ = 1, line_ = 0;
    std::unique_ptr<char[]> text_; // field text of the record, fields back to back
    std::size_t textSize_ = 0;
    std::vector<std::size_t> ends_;   // room for the kept fields, never more than limit_
    std::size_t* endsAt_ = nullptr;   // past the end of the last kept field in ends_
    std::size_t* endsRoom_ = nullptr; // the end of ends_
    std::size_t dropped_ = 0;         // fields past the limit, counted only
    std::size_t limit_ = static_cast<std::size_t>(-1);
    std::size_t malformedField_ = 0;
    bool tooLong_ = false, unterminated_ = false, quoted_ = false;
};

// ---------------------------------------------------------------------------
// Output text built row by row, numbers written straight into it.
class OutputBuffer {
public:
    void append(std::string_view text) {
        char* p = room(text.size());
        if (!text.empty()) std::memcpy(p, text.data(), text.size());
        size_ += text.size();
    }
    void append(char c) {
        *room(1) = c;
        ++size_;
    }
    void append(std::size_t count, char c) {
        std::memset(room(count), c, count);
        size_ += count;
    }
    // The shortest text that reads back to the same double.
    void appendNumber(double x) {
        char* p = room(48);
        size_ = static_cast<std::size_t>(fmt::shortestTo(p, p + 48, x) - data_.get());
    }
    // For each value a comma, then its shortest text.
    void appendNumbers(const double* values, std::size_t count) {
        char* p = room(49 * count);
        size_ = static_cast<std::size_t>(fmt::shortestListTo(p, values, count, ',') - data_.get());
    }
    // The first n (at most 32) of the 32 characters at p.
    void appendShort(const char* p, std::size_t n) {
        std::memcpy(room(32), p, 32);
        size_ += n;
    }
    std::string_view view() const { return {data_.get(), size_}; }
    std::size_t size() const { return size_; }
    void clear() { size_ = 0; }

private:
    char* room(std::size_t n) {
        if (size_ + n > capacity_) grow(size_ + n);
        return data_.get() + size_;
    }
    void grow(std::size_t need);

    std::unique_ptr<char[]> data_;
    std::size_t size_ = 0, capacity_ = 0;
};

// The texts of numbers met before, kept by their bits: the pH of a point and
// its hydrogen ion take a few hundred values in a whole run (a sweep's the
// same at every sample), each written once. A direct-mapped table: a
// number that finds another in its place is written again and takes it.
class KeptTexts {
public:
    // A comma, then the shortest text of x.
    void append(OutputBuffer& out, double x) {
        std::uint64_t key;
        std::memcpy(&key, &x, sizeof key);
        Slot& s = slots_[(key * 0x9E3779B97F4A7C15u) >> (64 - kBits)];
        if (s.length == 0 || s.key != key) {
            s.key = key;
            s.text[0] = ',';
            s.length = static_cast<std::uint8_t>(
                fmt::shortestTo(s.text + 1, s.text + sizeof s.text, x) - s.text);
        }
        out.appendShort(s.text, s.length);
    }

private:
    static constexpr int kBits = 10;
    struct Slot {
        std::uint64_t key = 0;
        std::uint8_t length = 0; // 0: empty
        char text[55];           // the room shortestTo asks for; 32 are copied
    };
    std::unique_ptr<Slot[]> slots_ = std::make_unique<Slot[]>(std::size_t{1} << kBits);
};

// ---------------------------------------------------------------------------
// The samples, one row after the other.
class Calculator {
public:
    // Throws UsageError when the sweep settings are rejected.
    explicit Calculator(const Options& options);

    // Maps the header's columns; throws UsageError naming an unknown or
    // repeated column, and for a header row that is too long, leaves a quote
    // open or has text after a closing quote.
    void setHeader(const CsvReader& header);

    // Takes the columns another calculator read from the header.
    void adoptColumns(const Calculator& other) {
        column_ = other.column_;
        fieldCount_ = other.fieldCount_;
    }

    // Computes one record and appends its output rows to `out`. Returns true
    // when a message row was written.
    bool processRecord(const RecordView& record, OutputBuffer& out);
    bool processRecord(const CsvReader& record, OutputBuffer& out) {
        return processRecord(record.view(), out);
    }

    // Output rows a sample writes at most.
    int rowsPerSample() const { return touched_ + 1; }

private:
    struct Collector : EngineObserver {
        std::vector<std::string> messages;
        void pointCompleted(bool) override {}
        void accuracyVerdict(bool) override {}
        void accuracyRefresh() override {}
        void publishResults() override {}
        void message(const std::string& text, const std::string&, MessageIcon) override {
            messages.push_back(text);
        }
    };

    void freshProgram();
    [[gnu::cold, gnu::noinline]] void
    badRecordRow(const RecordView& record, std::string_view sample, OutputBuffer& out) const;
    [[gnu::cold, gnu::noinline]] bool rejectedCell(BoxCheck check, std::string_view sample,
                                                   OutputBuffer& out) const;
    // The point rows of a computed sample: what is the same in each of them
    // is written to text once.
    void pointRows(std::string_view sample, int last, const CalcOutcome& outcome,
                   OutputBuffer& out);
    void messageRow(std::string_view sample, const std::string& point, std::string_view text,
                    bool balance, OutputBuffer& out) const;
    // The measured point's columns of --ccpp and --crossings, each after a comma.
    void extraColumns(const CalcOutcome& outcome, OutputBuffer& out) const;

    Options options_;
    OptionState applied_;     // the options as Apply left them
    EquationFlags flags_;     // the equation flags of this row
    int touched_ = 1;         // highest point element a row can write
    std::vector<int> column_; // for each analysis column and the sample: its field, or -1
    std::size_t fieldCount_ = 0;
    Engine engine_;
    Collector collector_;
    AnalysisValues values_;    // the row's cells as numbers
    WindowInputs in_;          // what the engine reads from the windows
    OutputBuffer head_, tail_; // a sample's text before the point, after the co3 column
    std::string noExtras_;     // the added columns left empty: a comma each
    KeptTexts phTexts_, hydrogenTexts_;
};

// ---------------------------------------------------------------------------
// Told how far the run is each time output has been written.
class ProgressSink {
public:
    virtual ~ProgressSink() = default;
    // `rows` input rows are done, `inputBytes` of the input read for them.
    virtual void advance(std::uint64_t rows, std::uint64_t inputBytes) = 0;
};

// The one-line report on a terminal: rows done, rows per second and the
// percentage of the input when its size is known, refreshed in place on
// `fd` once the run has lasted a second, and cleared at the end. Writes
// nothing at all when `fd` is not a terminal.
class TerminalProgress : public ProgressSink {
public:
    using Clock = std::function<double()>; // seconds, from any start

    // totalBytes 0: the size of the input is not known.
    TerminalProgress(int fd, std::uint64_t totalBytes, Clock clock = {});
    ~TerminalProgress() override { finish(); }
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    void advance(std::uint64_t rows, std::uint64_t inputBytes) override;
    // Clears the report line if one was written.
    void finish();

private:
    int fd_;
    bool terminal_;
    std::uint64_t total_;
    Clock clock_;
    double start_, last_ = -1;
    bool shown_ = false;
};

// Reads the header and every record from `in`, writes the output to `out`,
// with options.jobs workers (0: defaultJobs()). Returns 0 when no message
// row was written, 1 when one was. Throws UsageError for a missing or bad
// header and for input/output failures.
int runBatch(const Options& options, ByteSource& in, ByteSink& out,
             ProgressSink* progress = nullptr);

// The whole command: arguments without the program name; standard input,
// output and error are file descriptors 0, 1 and 2. Returns the exit status.
int commandMain(const std::vector<std::string>& args);

} // namespace velmora::batch
