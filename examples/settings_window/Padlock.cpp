#include "Padlock.h"

#include <QPainter>

namespace Ui {

QPixmap padlock() {
    QPixmap picture(14, 14);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor brass(0x9a, 0x6b, 0x00);
    painter.setPen(QPen(brass, 1.6));
    painter.drawArc(QRectF(4, 1.5, 6, 8), 0, 180 * 16); // in sixteenths of a degree
    painter.setPen(Qt::NoPen);
    painter.setBrush(brass);
    painter.drawRoundedRect(QRectF(2.5, 6, 9, 7), 1.5, 1.5);
    return picture;
}

} // namespace Ui
