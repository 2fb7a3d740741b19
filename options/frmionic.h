// The ionic strength equation dialog: Russell (conductivity), Langelier
// (dissolved solids) or Lewis and Randall (every ion). Its OK publishes the
// three flags (velmora::theOptions().equations) and rearranges the main
// window's boxes for the chosen equation.
#pragma once

#include <QDialog>

class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace velmora {

class frmionic : public QDialog {
    Q_OBJECT

public:
    static frmionic* instance();
    static bool isLoaded();
    ~frmionic() override;

    QGroupBox* frame = nullptr; // named frmionic, like the dialog
    QLabel* lblionic = nullptr;
    QRadioButton *optrus = nullptr, *optlang = nullptr, *optlewis = nullptr;
    QPushButton *cmdOK = nullptr, *cmdCancel = nullptr;

public slots:
    void cmdOK_Click();
    void cmdCancel_Click();
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    frmionic();
};

} // namespace velmora
