// The text report of one calculated water: the sample's properties, the
// analysis as typed, the chosen indices at the measured pH and what each of
// them means. It is composed once, as a sequence of print statements, and
// rendered four ways (saved or printed, from the menu or the toolbar); the
// renderings differ only in the few widths and words of ReportStyle.
//
// Plain C++: the windows hand over their texts and values, the clock its
// time and date.
#pragma once

#include "intake/fields.h"
#include "results/interpretation.h"

#include <array>
#include <string>

namespace velmora::report {

// The indices in the order the report lists them.
enum ReportIndex { LI, RI, PSI, AI, DFI, LR, ME, SL, kIndexCount };
// The interpretation table of the index.
interp::Index interpretationOf(ReportIndex index);

struct ReportInputs {
    // the first two lines, already in the user's formats
    std::string time, date;
    // the sample properties dialog
    std::string operatorName, familyName, samplingDate, organization, location;
    // the main window's boxes, exactly as typed
    AnalysisTexts analysis;
    // the ionic strength equation
    bool bllang = false, blrus = false, bllewis = false;
    // the index boxes of the Options dialog and the values at the measured pH
    std::array<bool, kIndexCount> chosen{};
    std::array<double, kIndexCount> value{};
};

// What differs between the renderings.
struct ReportStyle {
    int titleRule = 68; // hyphens under the heading
    int tableRule = 43; // hyphens under the analysis table's header
    // blanks around the alkalinity and the pH unit
    int alkBefore = fieldInfo(Field::alk).reportGap, alkAfter = 4;
    int phBefore = fieldInfo(Field::ph).reportGap, phAfter = 14;
    const char* indicesTitle = " water corrosion indices vslues :";
    int indexRule = 43;   // hyphens under the index table's header
    int closingRule = 43; // hyphens closing the index table
    const char* noIndices = " No indices has been selected,please select ";
    int noIndicesIndent = 15;
    const char* noIndicesHint = "indices those you want, from options menu.";
};

// File > Save results, the toolbar's Save, File > Print results and the
// toolbar's Print.
ReportStyle savedStyle();
ReportStyle savedToolbarStyle();
ReportStyle printedStyle();
ReportStyle printedToolbarStyle();

// The report as bytes: statements end in CR LF, embedded line feeds stand
// alone; the texts of the inputs are written as they are (UTF-8).
std::string compose(const ReportInputs& in, const ReportStyle& style);

} // namespace velmora::report
