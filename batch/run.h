// A run of velmora-calc: the records read, computed by the workers and
// written in input order, and the whole command around it.
#pragma once

#include "batch/csvreader.h"
#include "batch/options.h"
#include "batch/output.h"

#include <string>
#include <vector>

namespace velmora::batch {

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
