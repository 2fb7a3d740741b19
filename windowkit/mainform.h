// What the other windows tell the main window or ask of it. The main window
// implements this and registers itself while it is loaded; the dialogs and
// result windows, which sit below it, never include it.
#pragma once

#include "intake/arrangement.h"

#include <functional>

class QWidget;

namespace velmora {

class MainForm {
public:
    virtual ~MainForm() = default;
    virtual QWidget* asWidget() = 0;

    // The ionic strength dialog's OK: the chosen equation, with the Options
    // dialog's Larson-Skold box as it stands.
    virtual void equationChosen(Equation chosen, bool larsonSkold) = 0;
    // The Options dialog published its index flags (before the sweep list).
    virtual void indicesApplied() = 0;
    // The Options dialog built the sweep list.
    virtual void sweepApplied() = 0;
    // The Options dialog's Apply or OK finished; `sweepChecked` is its
    // sweep check box.
    virtual void optionsApplied(bool sweepChecked) = 0;
    // An interpretation window was opened from the Results window.
    virtual void interpretationOpened() = 0;
    // Both the chloride and the sulphate box hold a value.
    virtual bool chlorideAndSulphateGiven() const = 0;
};

// The main window while it is loaded, else null.
MainForm* mainForm();
void setMainForm(MainForm* form);
// The main window as a parent for a new dialog (null when not loaded).
QWidget* mainWindowParent();

// Help > About, installed by the program's start.
void setAboutHandler(std::function<void()> handler);
void showAbout();

} // namespace velmora
