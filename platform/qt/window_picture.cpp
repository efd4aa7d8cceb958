#include "platform/qt/window_picture.h"

#include <QPainter>

void qt::PaintPicture(const GrafPort &port, QDialog *window) {
    const Rect &drawn = port.drawn;
    if (ports::IsEmpty(drawn)) {
        return;
    }
    QImage image(drawn.right - drawn.left, drawn.bottom - drawn.top, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        const uint8_t *pixel = ports::PixelAt(port.pixMap, drawn.left, drawn.top + y);
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x, pixel += 4) {
            line[x] = qRgb(pixel[1], pixel[2], pixel[3]);
        }
    }
    QPainter(window).drawImage(drawn.left, drawn.top, image);
}
