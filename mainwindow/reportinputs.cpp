// The main window's side of the report: everything it shows, gathered at the
// moment a Save or Print command runs.
#include "mainwindow/frmmain.h"
#include "mainwindow/properties.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "results/interpretation.h"

#include <QCheckBox>
#include <QLineEdit>

namespace velmora {

report::ReportInputs frmMain::reportInputs() const {
    report::ReportInputs in;
    const SampleProperties p = currentSampleProperties();
    in.operatorName = p.operatorName;
    in.familyName = p.familyName;
    in.samplingDate = p.date;
    in.organization = p.organization;
    in.location = p.location;

    for (const FieldInfo& fi : kFields)
        in.analysis[fi.field] = box(fi.field)->text().toStdString();

    const EquationFlags& eq = theOptions().equations;
    in.bllang = eq.bllang;
    in.blrus = eq.blrus;
    in.bllewis = eq.bllewis;

    const frmOptions* options = frmOptions::instance();
    const std::pair<report::ReportIndex, const QCheckBox*> chosen[] = {
        {report::LI, options->chkli},   {report::RI, options->chkri},
        {report::PSI, options->chkpor}, {report::AI, options->chkai},
        {report::DFI, options->chkdfi}, {report::LR, options->chklr},
        {report::ME, options->chkme},   {report::SL, options->chksl},
    };
    const SweepArrays& sw = theEngine().sw;
    for (const auto& [index, box] : chosen) {
        in.chosen[index] = box->isChecked();
        in.value[index] = (sw.*interp::indexArray(report::interpretationOf(index)))(0);
    }
    return in;
}

} // namespace velmora
