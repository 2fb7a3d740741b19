#include "app/frmabout.h"

#include "platform/platform.h"
#include "windowkit/formsupport.h"
#include "windowkit/mainform.h"
#include "windowkit/programpicture.h"

#include <QLabel>
#include <QPushButton>

namespace velmora {

frmAbout::frmAbout() : SingleWindow(mainWindowParent()) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Velmora"));
    setModal(true);
    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(8);
    setFont(arial);
    setFixedSize(twipsToPixelsX(6300), twipsToPixelsY(3600));

    Image1 = new QLabel(this);
    Image1->setObjectName(QStringLiteral("Image1"));
    setTwipsGeometry(Image1, 240, 240, 1200, 1200);
    Image1->setPixmap(programPicture(Image1->size()));

    auto label = [this](const char* name, int top, int height) {
        auto* l = new QLabel(this);
        l->setObjectName(QLatin1String(name));
        l->setTextFormat(Qt::PlainText);
        l->setWordWrap(true);
        setTwipsGeometry(l, 1680, top, 4380, height);
        return l;
    };
    lblTitle = label("lblTitle", 240, 480);
    QFont title = font();
    title.setPointSize(14);
    title.setBold(true);
    lblTitle->setFont(title);
    lblVersion = label("lblVersion", 780, 285);
    lblDescription = label("lblDescription", 1140, 1020);
    lblDescription->setText(
        QStringLiteral("This program developed in order to Determination of Some water corrosion "
                       "indices and pH effect on the amounts of them."));
    lblDisclaimer = label("lblDisclaimer", 2280, 480);
    lblDisclaimer->setText(QStringLiteral("Written by the Velmora developers."));

    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    setTwipsGeometry(cmdOK, 4845, 2940, 1215, 375);
    connect(cmdOK, &QPushButton::clicked, this, &frmAbout::cmdOK_Click);
    Form_Load();
}

void frmAbout::Form_Load() {
    lblVersion->setText(QStringLiteral("Version  ") + QStringLiteral(VELMORA_VERSION));
    lblTitle->setText(QStringLiteral("Velmora"));
}

void frmAbout::cmdOK_Click() {
    close();
}

void frmAbout::reject() {
    close();
}

} // namespace velmora
