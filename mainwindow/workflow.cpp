// The main window's commands and its workflow: the menus and toolbar, Clear
// and New, Read Data, Calculate and Show results, what the engine reports,
// and the check of every analysis box as its text changes.
#include "mainwindow/frmmain.h"

#include "graphs/frmgraphresult.h"
#include "intake/arrangement.h"
#include "mainwindow/properties.h"
#include "numtext/numtext.h"
#include "options/frmactivity.h"
#include "options/frmionic.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "platform/platform.h"
#include "report/reportoutput.h"
#include "results/results.h"
#include "windowkit/formsupport.h"
#include "windowkit/windowsupport.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>

#include <exception>

namespace velmora {

namespace {

Platform::Icon platformIcon(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::Information:
        return Platform::Icon::Information;
    case MessageIcon::Warning:
        return Platform::Icon::Warning;
    case MessageIcon::Critical:
        return Platform::Icon::Critical;
    case MessageIcon::None:
        break;
    }
    return Platform::Icon::None;
}

} // namespace

// ---------------------------------------------------------------------------
// Menus

void frmMain::mnuoptionoptions_Click() {
    frmOptions* options = frmOptions::instance();
    if (isSmallScreen()) moveTwips(options, 2500, 1500);
    options->show();
    options->raise();
}

void frmMain::mnusettingis_Click() {
    frmionic* dialog = frmionic::instance();
    dialog->show();
    dialog->raise();
}

void frmMain::mnusittingac_Click() {
    frmactivity* dialog = frmactivity::instance();
    dialog->show();
    dialog->raise();
}

void frmMain::mnuHelpAbout_Click() {
    showAbout();
}

void frmMain::mnuhelpcontents_Click() {
    platform().message(this,
                       QStringLiteral(" There have been no Help associated with this project yet."),
                       windowTitle(), Platform::Icon::Information);
}

void frmMain::mnuViewToolbar_Click() {
    mnuViewToolbar->setChecked(!mnuViewToolbar->isChecked());
    tbToolBar->setVisible(mnuViewToolbar->isChecked());
}

void frmMain::mnuViewStatusBar_Click() {
    mnuViewStatusBar->setChecked(!mnuViewStatusBar->isChecked());
    sbStatusBar->setVisible(mnuViewStatusBar->isChecked());
}

void frmMain::mnuFileExit_Click() {
    close();
}

void frmMain::mnuFileProperties_Click() {
    openPropertiesDialog();
}

void frmMain::mnuFileSave_Click() {
    report::saveReport(this, reportInputs(), report::savedStyle());
}

void frmMain::mnuFilePrint_Click() {
    report::printReport(this, reportInputs(), report::printedStyle());
}

// Save and Print repeat the menu commands with the toolbar's own texts.
void frmMain::tbToolBar_ButtonClick(QAction* button) {
    const QString key = button ? button->data().toString() : QString();
    if (key == QLatin1String("New")) {
        mnuFileNew_Click();
    } else if (key == QLatin1String("Save")) {
        report::saveReport(this, reportInputs(), report::savedToolbarStyle());
    } else if (key == QLatin1String("Print")) {
        report::printReport(this, reportInputs(), report::printedToolbarStyle());
    } else if (key == QLatin1String("Sample")) {
        openPropertiesDialog();
    } else if (key == QLatin1String("Graph")) {
        frmgraphresult* graph = frmgraphresult::instance();
        showInFront(graph);
        placeOnSmallScreen(graph, 1005, 750);
    }
}

// ---------------------------------------------------------------------------
// Clear and New

void frmMain::clearAccuracyFrame() {
    setEnabledAll({fraaccuracy, lblsumca, lblsuman, lbldiff, txtsumca, txtsuman, txtdiff}, false);
    txtsumca->clear();
    txtsuman->clear();
    txtdiff->clear();
}

void frmMain::cmdclear_Click() {
    for (QLineEdit* b : analysisBoxes())
        b->setText(QString());
    cmdread->setEnabled(false);
    cmdcalc->setEnabled(false);
    mnusettingis->setEnabled(true);
    mnusittingac->setEnabled(true);
    txtt->setFocus();
    clearLangelierRyznar();
    if (sweepChecked()) toolbarButton(9)->setEnabled(false);
    clearAccuracyFrame();
    cmdaccuracy->setEnabled(false);
    setBackColor(cmdaccuracy, vb::ButtonFace);
    cmdshow->setEnabled(false);
    setState(Workflow::EnteringData);
}

void frmMain::mnuFileNew_Click() {
    for (QLineEdit* b : analysisBoxes())
        b->setText(QString());
    cmdaccuracy->setEnabled(false);
    mnusettingis->setEnabled(true);
    mnusittingac->setEnabled(true);
    cmdread->setEnabled(false);
    cmdcalc->setEnabled(false);
    cmdclear->setEnabled(false);
    cmdshow->setEnabled(false);
    setBackColor(cmdaccuracy, vb::ButtonFace);
    setState(Workflow::EnteringDataNew);
    txtt->setFocus();
    clearAccuracyFrame();
    frasample->setEnabled(false);
    for (QLineEdit* b : {txtnam, txtloc, txtorg, txtdat}) {
        b->setEnabled(false);
        b->clear();
    }
    if (sweepChecked()) toolbarButton(9)->setEnabled(false);
}

// ---------------------------------------------------------------------------
// Read Data, the accuracy test, Calculate and Show results

void frmMain::cmdread_Click() {
    try {
        const ReadDataResult r = readAnalysis(theEngine(), analysisTexts(), theOptions().equations,
                                              theOptions().index.bllr);
        switch (r.outcome) {
        case ReadDataResult::Outcome::Message:
            platform().message(this, QString::fromStdString(r.messageText),
                               QString::fromStdString(r.messageTitle), Platform::Icon::None);
            break;
        case ReadDataResult::Outcome::Accepted:
            cmdcalc->setEnabled(true);
            setState(Workflow::ReadyForAnalysis);
            break;
        case ReadDataResult::Outcome::Rejected:
            setState(Workflow::AnalysisRejected);
            break;
        }
    } catch (const std::exception& e) {
        reportFailure(QStringLiteral("Read Data"), e.what());
    }
}

void frmMain::cmdaccuracy_Click() {
    setEnabledAll({fraaccuracy, lblsumca, lblsuman, lbldiff, txtsumca, txtsuman, txtdiff}, true);
    showAccuracySums();
}

void frmMain::showAccuracySums() {
    const AnalysisRecord& r = theEngine().rec;
    txtsumca->setText(numberToBox(fmt::rounded(r.sumca, 5)));
    txtsuman->setText(numberToBox(fmt::rounded(r.suman, 5)));
    txtdiff->setText(numberToBox(fmt::rounded(r.diff, 5)));
}

void frmMain::cmdcalc_Click() {
    const frmOptions* options = frmOptions::instance();
    const CalcInputs in =
        options->chkphsweep->isChecked()
            ? calcInputs(analysisTexts(), numberFromBox(options->txtinitialph->text()),
                         numberFromBox(options->txtincrementph->text()),
                         numberFromBox(options->txtstep->text()))
            : calcInputs(analysisTexts());
    try {
        theEngine().calculate(theOptions().equations, in);
    } catch (const std::exception& e) {
        reportFailure(QStringLiteral("Calculate"), e.what());
    }
}

void frmMain::cmdshow_Click() {
    cmdcalc->setEnabled(false);
    cmdread->setEnabled(false);
    mnusettingis->setEnabled(false);
    mnusittingac->setEnabled(false);
    try {
        publishResultsWindows(theEngine(), theOptions());
        showResultsWindow(theEngine(), theOptions());
    } catch (const std::exception& e) {
        reportFailure(QStringLiteral("Show results"), e.what());
    }
}

// ---------------------------------------------------------------------------
// What the engine does to the window

void frmMain::pointCompleted(bool sweep) {
    setState(Workflow::AnalysisDone);
    cmdclear->setEnabled(true);
    cmdshow->setEnabled(true);
    if (sweep) toolbarButton(9)->setEnabled(true);
    toolbarButton(3)->setEnabled(true);
    toolbarButton(5)->setEnabled(true);
    mnuFileSave->setEnabled(true);
    mnuFilePrint->setEnabled(true);
}

void frmMain::ionBalanceJudged(bool acceptable) {
    setBackColor(cmdaccuracy, acceptable ? vb::Green : vb::Red);
    cmdaccuracy->setEnabled(true);
    setState(acceptable ? Workflow::AccuracyAcceptable : Workflow::AccuracyUnacceptable);
}

void frmMain::ionBalanceDone() {
    if (enabledFlag(fraaccuracy)) showAccuracySums();
}

void frmMain::measuredPointReady() {
    publishResultsWindows(theEngine(), theOptions());
}

void frmMain::message(const std::string& text, const std::string& title, MessageIcon icon) {
    platform().message(this, QString::fromStdString(text), QString::fromStdString(title),
                       platformIcon(icon));
}

// ---------------------------------------------------------------------------
// Validation of the analysis boxes, on every change of their text

bool frmMain::rejectText(QLineEdit* box) {
    const std::optional<std::string> rejection =
        checkBoxText(numberFromBox(box->text()), box == txtph);
    if (!rejection) return false;
    platform().message(this, QString::fromStdString(*rejection),
                       QString::fromLatin1(kBoxMessageTitle), Platform::Icon::Information);
    box->setText(QString());
    return true;
}

void frmMain::workflowAfterEdit() {
    if (state_ == Workflow::ReadyForAnalysis) cmdcalc->setEnabled(false);
    if (state_ == Workflow::AnalysisDone) {
        cmdread->setEnabled(true);
        cmdcalc->setEnabled(false);
        mnusettingis->setEnabled(true);
        mnusittingac->setEnabled(true);
    }
    if (sweepChecked()) toolbarButton(9)->setEnabled(false);
}

void frmMain::plainChange(QLineEdit* box) {
    if (rejectText(box)) return;
    cmdclear->setEnabled(false);
    cmdshow->setEnabled(false);
    workflowAfterEdit();
}

void frmMain::enterReadyToRead(bool enableRead, bool disableCalc) {
    setState(Workflow::ReadyToRead);
    if (enableRead) cmdread->setEnabled(true);
    if (disableCalc) cmdcalc->setEnabled(false);
}

bool frmMain::filled(const PerField<bool>& needed) const {
    for (const FieldInfo& fi : kFields)
        if (needed[fi.field] && box(fi.field)->text().isEmpty()) return false;
    return true;
}

void frmMain::lewisBlock() {
    if (!theOptions().equations.bllewis) return;
    if (filled(arrangement(Equation::Lewis, false).needed)) enterReadyToRead(true, true);
}

void frmMain::russellBlock() {
    if (!theOptions().equations.blrus) return;
    if (filled(arrangement(Equation::Russell, larsonSkoldChecked()).needed))
        enterReadyToRead(true, true);
}

void frmMain::langelierBlock(QLineEdit* edited) {
    if (!theOptions().equations.bllang) return;
    const bool larsonSkold = theOptions().index.bllr;
    const PerField<bool> needed = arrangement(Equation::Langelier, larsonSkold).needed;
    if (!larsonSkold) {
        if (filled(needed)) enterReadyToRead(true, false);
        return;
    }
    // with chloride and sulphate asked for, every other box filled offers
    // Read Data (the edited box, when empty, takes it back)
    bool all = true, othersFilled = true;
    for (const FieldInfo& fi : kFields) {
        if (!needed[fi.field] || !box(fi.field)->text().isEmpty()) continue;
        all = false;
        if (box(fi.field) != edited) othersFilled = false;
    }
    if (all) setState(Workflow::ReadyToRead);
    if (othersFilled) enterReadyToRead(true, false);
}

void frmMain::runBlock(Block block, QLineEdit* box) {
    switch (block) {
    case Block::Lewis:
        lewisBlock();
        break;
    case Block::Russell:
        russellBlock();
        break;
    case Block::Langelier:
        langelierBlock(box);
        break;
    }
}

void frmMain::requirementChange(QLineEdit* box, std::initializer_list<Block> blocks) {
    // the number check, and for pH its range
    if (rejectText(box)) return;
    cmdclear->setEnabled(false);
    cmdshow->setEnabled(false);
    for (Block b : blocks)
        runBlock(b, box);
    workflowAfterEdit();
    if (box->text().isEmpty()) cmdread->setEnabled(false);
}

void frmMain::chlorideSulphateChange(QLineEdit* box) {
    if (rejectText(box)) return;
    cmdclear->setEnabled(false);
    cmdshow->setEnabled(false);
    if (theOptions().index.bllr) {
        if (filled(arrangement(Equation::Langelier, true).needed)) enterReadyToRead(true, true);
        if (txtcl->text().isEmpty() || txtso4->text().isEmpty()) cmdread->setEnabled(false);
    }
    russellBlock();
    workflowAfterEdit();
}

void frmMain::txtal_Change() {
    plainChange(txtal);
}
void frmMain::txtco3_Change() {
    plainChange(txtco3);
}
void frmMain::txtf_Change() {
    plainChange(txtf);
}
void frmMain::txtfe_Change() {
    plainChange(txtfe);
}
void frmMain::txthco3_Change() {
    plainChange(txthco3);
}
void frmMain::txtk_Change() {
    plainChange(txtk);
}
void frmMain::txtmg_Change() {
    plainChange(txtmg);
}
void frmMain::txtmn_Change() {
    plainChange(txtmn);
}
void frmMain::txtna_Change() {
    plainChange(txtna);
}
void frmMain::txtno2_Change() {
    plainChange(txtno2);
}
void frmMain::txtno3_Change() {
    plainChange(txtno3);
}
void frmMain::txtzn_Change() {
    plainChange(txtzn);
}

void frmMain::txtalk_Change() {
    requirementChange(txtalk, {Block::Lewis, Block::Langelier, Block::Russell});
}
void frmMain::txtt_Change() {
    requirementChange(txtt, {Block::Lewis, Block::Langelier, Block::Russell});
}
void frmMain::txtph_Change() {
    requirementChange(txtph, {Block::Lewis, Block::Russell, Block::Langelier});
}
void frmMain::txtca_Change() {
    requirementChange(txtca, {Block::Langelier, Block::Lewis, Block::Russell});
}

void frmMain::txtec_Change() {
    if (rejectText(txtec)) return;
    cmdclear->setEnabled(false);
    cmdshow->setEnabled(false);
    if (theOptions().equations.blrus && filled(arrangement(Equation::Russell, false).needed))
        setState(Workflow::ReadyToRead);
    russellBlock();
    workflowAfterEdit();
    if (txtec->text().isEmpty()) cmdread->setEnabled(false);
}

void frmMain::txttds_Change() {
    if (rejectText(txttds)) return;
    cmdclear->setEnabled(false);
    cmdshow->setEnabled(false);
    langelierBlock(txttds);
    if (theOptions().equations.blrus && filled(arrangement(Equation::Russell, false).needed))
        enterReadyToRead(true, true);
    workflowAfterEdit();
    if (txttds->text().isEmpty()) cmdread->setEnabled(false);
}

void frmMain::txtcl_Change() {
    chlorideSulphateChange(txtcl);
}
void frmMain::txtso4_Change() {
    chlorideSulphateChange(txtso4);
}

} // namespace velmora
