// The sample properties dialog: who took the sample, for which
// organization, when and where. Its boxes are the store of the properties
// while it is loaded.
#pragma once

#include "windowkit/formsupport.h"

#include <QString>
#include <QWidget>

class QKeyEvent;
class QLineEdit;
class QPushButton;

namespace velmora {

class frmproperties : public SingleWindow<frmproperties, QWidget> {
    Q_OBJECT

public:
    QString operatorName() const;
    QString familyName() const;
    QString organization() const;
    QString date() const;
    QString location() const;

public slots:
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    // As in any dialog: Enter presses the focused button, else the default
    // one (OK); Escape presses Cancel.
    void keyPressEvent(QKeyEvent* event) override;

private:
    friend SingleWindow;
    frmproperties();
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QLineEdit* txtname_ = nullptr;
    QLineEdit* txtfamily_ = nullptr;
    QLineEdit* txtorgan_ = nullptr;
    QLineEdit* txtdate_ = nullptr;
    QLineEdit* txtlocation_ = nullptr;
};

} // namespace velmora
