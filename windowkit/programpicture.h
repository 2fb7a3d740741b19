// The program's picture (splash, about and main windows, the application
// icon): a drop of water over a pH scale, drawn at the size asked for.
#pragma once

#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QRectF>
#include <QSize>

class QPainter;

namespace velmora {

// The sizes of the application icon's pictures (square, in pixels).
inline constexpr int kIconSizes[] = {16, 22, 24, 32, 48, 64, 128, 256};

// Paints the picture into `area`: the drop alone when the area is about
// square, the drop with the pH scale beside it when it is wide.
void paintProgramPicture(QPainter& p, const QRectF& area);

QPixmap programPicture(QSize size);

// The drop alone on a transparent square of `side` pixels.
QImage programIconImage(int side);

// The application icon: the drop at every size of kIconSizes.
QIcon programIcon();

} // namespace velmora
