// The about window: the program's title, version and purpose. Shown modal
// over the main window; loaded at each opening and unloaded by its OK.
#pragma once

#include "windowkit/formsupport.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace velmora {

class frmAbout : public SingleWindow<frmAbout, QDialog> {
    Q_OBJECT

public:
    QLabel *Image1 = nullptr, *lblTitle = nullptr, *lblVersion = nullptr, *lblDescription = nullptr,
           *lblDisclaimer = nullptr;
    QPushButton* cmdOK = nullptr;

    void Form_Load();

public slots:
    void cmdOK_Click();
    void reject() override;

private:
    friend SingleWindow;
    frmAbout();
};

} // namespace velmora
