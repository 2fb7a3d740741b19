// The row calculation of velmora-calc: each sample through the engine, Read
// Data and the sweep settings as the desktop program computes it, into its
// output rows.
#pragma once

#include "batch/csvreader.h"
#include "batch/options.h"
#include "batch/output.h"
#include "engine/engine.h"
#include "intake/readdata.h"
#include "options/optionstate.h"

#include <string>
#include <string_view>
#include <vector>

namespace velmora::batch {

// Fields of the header the reader keeps: one more than there are names.
inline constexpr std::size_t kHeaderFields = kFieldCount + 2;

class Calculator {
public:
    // Throws UsageError when the sweep settings are rejected.
    explicit Calculator(const Options& options);

    // Maps the header's columns; throws UsageError naming an unknown or
    // repeated column, and for a header row that is too long, leaves a quote
    // open or has text after a closing quote.
    void setHeader(const CsvReader& header);

    // Takes the columns another calculator read from the header.
    void adoptColumns(const Calculator& other) {
        column_ = other.column_;
        fieldCount_ = other.fieldCount_;
    }

    // Computes one record and appends its output rows to `out`. Returns true
    // when a message row was written.
    bool processRecord(const RecordView& record, OutputBuffer& out);
    bool processRecord(const CsvReader& record, OutputBuffer& out) {
        return processRecord(record.view(), out);
    }

    // Output rows a sample writes at most.
    int rowsPerSample() const { return touched_ + 1; }

private:
    struct Collector : EngineObserver {
        std::vector<std::string> messages;
        void pointCompleted(bool) override {}
        void ionBalanceJudged(bool) override {}
        void ionBalanceDone() override {}
        void measuredPointReady() override {}
        void message(const std::string& text, const std::string&, MessageIcon) override {
            messages.push_back(text);
        }
    };

    void freshProgram();
    [[gnu::cold, gnu::noinline]] void
    badRecordRow(const RecordView& record, std::string_view sample, OutputBuffer& out) const;
    [[gnu::cold, gnu::noinline]] bool rejectedCell(BoxCheck check, std::string_view sample,
                                                   OutputBuffer& out) const;
    // The point rows of a computed sample: what is the same in each of them
    // is written to text once.
    void pointRows(std::string_view sample, int last, const CalcOutcome& outcome,
                   OutputBuffer& out);
    void messageRow(std::string_view sample, const std::string& point, std::string_view text,
                    bool balance, OutputBuffer& out) const;
    // The measured point's columns of --ccpp and --crossings, each after a comma.
    void extraColumns(const CalcOutcome& outcome, OutputBuffer& out) const;

    Options options_;
    OptionState applied_;     // the options as Apply left them
    EquationFlags flags_;     // the equation flags of this row
    int touched_ = 1;         // highest point element a row can write
    std::vector<int> column_; // for each analysis column and the sample: its field, or -1
    std::size_t fieldCount_ = 0;
    Engine engine_;
    Collector collector_;
    AnalysisValues values_;    // the row's cells as numbers
    CalcInputs in_;            // the numbers the engine reads
    EntryNumber noPh_;         // the pH of an empty cell, for the ion balance
    OutputBuffer head_, tail_; // a sample's text before the point, after the co3 column
    std::string noExtras_;     // the added columns left empty: a comma each
    KeptTexts phTexts_, hydrogenTexts_;
};

} // namespace velmora::batch
