#include "app/frmsplash.h"

#include "platform/platform.h"
#include "windowkit/formsupport.h"
#include "windowkit/programpicture.h"

#include <QFrame>
#include <QLabel>

namespace velmora {

void frmSplash::unload() {
    if (isLoaded()) delete instance();
}

frmSplash::frmSplash() : SingleWindow(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("frmSplash"));
    setWindowTitle(QStringLiteral("Velmora"));
    setFixedSize(twipsToPixelsX(6900), twipsToPixelsY(3900));
    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(9);
    setFont(arial);

    fraMainFrame = new QFrame(this);
    fraMainFrame->setObjectName(QStringLiteral("fraMainFrame"));
    fraMainFrame->setFrameStyle(QFrame::Box | QFrame::Plain);
    fraMainFrame->setLineWidth(2);
    fraMainFrame->setGeometry(6, 6, width() - 12, height() - 12);

    Image1 = new QLabel(fraMainFrame);
    Image1->setObjectName(QStringLiteral("Image1"));
    setTwipsGeometry(Image1, 240, 360, 2400, 2400);
    Image1->setPixmap(programPicture(Image1->size()));

    auto label = [this](const char* name, int top, int height, int points, bool bold) {
        auto* l = new QLabel(fraMainFrame);
        l->setObjectName(QLatin1String(name));
        l->setTextFormat(Qt::PlainText);
        QFont f = font();
        f.setPointSize(points);
        f.setBold(bold);
        l->setFont(f);
        setTwipsGeometry(l, 2880, top, 3780, height);
        return l;
    };
    lblProductName = label("lblProductName", 480, 720, 26, true);
    lblVersion = label("lblVersion", 1320, 360, 11, false);
    lblPlatform = label("lblPlatform", 1800, 300, 9, false);
    lblPlatform->setText(QStringLiteral("Windows 98,2000,xp,vista"));
    Label1 = label("Label1", 2640, 600, 8, false);
    Label1->setWordWrap(true);
    Label1->setText(
        QStringLiteral("Written by the Velmora developers for water-treatment engineers."));
    Form_Load();
}

void frmSplash::Form_Load() {
    lblVersion->setText(QStringLiteral("Version ") + QStringLiteral(VELMORA_VERSION));
    lblProductName->setText(QStringLiteral("Velmora"));
}

} // namespace velmora
