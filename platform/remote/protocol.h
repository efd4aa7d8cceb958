// What a dialog's owner and whoever shows it say to each other. The owner asks; to every question but the
// marked ones there is one answer, with the same mark. Numbers are in the machine's own byte order.
#pragma once

#include "platform/dialog_backend.h"
#include "platform/types.h"

namespace remote {

constexpr OSType kGreeting = FourCharCode("HyDl");
constexpr uint32_t kVersion = 1;

enum Mark : char {
    kHello = 'h',  // a Hello each way, before all else
    kState = 's',  // the dialog as it is now, see snapshot.h; no answer
    kRows = 'r',   // rows of its picture, see picture_rows.h; no answer
    kOpen = 'o',   // shows the state sent before; answer: a uint16_t, 1 if it can be shown
    kNext = 'n',   // waits for the user; answer: a NextEvent
    kTrack = 't',  // of the latest event: an int32_t, the control's place in the state; answer: a TrackedPart
    kEdit = 'e',   // a TextEdit; answer: a TextSelection and the field's new text
    kDrag = 'd',   // a Point; answer: a Point
    kClose = 'c',  // answer: nothing
};

struct Hello {
    OSType greeting = kGreeting;
    uint32_t version = kVersion;
    Rect screen = {};  // of the one who answers
};

struct SentEvent {
    uint16_t what;
    uint16_t modifiers;
    uint32_t message;  // a key's character, or 1 if an update or activate event is of the dialog's window
    uint32_t when;
    Point where;
};

struct NextEvent {
    uint16_t more;      // 0 when no more events can come
    int16_t focusItem;  // as the user has left it
    Point place;        // likewise, of the window's contents on the screen
    SentEvent event;
};

struct TextEdit {
    int16_t item;
    int16_t unused;
    SentEvent event;
};

struct TextSelection {
    uint32_t start;
    uint32_t end;
};

SentEvent EventToSend(const DialogRecord &dialog, const EventRecord &event);
EventRecord ReceivedEvent(const SentEvent &sent, DialogRecord *dialog);

}  // namespace remote
