// The ionic strength equation dialog: Russell (conductivity), Langelier
// (dissolved solids) or Lewis and Randall (every ion). Its OK publishes the
// chosen equation to the main window (MainForm), which sets the three flags
// (velmora::theOptions().equations) as it arranges its boxes.
#pragma once

#include "options/choicedialog.h"
#include "windowkit/formsupport.h"

namespace velmora {

class frmionic : public SingleWindow<frmionic, ChoiceDialog> {
    Q_OBJECT

public:
    QLabel* lblionic = nullptr;
    QRadioButton *optrus = nullptr, *optlang = nullptr, *optlewis = nullptr;

public slots:
    void cmdOK_Click() override;

private:
    friend SingleWindow;
    frmionic();
};

} // namespace velmora
