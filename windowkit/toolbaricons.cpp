#include "windowkit/toolbaricons.h"

#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace velmora {

QIcon toolbarIcon(const QString& key) {
    QPixmap pm(16, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(40, 40, 40), 1));
    if (key == QLatin1String("New")) {
        p.setBrush(Qt::white);
        p.drawPolygon(QPolygonF({{3.5, 1.5}, {10.5, 1.5}, {13.5, 4.5}, {13.5, 14.5}, {3.5, 14.5}}));
        p.drawPolyline(QPolygonF({{10.5, 1.5}, {10.5, 4.5}, {13.5, 4.5}}));
    } else if (key == QLatin1String("Save")) {
        p.setBrush(QColor(60, 90, 170));
        p.drawRect(QRectF(1.5, 1.5, 13, 13));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(4.5, 1.5, 7, 5));
        p.setBrush(QColor(200, 200, 200));
        p.drawRect(QRectF(3.5, 9.5, 9, 5));
    } else if (key == QLatin1String("Print")) {
        p.setBrush(Qt::white);
        p.drawRect(QRectF(4.5, 1.5, 7, 5));
        p.setBrush(QColor(150, 150, 150));
        p.drawRect(QRectF(1.5, 6.5, 13, 6));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(4.5, 10.5, 7, 4));
    } else if (key == QLatin1String("Sample")) {
        p.setBrush(QColor(120, 190, 255));
        p.drawPolygon(
            QPolygonF({{6.5, 1.5}, {9.5, 1.5}, {9.5, 6.5}, {14, 14.5}, {2, 14.5}, {6.5, 6.5}}));
    } else if (key == QLatin1String("Graph")) {
        p.drawLine(QPointF(1.5, 14.5), QPointF(14.5, 14.5));
        p.setBrush(QColor(220, 60, 60));
        p.drawRect(QRectF(2.5, 8.5, 3, 6));
        p.setBrush(QColor(60, 170, 60));
        p.drawRect(QRectF(6.5, 4.5, 3, 10));
        p.setBrush(QColor(60, 90, 200));
        p.drawRect(QRectF(10.5, 1.5, 3, 13));
    }
    return QIcon(pm);
}

} // namespace velmora
