#include "platform/remote/snapshot.h"

#include <algorithm>
#include <cstring>

#include "platform/packing.h"

namespace {

constexpr int32_t kNoControl = -1;

// None of these has padding, so that every byte that is sent means something.
struct SentWindow {
    Rect bounds;
    Rect drawn;
    int16_t definition;
    uint16_t visible;
    int16_t defaultItem;
    int16_t cancelItem;
    int32_t selectionCount;
    int16_t focusItem;
    uint16_t itemCount;
    uint32_t controlCount;
};

struct SentItem {
    Rect bounds;
    int32_t control;  // its place in the list
    uint32_t selectionStart;
    uint32_t selectionEnd;
    int16_t type;
    uint16_t unused;
};

struct SentControl {
    Rect bounds;
    int16_t definition;
    int16_t minimum;
    int16_t maximum;
    int16_t value;
    uint16_t visible;
};

bool SameControl(const ControlRecord &control, const SentControl &sent) {
    return std::memcmp(&control.bounds, &sent.bounds, sizeof sent.bounds) == 0 &&
           control.definition == sent.definition && control.minimum == sent.minimum &&
           control.maximum == sent.maximum;
}

bool TakeControl(std::string_view *packed, size_t place, DialogRecord *copy) {
    SentControl sent;
    std::string title;
    if (!TakeRecord(packed, &sent) || !TakeText(packed, &title) || !ports::IsSound(sent.bounds)) {
        return false;
    }
    if (place == copy->controls.size()) {
        copy->controls.emplace_back();
    }
    std::unique_ptr<ControlRecord> &control = copy->controls[place];
    if (control == nullptr || !SameControl(*control, sent)) {
        control = std::make_unique<ControlRecord>();
    }
    *control = {copy,         sent.bounds,       title, sent.definition, sent.value, sent.minimum,
                sent.maximum, sent.visible != 0, 0};
    return true;
}

bool TakeItem(std::string_view *packed, DialogItem *item, int32_t *control) {
    SentItem sent;
    std::string text;
    if (!TakeRecord(packed, &sent) || !TakeText(packed, &text) || !ports::IsSound(sent.bounds) ||
        sent.selectionStart > sent.selectionEnd || sent.selectionEnd > text.size()) {
        return false;
    }
    *item = {sent.type, sent.bounds, nullptr, {text, sent.selectionStart, sent.selectionEnd}, nullptr};
    *control = sent.control;
    return true;
}

bool LinkControls(const std::vector<int32_t> &places, DialogRecord *copy) {
    for (size_t i = 0; i < places.size(); ++i) {
        DialogItem *item = &copy->items[i];
        const auto place = static_cast<size_t>(places[i]);
        if (places[i] != kNoControl && place >= copy->controls.size()) {
            return false;
        }
        item->control = places[i] == kNoControl ? nullptr : copy->controls[place].get();
        if (model::IsControlItem(*item) && item->control == nullptr) {
            return false;
        }
    }
    return true;
}

// The kinds of a dialog's items, the size of its window and the focus are taken for granted by those who show
// it.
bool TakeWindow(const SentWindow &sent, const std::string &title, DialogRecord *copy) {
    WindowRecord *window = &copy->window;
    const Rect contents = {0, 0, static_cast<int16_t>(sent.bounds.bottom - sent.bounds.top),
                           static_cast<int16_t>(sent.bounds.right - sent.bounds.left)};
    const bool isNew = window->port.pixels == nullptr;
    if (!ports::IsSound(sent.bounds) || ports::IsEmpty(sent.bounds) ||
        (isNew && ports::InitPort(&window->port, contents, false) != noErr)) {
        return false;
    }
    const Rect &known = window->port.pixMap.bounds;
    if (std::memcmp(&known, &contents, sizeof known) != 0 ||
        (!isNew && copy->items.size() != sent.itemCount) ||
        (!ports::IsEmpty(sent.drawn) && !ports::Holds(known, sent.drawn))) {
        return false;
    }
    window->bounds = sent.bounds;
    model::MoveWindowTo(window, {sent.bounds.top, sent.bounds.left});
    window->port.drawn = sent.drawn;
    window->title = title;
    window->definition = sent.definition;
    window->visible = sent.visible != 0;
    copy->defaultItem = sent.defaultItem;
    copy->cancelItem = sent.cancelItem;
    copy->focusItem = sent.focusItem;
    copy->selectionCount = sent.selectionCount;
    return true;
}

bool TakeItems(std::string_view *packed, uint16_t count, DialogRecord *copy, std::vector<int32_t> *places) {
    std::vector<DialogItem> items(count);
    places->resize(count);
    for (size_t i = 0; i < items.size(); ++i) {
        if (!TakeItem(packed, &items[i], &(*places)[i]) ||
            (!copy->items.empty() && model::KindOf(items[i]) != model::KindOf(copy->items[i]))) {
            return false;
        }
    }
    copy->items = std::move(items);
    return copy->focusItem == 0 || model::IsTextField(copy, copy->focusItem);
}

}  // namespace

std::string remote::PackDialog(const DialogRecord &dialog) {
    const WindowRecord &window = dialog.window;
    std::string packed;
    AppendRecord(&packed,
                 SentWindow{window.bounds, window.port.drawn, window.definition, uint16_t{window.visible},
                            dialog.defaultItem, dialog.cancelItem, dialog.selectionCount, dialog.focusItem,
                            static_cast<uint16_t>(dialog.items.size()),
                            static_cast<uint32_t>(dialog.controls.size())});
    AppendText(&packed, window.title);
    for (const DialogItem &item : dialog.items) {
        AppendRecord(&packed, SentItem{item.bounds, model::PlaceOf(dialog, item.control),
                                       static_cast<uint32_t>(item.text.selectionStart),
                                       static_cast<uint32_t>(item.text.selectionEnd), item.type, 0});
        AppendText(&packed, item.text.characters);
    }
    for (const auto &control : dialog.controls) {
        AppendRecord(&packed, SentControl{control->bounds, control->definition, control->minimum,
                                          control->maximum, control->value, uint16_t{control->visible}});
        AppendText(&packed, control->title);
    }
    return packed;
}

bool remote::UnpackDialog(std::string_view packed, DialogRecord *copy) {
    SentWindow window;
    std::string title;
    std::vector<int32_t> places;
    if (!TakeRecord(&packed, &window) || !TakeText(&packed, &title) || !TakeWindow(window, title, copy) ||
        !TakeItems(&packed, window.itemCount, copy, &places)) {
        return false;
    }
    for (size_t i = 0; i < window.controlCount; ++i) {
        if (!TakeControl(&packed, i, copy)) {
            return false;
        }
    }
    copy->controls.resize(window.controlCount);
    return packed.empty() && LinkControls(places, copy);
}
