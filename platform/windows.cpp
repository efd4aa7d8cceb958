#include "platform/windows.h"

#include "platform/dialog_backend.h"
#include "platform/internal/dialog_model.h"

namespace {

// The one window definition that cannot be moved; the other dialog windows can.
constexpr int16_t kPlainModalBox = 1;

Rect DragBar(const WindowRecord &window) {
    Rect bar = window.bounds;
    bar.bottom = bar.top;
    bar.top = static_cast<int16_t>(bar.top - model::kTitleBarHeight);
    return bar;
}

}  // namespace

void model::MoveWindowTo(WindowRecord *window, Point place) {
    OffsetRect(&window->bounds, static_cast<int16_t>(place.h - window->bounds.left),
               static_cast<int16_t>(place.v - window->bounds.top));
    window->port.origin = place;
}

intptr_t GetWRefCon(WindowRef window) {
    return window->reference;
}

void SetWRefCon(WindowRef window, intptr_t value) {
    window->reference = value;
}

void InvalWindowRect(WindowRef window, const Rect *rect) {
    window->invalid = ports::Enclosing(window->invalid, ports::Common(*rect, window->port.pixMap.bounds));
}

int16_t FindWindow(Point point, WindowRef *window) {
    *window = nullptr;
    const auto &dialogs = model::OpenDialogs();
    for (auto dialog = dialogs.rbegin(); dialog != dialogs.rend(); ++dialog) {
        WindowRecord *candidate = &(*dialog)->window;
        const bool inBar =
            candidate->definition != kPlainModalBox && ports::Contains(DragBar(*candidate), point);
        if (inBar || ports::Contains(candidate->bounds, point)) {
            *window = candidate;
            return inBar ? inDrag : inContent;
        }
    }
    return inDesk;
}

void DragWindow(WindowRef window, Point start, const Rect *bounds) {
    for (DialogRecord *dialog : model::OpenDialogs()) {
        if (&dialog->window != window) {
            continue;
        }
        const Point end = CurrentDialogBackend().drag(dialog, start);
        if (ports::Contains(*bounds, end)) {
            model::MoveWindowTo(window, {static_cast<int16_t>(window->bounds.top + end.v - start.v),
                                         static_cast<int16_t>(window->bounds.left + end.h - start.h)});
        }
    }
}

RgnHandle GetGrayRgn() {
    static MacRegion desktop;
    static MacRegion *master = &desktop;
    desktop.rgnBBox = CurrentDialogBackend().screen();
    return &master;
}

Rect *GetRegionBounds(RgnHandle region, Rect *bounds) {
    *bounds = (*region)->rgnBBox;
    return bounds;
}
