// The Options dialog: which corrosion and scaling indices are reported, and
// the pH sweep with its start pH, increment and number of steps. Apply
// publishes the index flags and the sweep list (velmora::theOptions()),
// which outlive the dialog, and tells the main window (MainForm), which
// arranges itself.
#pragma once

#include "windowkit/formsupport.h"

#include <QDialog>

#include <optional>
#include <string>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabBar;

namespace velmora {

// The one Options dialog (instance()), created hidden with its design
// values on first use.
class frmOptions : public SingleWindow<frmOptions, QDialog> {
    Q_OBJECT

public:
    QTabBar* tbsOptions = nullptr;
    QWidget* picoptions[2] = {nullptr, nullptr}; // the two pages
    QGroupBox *fraSample2 = nullptr, *frasweep = nullptr;
    QLabel *lblindex = nullptr, *Label3 = nullptr;
    QCheckBox *chkli = nullptr, *chkri = nullptr, *chkpor = nullptr, *chklr = nullptr,
              *chkdfi = nullptr, *chkai = nullptr, *chkme = nullptr, *chksl = nullptr;
    QCheckBox* chkphsweep = nullptr;
    QLineEdit *txtinitialph = nullptr, *txtincrementph = nullptr, *txtstep = nullptr;
    QLabel *lblini = nullptr, *lblstep = nullptr, *lblnum = nullptr;
    QLabel *lblini2 = nullptr, *lblstep2 = nullptr, *lblnum2 = nullptr;
    QPushButton *cmdOK = nullptr, *cmdCancel = nullptr, *cmdApply = nullptr;

public slots:
    // Apply; false when it stopped early with a message.
    bool cmdApply_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void chkphsweep_Click();
    void txtinitialph_Change();
    void txtincrementph_Change();
    void txtstep_Change();
    void tbsOptions_Click();
    void selectNextTab(); // Ctrl+Tab

    void reject() override; // Escape is Cancel

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    friend SingleWindow;
    frmOptions();
    // Apply; OK hides the dialog once the sweep is applied.
    bool apply(bool hideOnceApplied);
    void showMessage(const std::string& text);
    void checkBox(QLineEdit* box, const std::optional<std::string>& message);
};

} // namespace velmora
