// The modal loop. Owns the mouse position.
#include <algorithm>
#include <iterator>

#include "platform/dialog_backend.h"
#include "platform/internal/dialog_model.h"

namespace {

Point mousePosition;

bool IsEnabled(const DialogItem &item) {
    return (item.type & kItemDisableBit) == 0;
}

// Update events come first, so that the picture is up to date whenever the user can act.
bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    if (!ports::IsEmpty(dialog->window.invalid)) {
        *event = {updateEvt, reinterpret_cast<uintptr_t>(&dialog->window), 0, mousePosition, 0};
        return true;
    }
    if (!CurrentDialogBackend().nextEvent(dialog, event)) {
        return false;
    }
    mousePosition = event->where;
    return true;
}

void Draw(DialogRecord *dialog) {
    dialog->window.invalid = {};
    GrafPtr saved;
    GetPort(&saved);
    SetPort(&dialog->window.port);
    for (size_t i = 0; i < dialog->items.size(); ++i) {
        const DialogItem &item = dialog->items[i];
        if (model::KindOf(item) == kUserDialogItem && item.draw != nullptr) {
            item.draw(dialog, static_cast<int16_t>(i + 1));
        }
    }
    SetPort(saved);
}

int16_t HitOf(DialogRecord *dialog, int16_t item, const EventRecord &event) {
    const DialogItem *found = model::ItemAt(dialog, item);
    if (found == nullptr) {
        return 0;
    }
    if (model::KindOf(*found) == kEditTextDialogItem) {
        dialog->focusItem = item;
        CurrentDialogBackend().edit(dialog, item, event);
    }
    return IsEnabled(*found) ? item : int16_t{0};
}

int16_t Click(DialogRecord *dialog, const EventRecord &event) {
    if (!ports::Contains(dialog->window.bounds, event.where)) {
        return 0;
    }
    const Point origin = dialog->window.port.origin;
    const Point local = {static_cast<int16_t>(event.where.v - origin.v),
                         static_cast<int16_t>(event.where.h - origin.h)};
    return HitOf(dialog, model::ItemUnder(*dialog, local), event);
}

int16_t PressKey(DialogRecord *dialog, const EventRecord &event) {
    return HitOf(dialog, dialog->focusItem, event);
}

int16_t Update(DialogRecord *dialog, const EventRecord &event) {
    if (event.message == reinterpret_cast<uintptr_t>(&dialog->window)) {
        Draw(dialog);
    }
    return 0;
}

// What each kind of event does to the dialog; returns the item hit, or 0.
constexpr struct {
    uint16_t what;
    int16_t (*handle)(DialogRecord *dialog, const EventRecord &event);
} kHandlers[] = {{mouseDown, Click}, {keyDown, PressKey}, {updateEvt, Update}};

int16_t Dispatch(DialogRecord *dialog, const EventRecord &event) {
    const auto *handler = std::find_if(std::begin(kHandlers), std::end(kHandlers),
                                       [&](const auto &candidate) { return candidate.what == event.what; });
    return handler == std::end(kHandlers) ? int16_t{0} : handler->handle(dialog, event);
}

}  // namespace

void GetMouse(Point *mouse) {
    GrafPtr port;
    GetPort(&port);
    *mouse = {static_cast<int16_t>(mousePosition.v - port->origin.v),
              static_cast<int16_t>(mousePosition.h - port->origin.h)};
}

void ModalDialog(ModalFilterUPP filter, int16_t *itemHit) {
    *itemHit = kStdCancelItemIndex;
    if (model::OpenDialogs().empty()) {
        return;
    }
    DialogRecord *dialog = model::OpenDialogs().back();
    EventRecord event = {};
    while (NextEvent(dialog, &event)) {
        if (filter(dialog, &event, itemHit)) {
            return;
        }
        if (const int16_t item = Dispatch(dialog, event); item != 0) {
            *itemHit = item;
            return;
        }
    }
    *itemHit = kStdCancelItemIndex;
}

Boolean StdFilterProc(DialogRef dialog, EventRecord *event, int16_t *itemHit) {
    if (event->what != keyDown) {
        return false;
    }
    const auto key = event->message & charCodeMask;
    const bool command = (event->modifiers & cmdKey) != 0;
    int16_t item = 0;
    if (key == kReturnCharCode || key == kEnterCharCode) {
        item = dialog->defaultItem;
    } else if (key == kEscapeCharCode || (command && key == '.')) {
        item = dialog->cancelItem;
    }
    if (item != 0) {
        *itemHit = item;
    }
    return item != 0;
}
