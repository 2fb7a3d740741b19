// velmora-calc's command line: its options, their reading and checks, the
// help text and the output header the options ask for.
#pragma once

#include "engine/ccpp.h"
#include "engine/engine.h"
#include "intake/arrangement.h"
#include "options/optionstate.h"

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
    enum class Activity { None, Limiting, Extended, Guntelberg, Davies };
    Equation ionic = Equation::Langelier;
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

// The most workers --jobs takes.
inline constexpr int kMaxJobs = 256;

// Checks the sweep texts as the Options dialog's boxes and Apply do; the
// sweep list and start as Apply leaves them. Throws UsageError with the
// dialog's message.
void applySweepOptions(const Options& options, OptionState& state, double& phstart);

// The text with the letters A to Z in lower case.
std::string lower(std::string_view text);

// The thresholds of --crossings, or null without it.
const std::vector<Threshold>* crossingSet(const Options& options);

} // namespace velmora::batch
