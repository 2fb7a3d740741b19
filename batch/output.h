// The output of velmora-calc: byte sinks, the text of the rows, the output
// file that replaces its target only when the run succeeds, and the report
// of progress.
#pragma once

#include "numtext/numtext.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::batch {

// ---------------------------------------------------------------------------
// Byte sinks, so that the batch writes files, pipes and strings alike.

class ByteSink {
public:
    virtual ~ByteSink() = default;
    // Throws UsageError on a write failure.
    virtual void write(const char* data, std::size_t n) = 0;
};

class FdSink : public ByteSink {
public:
    FdSink(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}
    void write(const char* data, std::size_t n) override;

private:
    int fd_;
    std::string name_;
};

class StringSink : public ByteSink {
public:
    void write(const char* data, std::size_t n) override { text.append(data, n); }
    std::string text;
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

// A CSV field: quoted when it holds a comma, a quote or a line end.
inline void appendField(OutputBuffer& out, std::string_view text) {
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
void writeAllTo(int fd, std::string_view text);

// ---------------------------------------------------------------------------
// Where the command writes: standard output (an empty name or "-"), a device
// or a pipe written as it is, or a regular file. A file is written to a
// temporary file next to it that takes its place only by commit(), keeping
// the mode of a file it replaces; until then an existing file is untouched,
// and the temporary file is removed if the output is never committed.
class OutputFile {
public:
    // Throws UsageError when the name cannot be written.
    explicit OutputFile(const std::string& name);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    int fd() const { return fd_; }
    // The name for messages: "standard output" or the name given.
    const std::string& displayName() const { return displayName_; }
    // Closes the file and puts it in place; throws UsageError on failure.
    void commit();

private:
    [[noreturn]] void fail(int err) const;
    std::string name_, displayName_ = "standard output";
    std::string target_;   // the file replaced, through symbolic links
    std::string tempName_; // the temporary file while it exists
    int fd_ = 1;
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

} // namespace velmora::batch
