// The main window arranges its boxes for the options the dialogs publish:
// which boxes are enabled, emptied and how they are coloured all follow the
// arrangement of the chosen equation and index.
#include "intake/arrangement.h"
#include "mainwindow/frmmain.h"
#include "options/optionstate.h"
#include "windowkit/formsupport.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace velmora {

namespace {

quint32 colourOf(Role role) {
    switch (role) {
    case Role::Required:
        return vb::Cyan;
    case Role::Optional:
        return vb::Yellow;
    case Role::CarbonatePair:
        return vb::Green;
    case Role::Unused:
        break;
    }
    return vb::LightBlue;
}

// The boxes an equation may leave unused, in the order they are emptied.
constexpr Field kIons[] = {Field::al,  Field::fe,  Field::mn,   Field::zn, Field::mg,
                           Field::so4, Field::cl,  Field::f,    Field::na, Field::no3,
                           Field::no2, Field::co3, Field::hco3, Field::k};

} // namespace

QWidget* frmMain::asWidget() {
    return this;
}

void frmMain::arrangeBox(Field f, const Arrangement& a) {
    const bool used = a.role[f] != Role::Unused;
    box(f)->setEnabled(used);
    if (!used) box(f)->setText(QString());
    setBackColor(box(f), colourOf(a.role[f]));
    label(f)->setEnabled(used);
}

// The equation changes the engine's flags as it goes: the change handlers
// that emptying a box runs see the flags of that moment.
void frmMain::equationChosen(Equation chosen, bool larsonSkold) {
    EquationFlags& eq = theOptions().equations;
    const Arrangement a = arrangement(chosen, larsonSkold);
    // the dialog offers Read Data by the equation's own boxes (the index's
    // are left to the boxes' change handlers)
    auto ready = [this](Equation e) { return filled(arrangement(e, false).needed); };

    if (chosen == Equation::Lewis) {
        eq.bllewis = true;
        eq.bllang = false;
        fratdsec->setEnabled(false);
        for (Field f : {Field::tds, Field::ec})
            arrangeBox(f, a);
        for (Field f : kIons)
            arrangeBox(f, a);
        const bool readyToRead = ready(Equation::Lewis);
        if (readyToRead) setState(Workflow::ReadyToRead);
        cmdread->setEnabled(readyToRead);
        setEnabledAll({frmcations, frmanions}, true);
        setEnabledAll({cmdcalc, cmdshow, cmdclear}, false);
    } else {
        eq.bllewis = false;
        for (Field f : kIons)
            arrangeBox(f, a);
        // the dissolved-solids boxes decide first; Russell decides again below
        const bool solidsReady = ready(Equation::Langelier);
        setState(solidsReady ? Workflow::ReadyToRead : Workflow::EnteringData);
        cmdread->setEnabled(solidsReady);
        frmcations->setEnabled(true);
        frmanions->setEnabled(a.role[Field::cl] != Role::Unused);
        fratdsec->setEnabled(true);
        if (chosen == Equation::Langelier) {
            eq.bllang = true;
        } else {
            eq.blrus = true;
            eq.bllang = false;
        }
        for (Field f : {Field::tds, Field::ec})
            arrangeBox(f, a);
    }

    if (chosen == Equation::Russell) {
        setEnabledAll({cmdcalc, cmdclear, cmdshow, cmdread, cmdaccuracy}, false);
        setBackColor(cmdaccuracy, vb::ButtonFace);
        clearAccuracyFrame();
        const bool readyToRead = ready(Equation::Russell);
        cmdread->setEnabled(readyToRead);
        setState(readyToRead ? Workflow::ReadyToRead : Workflow::EnteringData);
    } else {
        eq.blrus = false;
        // the dissolved-solids box keeps its colour when Lewis and Randall
        // leaves it unused
        setBackColor(txttds, vb::Cyan);
        clearAccuracyFrame();
        cmdaccuracy->setEnabled(false);
        setBackColor(cmdaccuracy, vb::ButtonFace);
    }
}

void frmMain::indicesApplied() {
    const EquationFlags& eq = theOptions().equations;
    const bool larsonSkold = theOptions().index.bllr;
    if (!eq.bllang && !eq.blrus) return;
    const Arrangement a = arrangement(eq, larsonSkold);
    const bool used = a.role[Field::cl] != Role::Unused;
    setEnabledAll({frmanions, txtcl, txtso4, lblcl, lblso4}, used);
    // Apply empties the pair it leaves unused under Langelier only
    if (!used && eq.bllang) {
        txtso4->setText(QString());
        txtcl->setText(QString());
    }
    // and paints it as the index's inputs either way
    setBackColor(txtcl, vb::Yellow);
    setBackColor(txtso4, vb::Yellow);
    if (larsonSkold)
        cmdread->setEnabled(false);
    else if (eq.bllang)
        cmdread->setEnabled(filled(a.needed));
}

void frmMain::sweepApplied() {
    cmdread->setEnabled(true);
}

void frmMain::optionsApplied(bool sweepChecked) {
    cmdcalc->setEnabled(false);
    cmdaccuracy->setEnabled(false);
    if (!sweepChecked) toolbarButton(9)->setEnabled(false);
    cmdclear->setEnabled(false);
    cmdshow->setEnabled(false);
}

void frmMain::interpretationOpened() {
    cmdcalc->setEnabled(false);
}

bool frmMain::chlorideAndSulphateGiven() const {
    return !txtcl->text().isEmpty() && !txtso4->text().isEmpty();
}

} // namespace velmora
