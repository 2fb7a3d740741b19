#include "options/frmactivity.h"

#include "options/optionstate.h"

#include <QRadioButton>

namespace velmora {

// the blanks of the captions line the validity limits up in a column
frmactivity::frmactivity()
    : SingleWindow(
          Design{"frmactivity",
                 QStringLiteral("Activity coefficient equations"),
                 QStringLiteral("Activity coefficients :"),
                 "lblactivity",
                 QStringLiteral("Please specify activity coefficient  equation"),
                 {{"optdebye", QStringLiteral("Debye - Huckel                      I<0.005")},
                  {"optgun", QStringLiteral("Guntelberg                             I<0.1")},
                  {"optedebye", QStringLiteral("Extended Debye - Huckel      I<0.1")},
                  {"optdavies", QStringLiteral("Davies                                   I<0.5")}},
                 2,
                 QStringLiteral("&Ok"),
                 4695}),
      lblactivity(prompt), optdebye(options[0]), optgun(options[1]), optedebye(options[2]),
      optdavies(options[3]) {}

void frmactivity::cmdOK_Click() {
    EquationFlags& eq = theOptions().equations;
    eq.bldavies = optdavies->isChecked();
    eq.bledebye = optedebye->isChecked();
    eq.blgun = optgun->isChecked();
    eq.bldebye = optdebye->isChecked();
    hide();
}

} // namespace velmora
