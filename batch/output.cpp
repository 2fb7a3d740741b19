#include "batch/output.h"

#include "batch/options.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace velmora::batch {

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

void OutputBuffer::grow(std::size_t need) {
    const std::size_t capacity = std::max(need, 2 * capacity_ + 4096);
    auto bigger = std::make_unique<char[]>(capacity);
    if (size_ != 0) std::memcpy(bigger.get(), data_.get(), size_);
    data_ = std::move(bigger);
    capacity_ = capacity;
}

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

// ---------------------------------------------------------------------------
// The output file

OutputFile::OutputFile(const std::string& name) : name_(name) {
    if (name.empty() || name == "-") return;
    displayName_ = name;
    target_ = name;
    bool toFile = true;
    int keepMode = -1; // the mode of the file replaced, if there is one
    struct stat st;
    if (::stat(name.c_str(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) throw UsageError("cannot write " + name + ": it is a directory");
        if (!S_ISREG(st.st_mode)) {
            // a device or a pipe is written as it is: nothing to replace
            toFile = false;
            fd_ = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
            if (fd_ < 0) fail(errno);
        } else {
            // a file the user may not write is not replaced behind his back;
            // the replacement keeps the file's mode
            if (::faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0) fail(errno);
            if ((st.st_mode & 0222) == 0)
                throw UsageError("cannot write " + name + ": the file is read-only");
            keepMode = st.st_mode & 07777;
            if (char* real = ::realpath(name.c_str(), nullptr)) {
                // through a symbolic link the file it points to is replaced
                target_ = real;
                std::free(real);
            }
        }
    }
    if (!toFile) return;
    fd_ = -1;
    // next to the target, so that the rename stays on one file system
    for (int attempt = 0;; ++attempt) {
        tempName_ = target_ + ".tmp" + std::to_string(::getpid()) + "-" + std::to_string(attempt);
        fd_ = ::open(tempName_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd_ >= 0) break;
        const int err = errno;
        tempName_.clear();
        if (err != EEXIST || attempt > 100) fail(err);
    }
    if (keepMode >= 0 && ::fchmod(fd_, static_cast<mode_t>(keepMode)) != 0) {
        const int err = errno;
        ::close(fd_);
        ::unlink(tempName_.c_str());
        fail(err);
    }
}

OutputFile::~OutputFile() {
    if (fd_ > 2) ::close(fd_);
    if (!tempName_.empty()) ::unlink(tempName_.c_str());
}

void OutputFile::fail(int err) const {
    throw UsageError("cannot write " + name_ + ": " + std::strerror(err));
}

void OutputFile::commit() {
    if (tempName_.empty()) return;
    const int fd = fd_;
    fd_ = -1;
    if (::close(fd) != 0) fail(errno);
    if (::rename(tempName_.c_str(), target_.c_str()) != 0) fail(errno);
    tempName_.clear();
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

} // namespace velmora::batch
