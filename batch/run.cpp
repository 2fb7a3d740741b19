#include "batch/run.h"

#include "batch/calculator.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <fcntl.h>
#include <mutex>
#include <new>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace velmora::batch {

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

namespace {

// A file descriptor closed when it goes out of scope.
struct Fd {
    int fd = -1;
    ~Fd() {
        if (fd > 2) ::close(fd);
    }
};

} // namespace

int commandMain(const std::vector<std::string>& args) {
    try {
        Options o;
        try {
            o = parseCommandLine(args);
        } catch (const UsageError& e) {
            throw UsageError(std::string(e.what()) +
                             "\nTry 'velmora-calc --help' for more information.");
        }
        if (o.help) {
            writeAllTo(1, helpText());
            return 0;
        }

        std::string inputName = "standard input";
        Fd input{0};
        if (o.input.empty()) throw UsageError("cannot open the input file: its name is empty");
        if (o.input != "-") {
            inputName = o.input;
            input.fd = ::open(o.input.c_str(), O_RDONLY | O_CLOEXEC);
            if (input.fd < 0)
                throw UsageError("cannot open " + o.input + ": " + std::strerror(errno));
        }
        OutputFile output(o.output);

        FdSource source(input.fd, inputName);
        FdSink sink(output.fd(), output.displayName());
        std::unique_ptr<TerminalProgress> progress;
        if (!o.quiet) {
            struct stat in;
            const bool sized = ::fstat(input.fd, &in) == 0 && S_ISREG(in.st_mode);
            progress = std::make_unique<TerminalProgress>(
                2, sized ? static_cast<std::uint64_t>(in.st_size) : 0);
        }
        const int status = runBatch(o, source, sink, progress.get());
        progress.reset();
        output.commit();
        return status;
    } catch (const UsageError& e) {
        writeAllTo(2, std::string("velmora-calc: ") + e.what() + "\n");
    } catch (const std::bad_alloc&) {
        writeAllTo(2, "velmora-calc: out of memory\n");
    } catch (const std::exception& e) {
        writeAllTo(2, std::string("velmora-calc: ") + e.what() + "\n");
    }
    return 2;
}
} // namespace velmora::batch
