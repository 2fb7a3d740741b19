#include "batch/calculator.h"

#include "engine/ccpp.h"
#include "numtext/numtext.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace velmora::batch {

namespace {

// The analysis columns are the fields, in their order (the order their
// cells are checked); then the sample identifier.
constexpr std::size_t kAnalysisColumns = kFieldCount;
constexpr std::size_t kSampleColumn = kAnalysisColumns; // index of "sample" in Calculator::column_
constexpr std::size_t kPhColumn = static_cast<std::size_t>(Field::ph);

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    return s;
}

std::string runtimeText(const EngineError& e) {
    return std::string("run-time error: ") + e.what();
}

} // namespace

Calculator::Calculator(const Options& options) : options_(options) {
    applied_.index.bllr = options.larsonSkold;
    applied_.equations = equationFlags(options);
    if (options.sweep) {
        double phstart = 0;
        applySweepOptions(options, applied_, phstart);
        const double n = fmt::roundHalfEven(*fmt::strictNumber(options.sweepSteps), 0);
        touched_ = static_cast<int>(std::clamp(n, 1.0, 140.0));
    }
    column_.assign(kAnalysisColumns + 1, -1);
    if (options.ccpp) noExtras_ += ",,,";
    if (const auto* set = crossingSet(options)) noExtras_.append(set->size(), ',');
    engine_.setObserver(&collector_);
    // every row starts from a reset: a failed one has nothing to put back
    engine_.setRestoreOnFailure(false);
    // the sweep boxes read once for all rows
    in_ = options.sweep ? calcInputs(AnalysisTexts{}, options.sweepStart, options.sweepIncrement,
                                     options.sweepSteps)
                        : calcInputs(AnalysisTexts{});
    noPh_ = in_.phStrict;
}

void Calculator::setHeader(const CsvReader& header) {
    if (header.tooLong()) throw UsageError("the header row is too long");
    if (header.unterminated())
        throw UsageError("the header row has a quoted field that is not closed");
    if (header.malformed())
        throw UsageError("the header row is malformed: field " +
                         std::to_string(header.malformedField()) +
                         " has text after its closing quote");
    column_.assign(kAnalysisColumns + 1, -1);
    fieldCount_ = header.fieldCount();
    // The reader keeps kHeaderFields of the header's fields: with more fields
    // than there are names, an unknown or repeated one is among those.
    for (std::size_t i = 0; i < header.keptFieldCount(); ++i) {
        const std::string_view raw = trim(header.field(i));
        const std::string name = lower(raw);
        std::size_t c = 0;
        while (c < kAnalysisColumns && name != kFields[c].name)
            ++c;
        if (c == kAnalysisColumns && name != "sample")
            throw UsageError("unknown column \"" + std::string(raw) + "\" in the header");
        if (column_[c] >= 0)
            throw UsageError("column \"" + std::string(raw) + "\" appears twice in the header");
        column_[c] = static_cast<int>(i);
    }
    if (header.keptFieldCount() < fieldCount_)
        throw UsageError("the header row has more columns than there are names");
}

void Calculator::freshProgram() {
    engine_.reset();
    engine_.sw.phstart = options_.sweep ? applied_.sweep.entry[0] : 0;
    flags_ = applied_.equations;
    collector_.messages.clear();
}

void Calculator::pointRows(std::string_view sample, int last, const CalcOutcome& outcome,
                           OutputBuffer& out) {
    const SweepArrays& s = engine_.sw;
    const AnalysisRecord& r = engine_.rec;
    // ionic to ct, then the ion balance's sums, written only when it ran
    const double same[] = {r.ionic, r.lanm, r.land, r.lant, s.ct, r.sumca, r.suman, r.diff};
    const std::size_t sameCount = flags_.bllewis ? std::size(same) : std::size(same) - 3;
    const std::string_view end = flags_.bllewis ? ",\n" : ",,,,\n";
    const std::string_view gap = end.substr(0, end.size() - 2); // the ion balance left empty
    const bool extras = !noExtras_.empty();
    // the columns of a point: ph, li to phs, ch, oh to co3
    auto point = [&](int p, OutputBuffer& row) {
        phTexts_.append(row, s.ph(p));
        const double indices[] = {s.li(p), s.ri(p), s.por(p), s.ai(p), s.dfi(p),
                                  s.lr(p), s.me(p), s.sl(p),  s.phs(p)};
        row.appendNumbers(indices, std::size(indices));
        hydrogenTexts_.append(row, s.ch(p));
        const double carbonate[] = {s.oh(p),    s.a0(p),   s.a1(p), s.a2(p),
                                    s.h2co3(p), s.hco3(p), s.co3(p)};
        row.appendNumbers(carbonate, std::size(carbonate));
    };
    // the end of the measured point's row: the added columns hold its values
    auto measuredEnd = [&](OutputBuffer& row) {
        if (!extras) return row.append(end);
        row.append(gap);
        extraColumns(outcome, row);
        row.append(",\n");
    };
    if (last == 0) { // the measured point alone: nothing repeats
        appendField(out, sample);
        out.append(",0");
        point(0, out);
        out.appendNumbers(same, sameCount);
        measuredEnd(out);
        return;
    }
    head_.clear();
    appendField(head_, sample);
    head_.append(',');
    tail_.clear();
    tail_.appendNumbers(same, sameCount);
    const std::size_t numbersEnd = tail_.size();
    if (extras) {
        tail_.append(gap);
        tail_.append(noExtras_);
        tail_.append(",\n");
    } else {
        tail_.append(end);
    }
    for (int p = 0; p <= last; ++p) {
        out.append(head_.view());
        char buf[16];
        out.append(std::string_view(
            buf, static_cast<std::size_t>(std::to_chars(buf, buf + sizeof buf, p).ptr - buf)));
        point(p, out);
        if (p == 0 && extras) {
            out.append(tail_.view().substr(0, numbersEnd));
            measuredEnd(out);
        } else {
            out.append(tail_.view());
        }
    }
}

void Calculator::extraColumns(const CalcOutcome& outcome, OutputBuffer& out) const {
    auto number = [&out](const std::optional<double>& v) {
        out.append(',');
        if (v) out.appendNumber(*v);
    };
    if (options_.ccpp) {
        const CcppResult c = computeCcpp(engine_);
        number(c.ccpp);
        number(c.phEq);
        out.append(',');
        appendField(out, c.note);
    }
    if (const auto* set = crossingSet(options_)) {
        const CrossingSet which = options_.crossings == Options::Crossings::Table
                                      ? CrossingSet::Table
                                      : CrossingSet::Neutral;
        const std::vector<std::optional<double>> ph = findCrossings(engine_, outcome, which);
        for (std::size_t i = 0; i < set->size(); ++i)
            number(i < ph.size() ? ph[i] : std::nullopt);
    }
}

void Calculator::messageRow(std::string_view sample, const std::string& point,
                            std::string_view text, bool balance, OutputBuffer& out) const {
    appendField(out, sample);
    out.append(',');
    out.append(point);
    out.append(23, ',');
    if (balance) {
        const AnalysisRecord& r = engine_.rec;
        for (double v : {r.sumca, r.suman, r.diff}) {
            out.append(',');
            out.appendNumber(v);
        }
    } else {
        out.append(",,,");
    }
    out.append(noExtras_);
    out.append(',');
    appendField(out, text);
    out.append('\n');
}

// A record that cannot be read as a sample: its message row. Kept out of
// processRecord, whose every-row path stays small enough to be inlined well.
void Calculator::badRecordRow(const RecordView& record, std::string_view sample,
                              OutputBuffer& out) const {
    std::string text = "line " + std::to_string(record.line) + ": ";
    if (record.tooLong)
        text += "the row is longer than " + std::to_string(CsvReader::kMaxRecord) + " characters";
    else if (record.unterminated)
        text += "a quoted field is not closed";
    else if (record.malformedField != 0)
        text += "the row is malformed: field " + std::to_string(record.malformedField) +
                " has text after its closing quote";
    else
        text += std::to_string(record.count) + " fields where the header has " +
                std::to_string(fieldCount_);
    messageRow(sample, "", text, false, out);
}

bool Calculator::rejectedCell(BoxCheck check, std::string_view sample, OutputBuffer& out) const {
    messageRow(sample, "", check == BoxCheck::PhOutOfRange ? kPhRangeMessage : kNotANumberMessage,
               false, out);
    return true;
}

bool Calculator::processRecord(const RecordView& record, OutputBuffer& out) {
    const int sampleField = column_[kSampleColumn];
    const std::string_view sample =
        sampleField >= 0 && static_cast<std::size_t>(sampleField) < record.kept
            ? record.field(static_cast<std::size_t>(sampleField))
            : std::string_view();

    if (record.tooLong || record.unterminated || record.malformedField != 0 ||
        record.count != fieldCount_) {
        badRecordRow(record, sample, out);
        return true;
    }

    // every cell checked and read in one pass, as its box checks it, in the
    // column order (the first bad one reports)
#pragma GCC unroll 20
    for (std::size_t c = 0; c < kAnalysisColumns; ++c) {
        BoxValue& box = values_.of[c];
        box = BoxValue{};
        if (column_[c] < 0) continue;
        const BoxCheck check = readBoxText(record.field(static_cast<std::size_t>(column_[c])),
                                           c == kPhColumn, box.value);
        if (check == BoxCheck::Number)
            box.empty = false;
        else if (check != BoxCheck::Empty)
            return rejectedCell(check, sample, out);
    }
    // the numbers of the row for the engine: the pH as read, the carbonate pair's boxes
    // (the pH text itself is not needed: an empty cell leaves it empty, a
    // number is given as read)
    in_.phEmpty = values_[Field::ph].empty;
    in_.ph = values_[Field::ph].value;
    if (in_.phEmpty)
        in_.phStrict = noPh_;
    else
        in_.phStrict.set(in_.ph);
    in_.hco3Empty = values_[Field::hco3].empty;
    in_.co3Empty = values_[Field::co3].empty;

    freshProgram();
    try {
        const ReadDataResult r = readAnalysis(engine_, values_, flags_, applied_.index.bllr, in_);
        if (r.outcome == ReadDataResult::Outcome::Message) {
            messageRow(sample, "", r.messageText, false, out);
            return true;
        }
        if (r.outcome == ReadDataResult::Outcome::Rejected) {
            messageRow(sample, "", "water analysis is unacceptable", flags_.bllewis, out);
            return true;
        }
    } catch (const EngineError& e) {
        messageRow(sample, "", runtimeText(e), false, out);
        return true;
    }

    CalcOutcome outcome;
    try {
        outcome = engine_.calculate(flags_, in_);
    } catch (const EngineError& e) {
        messageRow(sample, "0", runtimeText(e), false, out);
        return true;
    }

    bool message = false;
    if (outcome.computed) {
        const int last = outcome.sweepError ? outcome.sweepErrorPoint - 1
                                            : std::min(outcome.sweepPoints, PointArray::kSize - 1);
        pointRows(sample, std::max(last, 0), outcome, out);
        if (outcome.sweepError) {
            messageRow(sample, std::to_string(outcome.sweepErrorPoint),
                       runtimeText(*outcome.sweepError), false, out);
            message = true;
        }
    }
    for (const std::string& m : collector_.messages) {
        messageRow(sample, "", m, false, out);
        message = true;
    }
    return message;
}

} // namespace velmora::batch
