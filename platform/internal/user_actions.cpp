#include "platform/internal/user_actions.h"

#include <algorithm>

#include "platform/mac_roman.h"

void user_actions::PostPress(Queue *queue, const Rect &bounds, TrackedPart tracked) {
    Action action = {};
    action.event.what = mouseDown;
    action.place = {static_cast<int16_t>((bounds.top + bounds.bottom) / 2),
                    static_cast<int16_t>((bounds.left + bounds.right) / 2)};
    action.tracked = tracked;
    queue->waiting.push_back(action);
}

void user_actions::PostMoves(Queue *queue, const dialog_bars::Moves &moves) {
    for (const dialog_bars::Move &move : moves) {
        PostPress(queue, move.bar->bounds, {kControlIndicatorPart, move.value});
    }
}

void user_actions::PostEdit(Queue *queue, int16_t item, const std::string &text, size_t caret) {
    Action action = {};
    action.event.what = keyDown;
    action.item = item;
    action.text = UTF8ToMacRoman(text);
    action.caret = std::min(caret, action.text.size());
    queue->waiting.push_back(action);
}

void user_actions::PostKey(Queue *queue, uint8_t character) {
    Action action = {};
    action.event.what = keyDown;
    action.event.message = character;
    queue->waiting.push_back(action);
}

void user_actions::Take(Queue *queue, DialogRecord *dialog, EventRecord *event) {
    queue->current = queue->waiting.front();
    queue->waiting.pop_front();
    const Action &action = queue->current;
    if (action.item != 0) {
        dialog->focusItem = action.item;
    }
    *event = action.event;
    const Point origin = dialog->window.port.origin;
    event->where = {static_cast<int16_t>(origin.v + action.place.v),
                    static_cast<int16_t>(origin.h + action.place.h)};
}

void user_actions::Edit(const Queue &queue, DialogRecord *dialog, int16_t item, const EventRecord &event) {
    if (event.what == keyDown) {
        model::ItemAt(dialog, item)->text = {queue.current.text, queue.current.caret, queue.current.caret};
    }
}
