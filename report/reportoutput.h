// The report leaves the program: saved as a ".doc" text file or printed.
// Both ask the user first (the save or print dialog of the platform); Cancel
// does nothing, and a failure ends the command without a message and without
// harming anything the user had.
#pragma once

#include "report/reportlayout.h"

class QWidget;

namespace velmora::report {

// The save dialog, then the report written to the chosen name with ".doc"
// appended, through a temporary file that replaces the target only once it
// is complete. The time and date are read after the dialog.
void saveReport(QWidget* parent, ReportInputs inputs, const ReportStyle& style);

// The print dialog, then the chosen number of copies as one document, each
// copy on new pages.
void printReport(QWidget* parent, ReportInputs inputs, const ReportStyle& style);

} // namespace velmora::report
