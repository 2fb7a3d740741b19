#include "options/frmionic.h"

#include "options/frmoptions.h"
#include "windowkit/formsupport.h"
#include "windowkit/mainform.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace velmora {

frmionic::frmionic()
    : SingleWindow(Design{"frmionic",
                          QStringLiteral("Ionic strength equations"),
                          QStringLiteral("Ionic strength equations :"),
                          "lblionic",
                          QStringLiteral("Please specify ionic strength equation "),
                          {{"optrus", QStringLiteral("Russell")},
                           {"optlang", QStringLiteral("Langelier")},
                           {"optlewis", QStringLiteral("Lewis and Randall")}},
                          1,
                          QStringLiteral("&OK"),
                          4215}),
      lblionic(prompt), optrus(options[0]), optlang(options[1]), optlewis(options[2]) {}

void frmionic::cmdOK_Click() {
    const Equation chosen = optlewis->isChecked() ? Equation::Lewis
                            : optrus->isChecked() ? Equation::Russell
                                                  : Equation::Langelier;
    // the main window sets the equation flags as it arranges its boxes
    if (MainForm* m = mainForm())
        m->equationChosen(chosen, frmOptions::instance()->chklr->isChecked());
    hide();
}

} // namespace velmora
