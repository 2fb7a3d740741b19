#include "batch/csvreader.h"

#include "batch/options.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace velmora::batch {

std::size_t FdSource::read(char* buf, std::size_t n) {
    for (;;) {
        const ssize_t r = ::read(fd_, buf, n);
        if (r >= 0) return static_cast<std::size_t>(r);
        if (errno == EINTR) continue;
        throw UsageError("cannot read " + name_ + ": " + std::strerror(errno));
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

} // namespace velmora::batch
