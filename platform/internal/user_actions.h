// What the user did to a dialog's window, in the order in which the plug-in gets to know it.
#pragma once

#include <deque>
#include <string>

#include "platform/dialog_backend.h"
#include "platform/internal/dialog_bars.h"

namespace user_actions {

struct Action {
    EventRecord event;
    Point place;   // the mouse, in window coordinates
    int16_t item;  // the edited text field
    TrackedPart tracked;
    std::string text;  // the field's text after the user's edit
    size_t caret;
};

struct Queue {
    std::deque<Action> waiting;  // not yet seen by the plug-in
    Action current;              // the one being handled
};

// A press in the middle of `bounds` and its outcome.
void PostPress(Queue *queue, const Rect &bounds, TrackedPart tracked);
void PostMoves(Queue *queue, const dialog_bars::Moves &moves);
// A field's text after an edit, in UTF-8.
void PostEdit(Queue *queue, int16_t item, const std::string &text, size_t caret);
void PostKey(Queue *queue, uint8_t character);

// Makes the first one that waits, which must be there, the current one, and tells the dialog of it.
void Take(Queue *queue, DialogRecord *dialog, EventRecord *event);
// Gives the field the text of the current action. Only keys change text.
void Edit(const Queue &queue, DialogRecord *dialog, int16_t item, const EventRecord &event);

}  // namespace user_actions
