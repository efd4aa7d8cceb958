#include "host/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace {

// In columns.
constexpr int kWidestBar = 50;  // chosen: two per cent a mark
constexpr int kFrame = 9;       // "[] 100 %" and the cursor
constexpr char kEraseLine[] = "\r\033[K";

// Keeps the line narrower than the terminal, since a wrapped line cannot be redrawn in place.
int BarWidth() {
    winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return kWidestBar;
    }
    return std::clamp(size.ws_col - kFrame, 0, kWidestBar);
}

}  // namespace

ProgressBar MakeProgressBar(bool wanted) {
    return {.shown = wanted && isatty(STDERR_FILENO) != 0};
}

void AdvanceBar(ProgressBar *bar, double done) {
    bar->done = std::max(bar->done, done);
    const int percent = static_cast<int>(bar->done * 100);
    if (!bar->shown || percent == bar->percent) {
        return;
    }
    bar->percent = percent;
    const int width = BarWidth();
    const auto full = static_cast<size_t>(width * percent / 100);
    const std::string line = std::string(full, '#') + std::string(static_cast<size_t>(width) - full, '.');
    std::fprintf(stderr, "\r[%s] %3d %%", line.c_str(), percent);
}

void ClearBar(ProgressBar *bar) {
    if (bar->percent >= 0) {
        std::fputs(kEraseLine, stderr);
    }
    bar->percent = -1;
}
