#include "options/frmactivity.h"

#include "mainwindow/formsupport.h"
#include "mainwindow/frmmain.h"
#include "options/optionstate.h"
#include "platform/platform.h"

#include <QCloseEvent>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

namespace velmora {

namespace {
frmactivity* s_activity = nullptr;
}

frmactivity* frmactivity::instance() {
    if (!s_activity) s_activity = new frmactivity();
    return s_activity;
}

bool frmactivity::isLoaded() {
    return s_activity != nullptr;
}

frmactivity::~frmactivity() {
    if (s_activity == this) s_activity = nullptr;
}

frmactivity::frmactivity() : QDialog(frmMain::isLoaded() ? frmMain::instance() : nullptr) {
    s_activity = this;
    setObjectName(QStringLiteral("frmactivity"));
    setWindowTitle(QStringLiteral("Activity coefficient equations"));
    setAttribute(Qt::WA_DeleteOnClose);
    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(8);
    setFont(arial);

    frame = new QGroupBox(QStringLiteral("Activity coefficients :"), this);
    frame->setObjectName(QStringLiteral("frmactivity"));
    setTwipsGeometry(frame, 120, 120, 4695, 2475);
    lblactivity =
        new QLabel(QStringLiteral("Please specify activity coefficient  equation"), frame);
    lblactivity->setObjectName(QStringLiteral("lblactivity"));
    setTwipsGeometry(lblactivity, 120, 300, 4455, 285);
    auto option = [this](const char* name, const QString& caption, int top) {
        auto* o = new QRadioButton(caption, frame);
        o->setObjectName(QLatin1String(name));
        setTwipsGeometry(o, 360, top, 4215, 315);
        return o;
    };
    optdebye =
        option("optdebye", QStringLiteral("Debye - Huckel                      I<0.005"), 690);
    optgun = option("optgun", QStringLiteral("Guntelberg                             I<0.1"), 1110);
    optedebye = option("optedebye", QStringLiteral("Extended Debye - Huckel      I<0.1"), 1530);
    optdavies =
        option("optdavies", QStringLiteral("Davies                                   I<0.5"), 1950);
    optedebye->setChecked(true);

    cmdOK = new QPushButton(QStringLiteral("&Ok"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdOK->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);
    cmdOK->setDefault(true);
    setTwipsGeometry(cmdOK, 1080, 2760, 1215, 375);
    setTwipsGeometry(cmdCancel, 2640, 2760, 1215, 375);
    setFixedSize(twipsToPixelsX(4935), twipsToPixelsY(3300));

    connect(cmdOK, &QPushButton::clicked, this, &frmactivity::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmactivity::cmdCancel_Click);
}

void frmactivity::cmdOK_Click() {
    EquationFlags& eq = theOptions().equations;
    eq.bldavies = optdavies->isChecked();
    eq.bledebye = optedebye->isChecked();
    eq.blgun = optgun->isChecked();
    eq.bldebye = optdebye->isChecked();
    hide();
}

void frmactivity::cmdCancel_Click() {
    close();
}

void frmactivity::reject() {
    cmdCancel_Click();
}

void frmactivity::closeEvent(QCloseEvent* event) {
    event->accept();
    if (s_activity == this) s_activity = nullptr;
}

} // namespace velmora
