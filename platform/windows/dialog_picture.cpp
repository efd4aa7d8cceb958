#include "platform/windows/dialog_window.h"

// Each of the picture's pixels is as large as a dialog's pixel is on the display.
void windows::PaintPicture(const DialogWindow &shown, HDC device) {
    const GrafPort &port = shown.dialog->window.port;
    const Rect &drawn = port.drawn;
    if (ports::IsEmpty(drawn)) {
        return;
    }
    const int width = drawn.right - drawn.left;
    const int height = drawn.bottom - drawn.top;
    std::vector<uint32_t> pixels;
    pixels.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int y = drawn.top; y < drawn.bottom; ++y) {
        const uint8_t *pixel = ports::PixelAt(port.pixMap, drawn.left, y);
        for (int x = 0; x < width; ++x, pixel += 4) {
            pixels.push_back(static_cast<uint32_t>(pixel[1] << 16 | pixel[2] << 8 | pixel[3]));
        }
    }
    BITMAPINFO layout = {};
    layout.bmiHeader = {sizeof layout.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const RECT place = PlaceOf(shown, drawn);
    SetStretchBltMode(device, COLORONCOLOR);
    StretchDIBits(device, place.left, place.top, place.right - place.left, place.bottom - place.top, 0, 0,
                  width, height, pixels.data(), &layout, DIB_RGB_COLORS, SRCCOPY);
}
