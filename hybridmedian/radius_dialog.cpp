// The radius dialog: its session from opening to closing.
#include <algorithm>
#include <cstring>

#include "dialog/dialog_utilities.h"
#include "dialog/pan_bar.h"
#include "dialog/preview.h"
#include "dialog/proxy_draw.h"
#include "dialog/scroll_bar.h"
#include "hybridmedian/public.h"
#include "toolkit/filter_hooks.h"

namespace {

constexpr int16_t kWholeText = 32000;  // past the end of any text

struct Session {
    DialogRef dialog;
    Preview preview;
    ControlRef radiusBar;
    PanBar horizontal;
    PanBar vertical;
    float radius;
    bool previewOn;
};

// The controls show whole numbers.
int16_t ShownRadius(float radius) {
    return static_cast<int16_t>(radius);
}

float StoredRadius(Handle parameters) {
    float radius;
    std::memcpy(&radius, *parameters, sizeof radius);
    return ClampRadius(radius);
}

void StoreRadius(Handle parameters, float radius) {
    radius = ClampRadius(radius);
    std::memcpy(*parameters, &radius, sizeof radius);
}

Rect ItemRect(DialogRef dialog, int16_t item) {
    Rect rect;
    GetDRect(dialog, item, &rect);
    return rect;
}

void ShowRadiusInField(const Session &session) {
    SetDNum(session.dialog, kRadiusFieldItem, ShownRadius(session.radius));
    SelectDialogItemText(session.dialog, kRadiusFieldItem, 0, kWholeText);
}

void ShowRadius(const Session &session) {
    SetControlValue(session.radiusBar, ShownRadius(session.radius));
    ShowRadiusInField(session);
}

void ShowPannedPiece(Session *session) {
    MoveVisible(&session->preview, session->horizontal.offset, session->vertical.offset);
}

void Open(Session *session, NamedImage *image, const RunContext *context) {
    DialogRef dialog = session->dialog;
    WindowRef window = GetDialogWindow(dialog);
    const Rect frame = ItemRect(dialog, kPreviewItem);
    session->preview = MakePreview(image, context, frame);
    session->horizontal = MakePanBar(window, ItemRect(dialog, kHorizontalBarItem), session->preview.width,
                                     frame.right - frame.left);
    session->vertical = MakePanBar(window, ItemRect(dialog, kVerticalBarItem), session->preview.height,
                                   frame.bottom - frame.top);
    ShowPannedPiece(session);
    session->radiusBar = NewScrollBar(window, ItemRect(dialog, kRadiusBarItem), ShownRadius(session->radius),
                                      kMinRadius, kMaxRadius);
    SetupProxyDraw(dialog, kPreviewItem, session->preview.picture);
    OutlineButton(dialog, kOKItem);
    InitCursor();
    ShowRadiusInField(*session);
    session->previewOn = true;
    SetDGItem(dialog, kPreviewCheckBoxItem, 1);
}

void Rebuild(const Session &session) {
    GrafPtr saved;
    GetPort(&saved);
    SetPort(GetDialogPort(session.dialog));
    Rect frame = ItemRect(session.dialog, kPreviewItem);
    InsetRect(&frame, -1, -1);
    FrameRect(&frame);
    BuildPreview(session.preview, session.previewOn, session.radius);
    InvalItem(session.dialog, kPreviewItem);
    SetPort(saved);
}

Point MouseIn(DialogRef dialog) {
    GrafPtr saved;
    GetPort(&saved);
    SetPort(GetDialogPort(dialog));
    Point mouse;
    GetMouse(&mouse);
    SetPort(saved);
    return mouse;
}

// Arrow and page clicks keep the fraction.
float RadiusAfter(const Session &session, int16_t part) {
    switch (part) {
        case kControlUpButtonPart:
        case kControlPageUpPart:
            return ClampRadius(session.radius - 1);
        case kControlDownButtonPart:
        case kControlPageDownPart:
            return ClampRadius(session.radius + 1);
        case kControlIndicatorPart:
            return GetControlValue(session.radiusBar);
        default:
            return ShownRadius(session.radius);
    }
}

bool TogglePreview(Session *session) {
    session->previewOn = !session->previewOn;
    SetDGItem(session->dialog, kPreviewCheckBoxItem, session->previewOn ? 1 : 0);
    return true;
}

// Leaves the text as the user typed it.
bool ReadField(Session *session) {
    session->radius = static_cast<float>(
        std::clamp<int32_t>(GetDNum(session->dialog, kRadiusFieldItem), kMinRadius, kMaxRadius));
    SetControlValue(session->radiusBar, ShownRadius(session->radius));
    return true;
}

bool TrackRadiusBar(Session *session) {
    session->radius =
        RadiusAfter(*session, TrackControl(session->radiusBar, MouseIn(session->dialog), nullptr));
    ShowRadius(*session);
    return true;
}

bool Pan(Session *session, PanBar *pan) {
    if (pan->bar == nullptr) {
        return false;
    }
    TrackPanBar(pan, MouseIn(session->dialog));
    ShowPannedPiece(session);
    return true;
}

bool PanHorizontally(Session *session) {
    return Pan(session, &session->horizontal);
}

bool PanVertically(Session *session) {
    return Pan(session, &session->vertical);
}

bool StepRadius(Session *session, float step) {
    session->radius = ShownRadius(ClampRadius(session->radius + step));
    ShowRadius(*session);
    return true;
}

bool StepUp(Session *session) {
    return StepRadius(session, 1);
}

bool StepDown(Session *session) {
    return StepRadius(session, -1);
}

// What a hit on each item does. Handlers return true when the preview has to be rebuilt.
constexpr struct {
    int16_t item;
    bool (*handle)(Session *session);
} kHandlers[] = {
    {kPreviewCheckBoxItem, TogglePreview},
    {kRadiusFieldItem, ReadField},
    {kRadiusBarItem, TrackRadiusBar},
    {kHorizontalBarItem, PanHorizontally},
    {kVerticalBarItem, PanVertically},
    {kPlusItem, StepUp},
    {kMinusItem, StepDown},
};

bool HandleItem(Session *session, int16_t item) {
    for (const auto &handler : kHandlers) {
        if (handler.item == item) {
            return handler.handle(session);
        }
    }
    return false;
}

// Returns the item that ended the dialog.
int16_t Run(Session *session) {
    Rebuild(*session);
    for (;;) {
        int16_t item = 0;
        MooModalDialog(session->preview.context, session->dialog, nullptr, &item);
        if (item == kOKItem || item == kCancelItem) {
            return item;
        }
        if (HandleItem(session, item)) {
            Rebuild(*session);
        }
    }
}

void Close(Session *session, GrafPtr savedPort) {
    gProxyPtr = nullptr;
    DisposeGWorld(session->preview.picture);
    DisposePanBar(&session->horizontal);
    DisposePanBar(&session->vertical);
    DisposeControl(session->radiusBar);
    SetPort(savedPort);
    DisposeDialog(session->dialog);
    if (session->preview.work != nullptr) {
        TossTempImage(session->preview.work);
    }
}

}  // namespace

OSErr InteractiveDialog(NamedImage *image, RunContext *context, Handle parameters) {
    Session session = {};
    session.radius = StoredRadius(parameters);
    GrafPtr savedPort;
    GetPort(&savedPort);
    session.dialog = GetNewMooDialog(kRadiusDialogID, nullptr, reinterpret_cast<WindowRef>(intptr_t{-1}));
    if (session.dialog == nullptr) {
        return userCanceledErr;
    }
    Open(&session, image, context);
    const int16_t item = Run(&session);
    Close(&session, savedPort);
    if (item == kCancelItem) {
        return userCanceledErr;
    }
    StoreRadius(parameters, session.radius);
    return session.preview.workStatus;
}
