#include "dialog/dialog_utilities.h"

#include <cstring>

#include "platform/gestalt.h"
#include "platform/memory.h"
#include "platform/resources.h"
#include "platform/text_utils.h"

ModalFilterUPP gFilterProc;

namespace {

constexpr OSType kDialogType = FourCharCode("DLOG");
constexpr OSType kVersionType = FourCharCode("vers");
constexpr OSType kWindowDefinitionType = FourCharCode("WDEF");
constexpr OSType kHostSignature = FourCharCode("8BIM");

// A dialog template begins with its bounds, eight bytes; the window definition follows.
constexpr size_t kDefinitionOffset = 8;
// Window definitions: 16 times the ID of a 'WDEF' resource, plus a variant.
constexpr int16_t kPlainModalBox = 1;
constexpr int16_t kMovableModalBox = 5;
constexpr int16_t kHostMovableModalBox = 2053;  // variant 5 of kHostWindowDefinition
constexpr int16_t kHostWindowDefinition = 128;

// Versions are binary-coded decimal: 0x0700 is 7.0.
constexpr int16_t kVersionID = 2;          // of the 'vers' resource that is asked
constexpr int16_t kPlainVersion = 0x0700;  // exactly this one asks for a box that does not move
constexpr int32_t kLastSystemWithoutMovableModals = 0x06FF;

// In pixels.
constexpr int32_t kMenuBarHeight = 20;
constexpr int16_t kDragMargin = 4;  // a drag stops this far from the screen's edges

// What the window's reference value points to during a modal run.
struct ModalRun {
    intptr_t savedReference;
    ModalFilterUPP filter;
    HostEventProc eventProc;
};

void SetWindowDefinition(Handle dialogTemplate, int16_t definition) {
    std::memcpy(*dialogTemplate + kDefinitionOffset, &definition, sizeof definition);
}

// Compares the bytes in the machine's own order, whatever order they were written in.
bool IsPlainVersion(Handle version) {
    int16_t number = 0;
    if (version == nullptr || GetHandleSize(version) < int64_t{sizeof number}) {
        return false;
    }
    std::memcpy(&number, *version, sizeof number);
    return number == kPlainVersion;
}

// The extra filter must see the reference value that the window has outside the run.
Boolean CallExtraFilter(ModalRun *run, DialogRef dialog, EventRecord *event, int16_t *itemHit) {
    WindowRef window = GetDialogWindow(dialog);
    SetWRefCon(window, run->savedReference);
    const Boolean done = run->filter(dialog, event, itemHit);
    run->savedReference = GetWRefCon(window);
    SetWRefCon(window, reinterpret_cast<intptr_t>(run));
    return done;
}

void DragDialog(DialogRef dialog, EventRecord *event) {
    WindowRef window;
    if (FindWindow(event->where, &window) != inDrag || window != GetDialogWindow(dialog)) {
        return;
    }
    Rect limits;
    GetRegionBounds(GetGrayRgn(), &limits);
    InsetRect(&limits, kDragMargin, kDragMargin);
    DragWindow(window, event->where, &limits);
    event->what = nullEvent;
}

bool ConcernsHost(DialogRef dialog, const EventRecord &event) {
    const bool ofWindow = event.what == updateEvt || event.what == activateEvt;
    return event.what == nullEvent ||
           (ofWindow && event.message != reinterpret_cast<uintptr_t>(GetDialogWindow(dialog)));
}

struct Item {
    int16_t type;
    Handle handle;
    Rect bounds;
};

Item ItemOf(DialogRef dialog, int16_t number) {
    Item item = {kUserDialogItem, nullptr, {}};
    GetDialogItem(dialog, number, &item.type, &item.handle, &item.bounds);
    return item;
}

bool IsText(const Item &item) {
    const int kind = item.type & ~kItemDisableBit;
    return kind == kEditTextDialogItem || kind == kStaticTextDialogItem;
}

bool IsControl(const Item &item) {
    const int kind = item.type & ~kItemDisableBit;
    return kind >= kButtonDialogItem && kind <= kResourceControlDialogItem;
}

}  // namespace

DialogRef GetNewMooDialog(int16_t id, void *storage, WindowRef behind) {
    Handle dialogTemplate = GetResource(kDialogType, id);
    if (dialogTemplate == nullptr) {
        return nullptr;
    }
    HNoPurge(dialogTemplate);
    const bool plain = IsPlainVersion(GetResource(kVersionType, kVersionID));
    SetWindowDefinition(dialogTemplate, plain ? kPlainModalBox : kMovableModalBox);
    CenterDialog(dialogTemplate);
    SetUpMoveableModal(dialogTemplate, kHostSignature);
    return GetNewDialog(id, storage, behind);
}

void CenterDialog(Handle dialogTemplate) {
    const Rect screen = (*GetMainDevice())->gdRect;
    Rect bounds;
    std::memcpy(&bounds, *dialogTemplate, sizeof bounds);
    OffsetRect(&bounds, static_cast<int16_t>(-bounds.left), static_cast<int16_t>(-bounds.top));
    const int32_t screenWidth = screen.right - screen.left;
    const int32_t screenHeight = screen.bottom - screen.top;
    OffsetRect(&bounds, static_cast<int16_t>((screenWidth - bounds.right) / 2),
               static_cast<int16_t>((screenHeight - bounds.bottom - kMenuBarHeight) / 3 + kMenuBarHeight));
    std::memcpy(*dialogTemplate, &bounds, sizeof bounds);
}

void SetUpMoveableModal(Handle dialogTemplate, OSType hostSignature) {
    int32_t version = 0;
    if (Gestalt(gestaltSystemVersion, &version) != noErr) {
        version = 0;
    }
    if (version > kLastSystemWithoutMovableModals) {
        return;
    }
    const bool hostHasOne = hostSignature == kHostSignature &&
                            GetResource(kWindowDefinitionType, kHostWindowDefinition) != nullptr;
    SetWindowDefinition(dialogTemplate, hostHasOne ? kHostMovableModalBox : kPlainModalBox);
}

void MooModalDialog(const RunContext *context, DialogRef dialog, ModalFilterUPP filter, int16_t *itemHit) {
    MoveableModalDialog(dialog, context->filterRecord->processEvent, filter, itemHit);
}

void MoveableModalDialog(DialogRef dialog, HostEventProc eventProc, ModalFilterUPP filter, int16_t *itemHit) {
    WindowRef window = GetDialogWindow(dialog);
    ModalRun run = {GetWRefCon(window), filter, eventProc};
    SetWRefCon(window, reinterpret_cast<intptr_t>(&run));
    gFilterProc = NewModalFilterUPP(DialogFilter);
    ModalDialog(gFilterProc, itemHit);
    SetWRefCon(window, run.savedReference);
}

Boolean DialogFilter(DialogRef dialog, EventRecord *event, int16_t *itemHit) {
    auto *run = reinterpret_cast<ModalRun *>(GetWRefCon(GetDialogWindow(dialog)));
    if (run->filter != nullptr && CallExtraFilter(run, dialog, event, itemHit)) {
        return true;
    }
    if (event->what == mouseDown) {
        DragDialog(dialog, event);
    }
    if (run->eventProc != nullptr && ConcernsHost(dialog, *event)) {
        run->eventProc(event);
    }
    GrafPtr saved;
    GetPort(&saved);
    SetPort(GetDialogPort(dialog));
    const Boolean done = StdFilterProc(dialog, event, itemHit);
    SetPort(saved);
    return done;
}

void OutlineButton(DialogRef dialog, int16_t item) {
    SetDialogDefaultItem(dialog, item);
    SetDialogCancelItem(dialog, kStdCancelItemIndex);
}

void SetDGItem(DialogRef dialog, int16_t item, int16_t value) {
    SetControlValue(reinterpret_cast<ControlRef>(ItemOf(dialog, item).handle), value);
}

void GetDRect(DialogRef dialog, int16_t item, Rect *rect) {
    *rect = ItemOf(dialog, item).bounds;
}

void GetDText(DialogRef dialog, int16_t item, StringPtr text) {
    const Item found = ItemOf(dialog, item);
    text[0] = 0;
    if (IsText(found)) {
        GetDialogItemText(found.handle, text);
    } else if (IsControl(found)) {
        GetControlTitle(reinterpret_cast<ControlRef>(found.handle), text);
    }
}

void SetDText(DialogRef dialog, int16_t item, ConstStringPtr text) {
    const Item found = ItemOf(dialog, item);
    if (IsText(found)) {
        SetDialogItemText(found.handle, text);
    } else if (IsControl(found)) {
        SetControlTitle(reinterpret_cast<ControlRef>(found.handle), text);
    }
}

void SetDNum(DialogRef dialog, int16_t item, int32_t number) {
    Str255 text;
    NumToString(number, text);
    SetDText(dialog, item, text);
}

int32_t GetDNum(DialogRef dialog, int16_t item) {
    Str255 text;
    GetDText(dialog, item, text);
    int32_t number;
    StringToNum(text, &number);
    return number;
}

void InvalItem(DialogRef dialog, int16_t item) {
    GrafPtr saved;
    GetPort(&saved);
    SetPort(GetDialogPort(dialog));
    Rect bounds;
    GetDRect(dialog, item, &bounds);
    InvalWindowRect(GetDialogWindow(dialog), &bounds);
    SetPort(saved);
}
