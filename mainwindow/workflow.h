// The main window's workflow state, which status panel 1 names.
#pragma once

#include <QString>

namespace velmora {

enum class Workflow {
    EnteringData,       // at start, after Clear and after a new equation
    EnteringDataNew,    // after File > New
    ReadyToRead,        // Read Data's required set is filled
    ReadyForAnalysis,   // Read Data accepted the analysis
    AnalysisRejected,   // Read Data found the ion balance out of limits
    AnalysisDone,       // a calculation ended
    AccuracyAcceptable, // the ion balance verdict, Lewis and Randall only
    AccuracyUnacceptable,
};

// The exact status text of each state (trailing blanks included).
inline QString statusTextOf(Workflow state) {
    switch (state) {
    case Workflow::EnteringData:
        return QStringLiteral("Ready for entering Data ");
    case Workflow::EnteringDataNew:
        return QStringLiteral("Ready for entering Data");
    case Workflow::ReadyToRead:
        return QStringLiteral("Ready for Reading Data ");
    case Workflow::ReadyForAnalysis:
        return QStringLiteral("Ready for Analysis");
    case Workflow::AnalysisRejected:
        return QStringLiteral("water analysis is unacceptable");
    case Workflow::AnalysisDone:
        return QStringLiteral("End of analysis ");
    case Workflow::AccuracyAcceptable:
        return QStringLiteral("Analysis accuracy is acceptable");
    case Workflow::AccuracyUnacceptable:
        return QStringLiteral("Analysis accuracy is unacceptable");
    }
    return QString();
}

} // namespace velmora
