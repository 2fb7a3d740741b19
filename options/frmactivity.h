// The activity coefficient equation dialog. Its OK publishes the four flags
// (velmora::theOptions().equations) and touches nothing else.
#pragma once

#include <QDialog>

class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace velmora {

class frmactivity : public QDialog {
    Q_OBJECT

public:
    static frmactivity* instance();
    static bool isLoaded();
    ~frmactivity() override;

    QGroupBox* frame = nullptr; // named frmactivity, like the dialog
    QLabel* lblactivity = nullptr;
    QRadioButton *optdebye = nullptr, *optgun = nullptr, *optedebye = nullptr, *optdavies = nullptr;
    QPushButton *cmdOK = nullptr, *cmdCancel = nullptr;

public slots:
    void cmdOK_Click();
    void cmdCancel_Click();
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    frmactivity();
};

} // namespace velmora
