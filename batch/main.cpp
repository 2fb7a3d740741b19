// velmora-calc: the batch calculator. Everything but the arguments lives in
// velmora_batch.
#include "batch/batchcalc.h"

#include <string>
#include <vector>

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
    return velmora::batch::commandMain(args);
}
