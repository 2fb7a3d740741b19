// The about window: the program's title, version and purpose. Shown modal
// over the main window; loaded at each opening and unloaded by its OK.
#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace velmora {

class frmAbout : public QDialog {
    Q_OBJECT

public:
    static frmAbout* instance();
    static bool isLoaded();
    ~frmAbout() override;

    QLabel *Image1 = nullptr, *lblTitle = nullptr, *lblVersion = nullptr, *lblDescription = nullptr,
           *lblDisclaimer = nullptr;
    QPushButton* cmdOK = nullptr;

    void Form_Load();

public slots:
    void cmdOK_Click();
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    frmAbout();
};

} // namespace velmora
