// The input of velmora-calc: byte sources and the CSV reader.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::batch {

// ---------------------------------------------------------------------------
// Byte sources, so that the batch reads files, pipes and strings alike.

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Up to n bytes into buf; 0 at the end. Throws UsageError on a read failure.
    virtual std::size_t read(char* buf, std::size_t n) = 0;
};

class FdSource : public ByteSource {
public:
    FdSource(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}
    std::size_t read(char* buf, std::size_t n) override;

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

} // namespace velmora::batch
