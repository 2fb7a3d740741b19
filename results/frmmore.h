// The equilibrium data window: ionic strength, the water and carbonate
// constants, the carbonate species, the saturation pH and the activity
// coefficients of the measured-pH point.
#pragma once

#include "engine/engine.h"
#include "windowkit/formsupport.h"

#include <QWidget>

class QGroupBox;
class QLabel;
class QLineEdit;

namespace velmora {

class frmmore : public SingleWindow<frmmore, QWidget> {
    Q_OBJECT

public:
    // Writes the equilibrium values of element 0 and the record's constants.
    void publishEquilibrium(const Engine& engine);
    // The Debye-Huckel coefficients (Debye-Huckel equation chosen).
    void publishDebye(const AnalysisRecord& rec);
    // The Davies constant and coefficients (Davies equation chosen).
    void publishDavies(const AnalysisRecord& rec);

public slots:
    void cmddiscript_Click();

private:
    friend SingleWindow;
    frmmore();
    QLineEdit* box(const char* name) const;
    QLabel* label(const char* name) const;
    void setBox(const char* name, const std::string& text);

    QGroupBox* fradavies_ = nullptr;
    QGroupBox* fradebye_ = nullptr;
};

} // namespace velmora
