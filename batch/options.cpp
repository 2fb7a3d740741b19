#include "batch/options.h"

#include "options/sweepsettings.h"

#include <algorithm>
#include <charconv>
#include <sched.h>
#include <string_view>
#include <thread>

namespace velmora::batch {

std::string lower(std::string_view s) {
    std::string r(s);
    for (char& c : r)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return r;
}

void applySweepOptions(const Options& o, OptionState& state, double& phstart) {
    const std::string where = "--sweep: ";
    if (auto m = checkInitialPh(o.sweepStart)) throw UsageError(where + *m);
    if (auto m = checkIncrementPh(o.sweepIncrement)) throw UsageError(where + *m);
    if (auto m = checkSteps(o.sweepSteps)) throw UsageError(where + *m);
    SweepApplyResult r;
    try {
        r = applySweep(o.sweepStart, o.sweepIncrement, o.sweepSteps, state.sweep, phstart);
    } catch (const EngineError& e) {
        throw UsageError(where + "You must enter a positive number! (" + e.what() + ")");
    }
    if (r.outcome != SweepApplyResult::Outcome::Applied) throw UsageError(where + r.message);
}

// ---------------------------------------------------------------------------
// Command line

const char* helpText() {
    return R"(Usage: velmora-calc [options] [FILE]

Computes the corrosion and scaling indices of many water samples. Reads CSV
from FILE (or standard input when FILE is absent or "-") and writes CSV to
standard output.

Options (--opt value and --opt=value both work):
  -o, --output FILE   write to FILE instead of standard output; the output
                      goes to a temporary file that is renamed at the end, so
                      a failed run leaves an existing FILE untouched
  --ionic EQUATION    ionic strength equation: langelier (default), russell
                      or lewis (Lewis and Randall, with the ion balance)
  --activity EQUATION
                      activity coefficient equation: none (default: the
                      Debye-Huckel limiting law), limiting, extended,
                      guntelberg or davies
  --larson-skold      the Larson-Skold index is chosen: chloride and sulphate
                      are read with every ionic strength equation
  --sweep START,INCREMENT,STEPS
                      a pH sweep after the measured point: START 1 to 14,
                      INCREMENT 0.1 to 2 (or 0 or less), STEPS 1 to 140, and
                      no sweep point above pH 14; a rejected sweep is a usage
                      error with the Options dialog's message
  --ccpp              add the columns ccpp, ph_eq and ccpp_note: the calcium
                      carbonate precipitation potential, the mg/L of CaCO3
                      the water deposits (positive) or dissolves (negative)
                      to reach saturation, and its pH once saturated
  --crossings[=SET]   needs --sweep: add, for each index and threshold, the
                      pH inside the swept range where the index equals the
                      threshold (found by root finding on the sweep's own
                      formulas; empty when there is none in the range). SET
                      neutral (default): ph_li_0, ph_ri_6p5, ph_por_6,
                      ph_ai_12, ph_ai_10, ph_dfi_1, ph_sl_1; table: every
                      boundary of the interpretation tables of LI, RI, PSI,
                      AI, DFI and SL ('.' written 'p', '-' written 'm')
  -j, --jobs N        compute with N workers (default: one for each core
                      the command may run on); the output is the same
  -q, --quiet         no progress report (it is shown only when standard
                      error is a terminal and the run lasts over a second)
  -h, --help          show this text and nothing else, whatever else the
                      command line holds
An unknown option or a missing value is a usage error, an empty FILE name a
file error.

Input: a header row, then one sample per row. Columns (any order, names
trimmed and case-insensitive): tds, ec, t, ph, alk, ca, mg, k, na, zn, mn, fe,
al, hco3, co3, no2, no3, f, cl, so4 (mg/L; alkalinity as CaCO3; t in degrees
Celsius; ec in mS/m) and an optional sample identifier, copied to the output.
A missing column is an empty box; an unknown or repeated column is a usage
error naming it. RFC 4180 quoting; CRLF or LF line ends; a UTF-8 byte-order
mark is ignored; blank lines and lines of only blanks and tabs are skipped.
A row with the wrong number of fields, text after a closing quote or a quote
left open becomes a message row saying so; in the header these are usage
errors.

Each row is computed as if typed into a freshly started program with these
options applied:
  1. Every cell is checked as its box checks its text, the whole cell as if
     pasted (an empty cell is an empty box). A cell that is not a number
     ("1e400" is not one) is rejected with "You must enter a number!", a pH
     of 0 or less or above 14 with "pH must be a positive number up to 14 .".
     Of several bad cells, the first in the column order above (tds, ec, t,
     ph, ...) reports, wherever the columns stand in the file.
  2. Read Data, with its own messages for missing values, the conversion,
     the activity and the ion balance. An unacceptable analysis stops here.
  3. Calculate, with its own message when the pH cell is empty and no sweep
     is given.

Output columns:
  sample,point,ph,li,ri,por,ai,dfi,lr,me,sl,phs,ch,oh,a0,a1,a2,h2co3,hco3,co3,
  ionic,lanm,land,lant,ct,sumca,suman,diff,message
One row per computed point, in input order: point 0 is the measured point,
1 to STEPS the sweep points. Numbers are written as the shortest text that
reads back to exactly the same value. sumca, suman and diff are filled when
the Lewis and Randall equation ran the ion balance; message is empty.
A message the program would show is a row of its own with the numbers empty
and the text in message: a rejected cell, a Read Data message, "water
analysis is unacceptable" (this row keeps sumca, suman and diff, to show
why), Calculate's message, a run-time error or a malformed row. For a
run-time error point says where it happened: 0 for the measured point, k for
sweep point k (the points before it are written, the sample ends there),
empty while reading the analysis.
With --ccpp and --crossings their columns stand just before message and are
filled on the measured point's row only. Both are computed in a closed
system, in this program's model: the measured water's ionic strength,
activity coefficients and constants, no exchange of CO2 with the air and no
ion pairs. CCPP: precipitating x mol/L of CaCO3 lowers calcium and total
carbonate by x and the alkalinity by 2x; ccpp = 100090 x mg/L where the
Langelier index of that water is 0, ph_eq its pH. ccpp_note says why no
value exists: "no carbonate alkalinity", "all carbonate precipitates" (ccpp
is then all the carbonate there is) or "not saturated after dissolving
100090 mg/L". The worked sample (t 25, ph 7.5, alk 200, ca 80, tds 400)
gives ccpp 10.949982089 and ph_eq 7.308343853, and with --sweep 6,0.1,39
ph_li_0 7.275242468.
Lines end in LF; a field is quoted only when it holds a comma, a quote or a
line end.

Exit status: 0 when no message row was written, 1 when one was, 2 for a
usage or file error (the reason is written to standard error).
)";
}

Options parseCommandLine(const std::vector<std::string>& args) {
    Options o;
    // The first mistake is reported at the end, unless help was asked for:
    // then the command line is only read for it.
    std::string error;
    auto fail = [&error](std::string message) {
        if (error.empty()) error = std::move(message);
    };
    auto isHelp = [](const std::string& arg) { return arg == "--help" || arg == "-h"; };
    bool haveFile = false;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (onlyFiles || arg == "-" || arg.empty() || arg[0] != '-') {
            if (haveFile) fail("more than one input file: \"" + arg + "\"");
            haveFile = true;
            o.input = arg;
            continue;
        }
        if (arg == "--") {
            onlyFiles = true;
            continue;
        }
        std::string name, value;
        bool hasValue = false;
        if (arg.rfind("--", 0) == 0) {
            const auto eq = arg.find('=');
            name = arg.substr(2, eq == std::string::npos ? std::string::npos : eq - 2);
            if (eq != std::string::npos) {
                value = arg.substr(eq + 1);
                hasValue = true;
            }
        } else if (arg == "-h") {
            name = "help";
        } else if (arg == "-q") {
            name = "quiet";
        } else if (arg.rfind("-o", 0) == 0 || arg.rfind("-j", 0) == 0) {
            name = arg[1] == 'o' ? "output" : "jobs";
            if (arg.size() > 2) {
                value = arg.substr(arg[2] == '=' ? 3 : 2);
                hasValue = true;
            }
        } else {
            fail("unknown option \"" + arg + "\"");
            continue;
        }

        // the option's value, from "--opt=value" or the next argument (never
        // a request for help); false when there is none
        auto takeValue = [&]() {
            if (hasValue) return true;
            if (i + 1 >= args.size() || isHelp(args[i + 1])) {
                fail("option \"" + arg + "\" needs a value");
                return false;
            }
            value = args[++i];
            hasValue = true;
            return true;
        };
        auto noValue = [&]() {
            if (hasValue) fail("option \"--" + name + "\" takes no value");
        };

        if (name == "help") {
            noValue();
            o.help = true;
        } else if (name == "output") {
            if (!takeValue()) continue;
            if (value.empty())
                fail("option \"" + arg + "\" needs a file name");
            else
                o.output = value;
        } else if (name == "ionic") {
            if (!takeValue()) continue;
            const std::string v = lower(value);
            if (v == "langelier")
                o.ionic = Equation::Langelier;
            else if (v == "russell")
                o.ionic = Equation::Russell;
            else if (v == "lewis")
                o.ionic = Equation::Lewis;
            else
                fail("--ionic: unknown equation \"" + value + "\" (langelier, russell or lewis)");
        } else if (name == "activity") {
            if (!takeValue()) continue;
            const std::string v = lower(value);
            if (v == "none")
                o.activity = Options::Activity::None;
            else if (v == "limiting")
                o.activity = Options::Activity::Limiting;
            else if (v == "extended")
                o.activity = Options::Activity::Extended;
            else if (v == "guntelberg")
                o.activity = Options::Activity::Guntelberg;
            else if (v == "davies")
                o.activity = Options::Activity::Davies;
            else
                fail("--activity: unknown equation \"" + value +
                     "\" (none, limiting, extended, guntelberg or davies)");
        } else if (name == "larson-skold") {
            noValue();
            o.larsonSkold = true;
        } else if (name == "quiet") {
            noValue();
            o.quiet = true;
        } else if (name == "ccpp") {
            noValue();
            o.ccpp = true;
        } else if (name == "crossings") {
            const std::string v = hasValue ? lower(value) : "neutral";
            if (v == "neutral")
                o.crossings = Options::Crossings::Neutral;
            else if (v == "table")
                o.crossings = Options::Crossings::Table;
            else
                fail("--crossings: unknown set \"" + value + "\" (neutral or table)");
        } else if (name == "jobs") {
            if (!takeValue()) continue;
            int n = 0;
            const auto r = std::from_chars(value.data(), value.data() + value.size(), n);
            if (r.ec != std::errc() || r.ptr != value.data() + value.size() || n < 1 ||
                n > kMaxJobs)
                fail("--jobs needs a number of workers from 1 to " + std::to_string(kMaxJobs) +
                     ", got \"" + value + "\"");
            else
                o.jobs = n;
        } else if (name == "sweep") {
            if (!takeValue()) continue;
            const auto c1 = value.find(',');
            const auto c2 = c1 == std::string::npos ? c1 : value.find(',', c1 + 1);
            if (c2 == std::string::npos || value.find(',', c2 + 1) != std::string::npos) {
                fail("--sweep needs START,INCREMENT,STEPS, got \"" + value + "\"");
                continue;
            }
            o.sweep = true;
            o.sweepStart = value.substr(0, c1);
            o.sweepIncrement = value.substr(c1 + 1, c2 - c1 - 1);
            o.sweepSteps = value.substr(c2 + 1);
        } else {
            fail("unknown option \"" + arg + "\"");
        }
    }
    if (o.help) return o;
    if (error.empty() && o.crossings != Options::Crossings::None && !o.sweep)
        fail("--crossings needs --sweep: the crossings are searched in the swept pH range");
    if (!error.empty()) throw UsageError(error);
    if (o.sweep) {
        OptionState state;
        double phstart = 0;
        applySweepOptions(o, state, phstart);
    }
    return o;
}

const std::vector<Threshold>* crossingSet(const Options& o) {
    switch (o.crossings) {
    case Options::Crossings::None:
        break;
    case Options::Crossings::Neutral:
        return &crossingThresholds(CrossingSet::Neutral);
    case Options::Crossings::Table:
        return &crossingThresholds(CrossingSet::Table);
    }
    return nullptr;
}

std::string outputHeader(const Options& o) {
    std::string header = kOutputHeader;
    std::string added;
    if (o.ccpp) added += ",ccpp,ph_eq,ccpp_note";
    if (const auto* set = crossingSet(o))
        for (const Threshold& t : *set)
            added += "," + t.column;
    header.insert(header.size() - std::string_view(",message").size(), added);
    return header;
}

EquationFlags equationFlags(const Options& o) {
    EquationFlags f;
    switch (o.ionic) {
    case Equation::Langelier:
        f.bllang = true;
        break;
    case Equation::Russell:
        f.blrus = true;
        break;
    case Equation::Lewis:
        f.bllewis = true;
        break;
    }
    switch (o.activity) {
    case Options::Activity::None:
        break;
    case Options::Activity::Limiting:
        f.bldebye = true;
        break;
    case Options::Activity::Extended:
        f.bledebye = true;
        break;
    case Options::Activity::Guntelberg:
        f.blgun = true;
        break;
    case Options::Activity::Davies:
        f.bldavies = true;
        break;
    }
    return f;
}

int defaultJobs() {
    cpu_set_t set;
    CPU_ZERO(&set);
    const int cores = ::sched_getaffinity(0, sizeof set, &set) == 0
                          ? CPU_COUNT(&set)
                          : static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(cores, 1, kMaxJobs);
}

} // namespace velmora::batch
