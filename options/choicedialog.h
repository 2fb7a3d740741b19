// What the two equation dialogs share: a frame named like the dialog with a
// prompt and one group of option buttons, OK and Cancel. OK is the dialog's
// own; Cancel (and Escape) unloads the dialog.
#pragma once

#include <QDialog>
#include <QList>
#include <QString>

#include <initializer_list>

class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace velmora {

class ChoiceDialog : public QDialog {
    Q_OBJECT

public:
    QGroupBox* frame = nullptr; // named like the dialog
    QLabel* prompt = nullptr;
    QPushButton *cmdOK = nullptr, *cmdCancel = nullptr;

public slots:
    virtual void cmdOK_Click() = 0;
    void cmdCancel_Click();
    void reject() override; // Escape is Cancel

protected:
    struct Option {
        const char* name;
        QString caption;
    };
    struct Design {
        const char* name;     // the dialog and its frame
        QString caption;      // the dialog
        QString frameCaption; // the frame
        const char* promptName;
        QString prompt;
        std::initializer_list<Option> options; // top to bottom
        int selected;                          // the option selected at load
        QString okCaption;
        int frameWidthTwips;
    };
    // Builds the dialog as `design` describes it.
    explicit ChoiceDialog(const Design& design);

    QList<QRadioButton*> options; // in the order of the design
};

} // namespace velmora
