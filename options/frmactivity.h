// The activity coefficient equation dialog. Its OK publishes the four flags
// (velmora::theOptions().equations) and touches nothing else.
#pragma once

#include "options/choicedialog.h"
#include "windowkit/formsupport.h"

namespace velmora {

class frmactivity : public SingleWindow<frmactivity, ChoiceDialog> {
    Q_OBJECT

public:
    QLabel* lblactivity = nullptr;
    QRadioButton *optdebye = nullptr, *optgun = nullptr, *optedebye = nullptr, *optdavies = nullptr;

public slots:
    void cmdOK_Click() override;

private:
    friend SingleWindow;
    frmactivity();
};

} // namespace velmora
