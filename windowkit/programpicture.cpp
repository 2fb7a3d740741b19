#include "windowkit/programpicture.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>
#include <QRadialGradient>

#include <algorithm>

namespace velmora {

namespace {

// A drop of water filling `r`, with a titration curve across it.
void drawDrop(QPainter& p, const QRectF& r) {
    const double w = r.width(), h = r.height();
    const QPointF tip(r.center().x(), r.top() + h * 0.02);
    const double radius = std::min(w, h) * 0.36;
    const QPointF centre(r.center().x(), r.bottom() - radius - h * 0.04);

    QPainterPath drop;
    drop.moveTo(tip);
    drop.cubicTo(QPointF(tip.x() + radius * 0.25, tip.y() + h * 0.25),
                 QPointF(centre.x() + radius, centre.y() - radius * 0.6),
                 QPointF(centre.x() + radius, centre.y()));
    drop.arcTo(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius), 0, -180);
    drop.cubicTo(QPointF(centre.x() - radius, centre.y() - radius * 0.6),
                 QPointF(tip.x() - radius * 0.25, tip.y() + h * 0.25), tip);

    QLinearGradient water(r.topLeft(), r.bottomRight());
    water.setColorAt(0.0, QColor(170, 230, 255));
    water.setColorAt(0.55, QColor(40, 140, 220));
    water.setColorAt(1.0, QColor(10, 60, 150));
    p.setPen(QPen(QColor(10, 50, 120), std::max(1.0, w / 60)));
    p.setBrush(water);
    p.drawPath(drop);

    // the highlight, inside the drop
    QRadialGradient shine(QPointF(centre.x() - radius * 0.45, centre.y() - radius * 0.35),
                          radius * 0.5);
    shine.setColorAt(0, QColor(255, 255, 255, 200));
    shine.setColorAt(1, QColor(255, 255, 255, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(shine);
    QPainterPath highlight;
    highlight.addEllipse(QPointF(centre.x() - radius * 0.45, centre.y() - radius * 0.35),
                         radius * 0.5, radius * 0.5);
    p.drawPath(highlight.intersected(drop));

    // an S-shaped titration curve inside the drop (its stroke cut to the drop
    // as a shape, not by clipping, so that vector output keeps it inside)
    QPainterPath curve;
    const double x0 = centre.x() - radius * 0.8, x1 = centre.x() + radius * 0.8;
    const double yLow = centre.y() + radius * 0.55, yHigh = centre.y() - radius * 0.55;
    curve.moveTo(x0, yLow);
    curve.cubicTo(QPointF(centre.x() + radius * 0.1, yLow),
                  QPointF(centre.x() - radius * 0.1, yHigh), QPointF(x1, yHigh));
    QPainterPathStroker stroker;
    stroker.setWidth(std::max(1.5, w / 28));
    stroker.setCapStyle(Qt::RoundCap);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 230));
    p.drawPath(stroker.createStroke(curve).intersected(drop));
}

// A vertical pH scale from acid (red, top) to alkaline (violet, bottom).
void drawScale(QPainter& p, const QRectF& r) {
    QLinearGradient scale(r.topLeft(), r.bottomLeft());
    scale.setColorAt(0.0, QColor(220, 30, 30));
    scale.setColorAt(0.25, QColor(250, 170, 20));
    scale.setColorAt(0.45, QColor(240, 230, 40));
    scale.setColorAt(0.55, QColor(60, 190, 60));
    scale.setColorAt(0.8, QColor(40, 90, 210));
    scale.setColorAt(1.0, QColor(110, 40, 150));
    p.setPen(QPen(QColor(60, 60, 60), 1));
    p.setBrush(scale);
    p.drawRoundedRect(r, r.width() / 3, r.width() / 3);
    for (int i = 1; i < 14; ++i) {
        const double y = r.top() + r.height() * i / 14.0;
        const double len = (i == 7) ? r.width() * 0.9 : r.width() * 0.45;
        p.drawLine(QPointF(r.right() + 1, y), QPointF(r.right() + 1 + len, y));
    }
}

} // namespace

void paintProgramPicture(QPainter& p, const QRectF& all) {
    p.setRenderHint(QPainter::Antialiasing);
    const double side = std::min(all.width(), all.height());
    if (all.width() >= side * 1.4) {
        // wide: the drop with the scale beside it
        const double bar = side * 0.16;
        const double gap = side * 0.12;
        const double total = side + gap + bar * 2;
        const double left = all.left() + (all.width() - total) / 2;
        drawDrop(p, QRectF(left, all.top(), side, side));
        drawScale(p, QRectF(left + side + gap, all.top() + side * 0.06, bar, side * 0.88));
    } else {
        drawDrop(p, QRectF(all.left() + (all.width() - side) / 2,
                           all.top() + (all.height() - side) / 2, side, side));
    }
}

QPixmap programPicture(QSize size) {
    QPixmap pm(size.expandedTo(QSize(8, 8)));
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    paintProgramPicture(p, QRectF(0, 0, pm.width(), pm.height()));
    return pm;
}

QImage programIconImage(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    paintProgramPicture(p, QRectF(0, 0, side, side));
    return image;
}

QIcon programIcon() {
    QIcon icon;
    for (int side : kIconSizes)
        icon.addPixmap(QPixmap::fromImage(programIconImage(side)));
    return icon;
}

} // namespace velmora
