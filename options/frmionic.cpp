#include "options/frmionic.h"

#include "mainwindow/formsupport.h"
#include "mainwindow/frmmain.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "platform/platform.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <initializer_list>

namespace velmora {

namespace {

frmionic* s_ionic = nullptr;

bool filled(std::initializer_list<const QLineEdit*> boxes) {
    for (const QLineEdit* b : boxes)
        if (b->text().isEmpty()) return false;
    return true;
}

void enable(std::initializer_list<QWidget*> widgets, bool on) {
    for (QWidget* w : widgets)
        w->setEnabled(on);
}

} // namespace

frmionic* frmionic::instance() {
    if (!s_ionic) s_ionic = new frmionic();
    return s_ionic;
}

bool frmionic::isLoaded() {
    return s_ionic != nullptr;
}

frmionic::~frmionic() {
    if (s_ionic == this) s_ionic = nullptr;
}

frmionic::frmionic() : QDialog(frmMain::isLoaded() ? frmMain::instance() : nullptr) {
    s_ionic = this;
    setObjectName(QStringLiteral("frmionic"));
    setWindowTitle(QStringLiteral("Ionic strength equations"));
    setAttribute(Qt::WA_DeleteOnClose);
    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(8);
    setFont(arial);

    frame = new QGroupBox(QStringLiteral("Ionic strength equations :"), this);
    frame->setObjectName(QStringLiteral("frmionic"));
    setTwipsGeometry(frame, 120, 120, 4215, 2055);
    lblionic = new QLabel(QStringLiteral("Please specify ionic strength equation "), frame);
    lblionic->setObjectName(QStringLiteral("lblionic"));
    setTwipsGeometry(lblionic, 120, 300, 3975, 285);
    auto option = [this](const char* name, const QString& caption, int top) {
        auto* o = new QRadioButton(caption, frame);
        o->setObjectName(QLatin1String(name));
        setTwipsGeometry(o, 360, top, 3600, 315);
        return o;
    };
    optrus = option("optrus", QStringLiteral("Russell"), 720);
    optlang = option("optlang", QStringLiteral("Langelier"), 1140);
    optlewis = option("optlewis", QStringLiteral("Lewis and Randall"), 1560);
    optlang->setChecked(true);

    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdOK->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);
    cmdOK->setDefault(true);
    setTwipsGeometry(cmdOK, 960, 2340, 1215, 375);
    setTwipsGeometry(cmdCancel, 2400, 2340, 1215, 375);
    setFixedSize(twipsToPixelsX(4455), twipsToPixelsY(2880));

    connect(cmdOK, &QPushButton::clicked, this, &frmionic::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmionic::cmdCancel_Click);
}

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
        enable({m->frmanions, m->txtso4, m->txtcl, m->lblso4, m->lblcl}, on);
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
        enable({m->lbltds, m->txtec, m->lblec}, false);
        for (QLineEdit* b : ions)
            setBackColor(b, vb::Yellow);
        setBackColor(m->txtco3, vb::Green);
        setBackColor(m->txthco3, vb::Green);
        if (filled({m->txtca, m->txtalk, m->txtph, m->txtt})) {
            m->setStatusText(workflow::ReadyToRead);
            m->cmdread->setEnabled(true);
        } else {
            m->cmdread->setEnabled(false);
        }
        for (QWidget* l : ionLabels)
            l->setEnabled(true);
        enable({m->txtco3, m->txthco3, m->lblco3, m->lblhco3, m->frmcations, m->frmanions}, true);
        enable({m->cmdcalc, m->cmdshow, m->cmdclear}, false);
    } else {
        eq.bllewis = false;
        disableAndEmpty({m->txtal, m->txtfe, m->txtmn, m->txtzn, m->txtmg});
        if (!larsonSkold) disableAndEmpty({m->txtso4, m->txtcl});
        disableAndEmpty({m->txtf, m->txtna, m->txtno3, m->txtno2});
        m->txtco3->setText(QString());
        m->txthco3->setText(QString());
        disableAndEmpty({m->txtk});
        if (filled({m->txtca, m->txtalk, m->txtph, m->txtt, m->txttds})) {
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
        enable({m->lblal, m->lblfe, m->lblmn, m->lblzn, m->lblmg, m->txtco3, m->txthco3, m->lblco3,
                m->lblhco3},
               false);
        m->frmcations->setEnabled(true);
        m->frmanions->setEnabled(false);
        enable({m->lblso4, m->lblcl, m->lblf, m->lblna, m->lblno3, m->lblno2, m->lblk}, false);
        enable({m->txttds, m->lbltds, m->fratdsec}, true);
    }

    // Langelier: dissolved solids
    if (optlang->isChecked()) {
        eq.bllang = true;
        anions(larsonSkold, larsonSkold ? vb::Yellow : vb::LightBlue);
        m->txtec->setText(QString());
        enable({m->txtec, m->lblec}, false);
    }

    // Russell: conductivity
    if (optrus->isChecked()) {
        eq.blrus = true;
        eq.bllang = false;
        m->fratdsec->setEnabled(true);
        m->txttds->setEnabled(false);
        m->txttds->setText(QString());
        m->lbltds->setEnabled(false);
        enable({m->txtec, m->lblec}, true);
        setBackColor(m->txtec, vb::Cyan);
        setBackColor(m->txttds, vb::LightBlue);
        enable({m->cmdcalc, m->cmdclear, m->cmdshow, m->cmdread, m->cmdaccuracy}, false);
        setBackColor(m->cmdaccuracy, vb::ButtonFace);
        m->clearAccuracyFrame();
        if (filled({m->txtt, m->txtph, m->txtec, m->txtalk, m->txtca})) {
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

void frmionic::cmdCancel_Click() {
    close();
}

void frmionic::reject() {
    cmdCancel_Click();
}

void frmionic::closeEvent(QCloseEvent* event) {
    event->accept();
    if (s_ionic == this) s_ionic = nullptr;
}

} // namespace velmora
