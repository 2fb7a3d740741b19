// Writes the application icon into a hicolor icon theme folder, from the
// same painting as the program's own picture:
//   velmora_iconmaker DIR NAME
// makes DIR/hicolor/scalable/apps/NAME.svg and DIR/hicolor/SxS/apps/NAME.png
// for every size of the application icon.
#include "windowkit/programpicture.h"

#include <QDir>
#include <QPainter>
#include <QSvgGenerator>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: velmora_iconmaker DIR NAME\n");
        return 2;
    }
    const QString root = QString::fromLocal8Bit(argv[1]) + QStringLiteral("/hicolor/");
    const QString name = QString::fromLocal8Bit(argv[2]);

    const QString scalable = root + QStringLiteral("scalable/apps/");
    if (!QDir().mkpath(scalable)) return 1;
    constexpr int kViewBox = 256;
    QSvgGenerator svg;
    svg.setFileName(scalable + name + QStringLiteral(".svg"));
    svg.setSize(QSize(kViewBox, kViewBox));
    svg.setViewBox(QRect(0, 0, kViewBox, kViewBox));
    svg.setTitle(QStringLiteral("Velmora"));
    svg.setDescription(QStringLiteral("A drop of water with a titration curve"));
    {
        QPainter p;
        if (!p.begin(&svg)) return 1;
        velmora::paintProgramPicture(p, QRectF(0, 0, kViewBox, kViewBox));
    }

    for (int side : velmora::kIconSizes) {
        const QString dir = root + QStringLiteral("%1x%1/apps/").arg(side);
        if (!QDir().mkpath(dir)) return 1;
        if (!velmora::programIconImage(side).save(dir + name + QStringLiteral(".png"))) return 1;
    }
    return 0;
}
