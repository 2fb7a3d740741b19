#include "options/frmionic.h"

#include "mainwindow/formsupport.h"
#include "mainwindow/frmmain.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"

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
    EquationFlags& eq = theOptions().equations;
    frmMain* m = frmMain::instance();
    const bool larsonSkold = frmOptions::instance()->chklr->isChecked();
    const std::initializer_list<QLineEdit*> ions = {m->txtal, m->txtfe,  m->txtmn,  m->txtzn,
                                                    m->txtmg, m->txtso4, m->txtcl,  m->txtf,
                                                    m->txtna, m->txtno3, m->txtno2, m->txtk};
    const std::initializer_list<QWidget*> ionLabels = {m->lblal, m->lblfe,  m->lblmn,  m->lblzn,
                                                       m->lblmg, m->lblso4, m->lblcl,  m->lblf,
                                                       m->lblna, m->lblno3, m->lblno2, m->lblk};
    auto disableAndEmpty = [](std::initializer_list<QLineEdit*> boxes) {
        for (QLineEdit* b : boxes) {
            b->setEnabled(false);
            b->setText(QString());
        }
    };
    auto anions = [&](bool on, quint32 colour) {
        setEnabledAll({m->frmanions, m->txtso4, m->txtcl, m->lblso4, m->lblcl}, on);
        setBackColor(m->txtso4, colour);
        setBackColor(m->txtcl, colour);
    };

    // Lewis and Randall: every ion
    if (optlewis->isChecked()) {
        eq.bllewis = true;
        eq.bllang = false;
        for (QLineEdit* b : ions)
            b->setEnabled(true);
        m->fratdsec->setEnabled(false);
        m->txttds->setEnabled(false);
        m->txttds->setText(QString());
        m->txtec->setText(QString());
        setEnabledAll({m->lbltds, m->txtec, m->lblec}, false);
        for (QLineEdit* b : ions)
            setBackColor(b, vb::Yellow);
        setBackColor(m->txtco3, vb::Green);
        setBackColor(m->txthco3, vb::Green);
        if (allFilled({m->txtca, m->txtalk, m->txtph, m->txtt})) {
            m->setStatusText(workflow::ReadyToRead);
            m->cmdread->setEnabled(true);
        } else {
            m->cmdread->setEnabled(false);
        }
        for (QWidget* l : ionLabels)
            l->setEnabled(true);
        setEnabledAll({m->txtco3, m->txthco3, m->lblco3, m->lblhco3, m->frmcations, m->frmanions},
                      true);
        setEnabledAll({m->cmdcalc, m->cmdshow, m->cmdclear}, false);
    } else {
        eq.bllewis = false;
        disableAndEmpty({m->txtal, m->txtfe, m->txtmn, m->txtzn, m->txtmg});
        if (!larsonSkold) disableAndEmpty({m->txtso4, m->txtcl});
        disableAndEmpty({m->txtf, m->txtna, m->txtno3, m->txtno2});
        m->txtco3->setText(QString());
        m->txthco3->setText(QString());
        disableAndEmpty({m->txtk});
        if (allFilled({m->txtca, m->txtalk, m->txtph, m->txtt, m->txttds})) {
            m->setStatusText(workflow::ReadyToRead);
            m->cmdread->setEnabled(true);
        } else {
            m->setStatusText(workflow::EnteringData);
            m->cmdread->setEnabled(false);
        }
        for (QLineEdit* b : ions)
            setBackColor(b, vb::LightBlue);
        setBackColor(m->txtco3, vb::LightBlue);
        setBackColor(m->txthco3, vb::LightBlue);
        setEnabledAll({m->lblal, m->lblfe, m->lblmn, m->lblzn, m->lblmg, m->txtco3, m->txthco3,
                       m->lblco3, m->lblhco3},
                      false);
        m->frmcations->setEnabled(true);
        m->frmanions->setEnabled(false);
        setEnabledAll({m->lblso4, m->lblcl, m->lblf, m->lblna, m->lblno3, m->lblno2, m->lblk},
                      false);
        setEnabledAll({m->txttds, m->lbltds, m->fratdsec}, true);
    }

    // Langelier: dissolved solids
    if (optlang->isChecked()) {
        eq.bllang = true;
        anions(larsonSkold, larsonSkold ? vb::Yellow : vb::LightBlue);
        m->txtec->setText(QString());
        setEnabledAll({m->txtec, m->lblec}, false);
    }

    // Russell: conductivity
    if (optrus->isChecked()) {
        eq.blrus = true;
        eq.bllang = false;
        m->fratdsec->setEnabled(true);
        m->txttds->setEnabled(false);
        m->txttds->setText(QString());
        m->lbltds->setEnabled(false);
        setEnabledAll({m->txtec, m->lblec}, true);
        setBackColor(m->txtec, vb::Cyan);
        setBackColor(m->txttds, vb::LightBlue);
        setEnabledAll({m->cmdcalc, m->cmdclear, m->cmdshow, m->cmdread, m->cmdaccuracy}, false);
        setBackColor(m->cmdaccuracy, vb::ButtonFace);
        m->clearAccuracyFrame();
        if (allFilled({m->txtt, m->txtph, m->txtec, m->txtalk, m->txtca})) {
            m->cmdread->setEnabled(true);
            m->setStatusText(workflow::ReadyToRead);
        } else {
            m->cmdread->setEnabled(false);
            m->setStatusText(workflow::EnteringData);
        }
        anions(larsonSkold, larsonSkold ? vb::Yellow : vb::LightBlue);
    } else {
        eq.blrus = false;
        setBackColor(m->txtec, vb::LightBlue);
        setBackColor(m->txttds, vb::Cyan);
        m->clearAccuracyFrame();
        m->cmdaccuracy->setEnabled(false);
        setBackColor(m->cmdaccuracy, vb::ButtonFace);
    }

    hide();
}

} // namespace velmora
