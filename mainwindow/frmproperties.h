// The sample properties dialog: who took the sample, for which
// organization, when and where. Its boxes are the store of the properties
// while it is loaded.
#pragma once

#include "mainwindow/formsupport.h"

#include <QString>
#include <QWidget>

class QLineEdit;

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

private:
    friend SingleWindow;
    frmproperties();
    QLineEdit* txtname_ = nullptr;
    QLineEdit* txtfamily_ = nullptr;
    QLineEdit* txtorgan_ = nullptr;
    QLineEdit* txtdate_ = nullptr;
    QLineEdit* txtlocation_ = nullptr;
};

} // namespace velmora
