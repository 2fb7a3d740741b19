// velmora-calc: the batch calculator. Everything but the arguments and the
// signal settings lives in velmora_batch.
#include "batch/run.h"

#include <csignal>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    // A reader that goes away (velmora-calc ... | head) or a file-size limit
    // makes a write fail with EPIPE or EFBIG instead of killing the process:
    // the failure is then reported as a file error and a temporary output
    // file is removed.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    const std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
    return velmora::batch::commandMain(args);
}
