// The Results window: the eight indices at the measured pH, one
// interpretation button per index and the way to the equilibrium data.
#pragma once

#include "windowkit/formsupport.h"
#include "options/optionstate.h"
#include "results/interpretation.h"

#include <QColor>
#include <QString>
#include <QWidget>

#include <vector>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace velmora {

// The one Results window (instance()), created hidden in its design state on
// first use.
class frmresult : public SingleWindow<frmresult, QWidget> {
    Q_OBJECT

public:
    // Enables the frames, labels, boxes and buttons of every index and writes
    // the values of element 0 (the first step of publishing the results).
    void publishIndices(const Engine& engine);

    // Colours the interpretation buttons from the interpretation tables; the
    // Larson-Skold display is emptied and disabled when that index is not
    // chosen.
    void colourButtons(const Engine& engine, const IndexFlags& chosen);

    // Empties the Langelier and Ryznar boxes (the main window's Clear).
    void clearLangelierRyznar();

    // Explains one index in the interpretation window (the buttons' click).
    void interpret(interp::Index index);

    // The background colour a button was given; invalid while it has none.
    QColor buttonColour(interp::Index index) const;
    // The composed text of the last interpretation.
    const QString& interpretationText() const { return interpretationtext_; }

public slots:
    void cmdlan_Click();
    void cmdri_Click();
    void cmdpor_Click();
    void cmdai_Click();
    void cmddfi_Click();
    void cmdlr_Click();
    void cmdme_Click();
    void cmdsl_Click();
    void cmdmore_Click();

private:
    friend SingleWindow;
    frmresult();
    struct IndexControls {
        interp::Index index;
        QLabel* label = nullptr;
        QLineEdit* box = nullptr;
        QPushButton* button = nullptr;
    };
    const IndexControls& controls(interp::Index index) const;
    void setButtonColour(QPushButton* button, const QColor& colour);

    QGroupBox* fraindex_ = nullptr;
    QGroupBox* frainter_ = nullptr;
    QPushButton* cmdmore_ = nullptr;
    std::vector<IndexControls> indices_;
    QString interpretationtext_;
};

} // namespace velmora
