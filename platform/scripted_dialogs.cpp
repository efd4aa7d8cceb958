// The scripted back end. Owns the session in use.
#include "platform/scripted_dialogs.h"

#include <algorithm>

namespace {

ScriptedSession *session;
// Stands for any window other than the dialog.
WindowRecord otherWindow;

const UserAction &CurrentAction() {
    return session->actions[session->done - 1];
}

Point Center(const Rect &rect) {
    return {static_cast<int16_t>((rect.top + rect.bottom) / 2),
            static_cast<int16_t>((rect.left + rect.right) / 2)};
}

Point MousePlace(DialogRecord *dialog, int16_t item) {
    const Rect &window = dialog->window.bounds;
    if (const DialogItem *found = model::ItemAt(dialog, item); found != nullptr) {
        const Point local = Center(found->bounds);
        return {static_cast<int16_t>(window.top + local.v), static_cast<int16_t>(window.left + local.h)};
    }
    return {static_cast<int16_t>(window.top - model::kTitleBarHeight / 2), Center(window).h};
}

bool NextAction(DialogRecord *dialog, EventRecord *event) {
    if (session->states != nullptr) {
        session->states->push_back(StateOf(*dialog));
    }
    if (session->done == session->actions.size()) {
        return false;
    }
    const UserAction &action = session->actions[session->done++];
    *event = action.event;
    if (event->what == mouseDown) {
        event->where = MousePlace(dialog, action.item);
    }
    if (event->what == updateEvt || event->what == activateEvt) {
        event->message = reinterpret_cast<uintptr_t>(action.otherWindow ? &otherWindow : &dialog->window);
    }
    return true;
}

// Printing characters replace the selection; backspace removes it, or the character before it.
void EditText(DialogRecord *dialog, int16_t item, const EventRecord &event) {
    EditedText &text = model::ItemAt(dialog, item)->text;
    if (event.what == mouseDown) {
        text.selectionEnd = text.characters.size();
        text.selectionStart = CurrentAction().selectAll ? 0 : text.selectionEnd;
        return;
    }
    const auto key = static_cast<char>(event.message & charCodeMask);
    size_t start = text.selectionStart;
    const size_t end = text.selectionEnd;
    if (key == kBackspaceCharCode && start == end && start > 0) {
        --start;
    }
    const std::string typed(key == kBackspaceCharCode ? 0 : 1, key);
    text.characters.replace(start, end - start, typed);
    text.selectionStart = text.selectionEnd = start + typed.size();
}

constexpr DialogBackend kScripted = {
    [] { return session->screen; },
    [](DialogRecord *) { return true; },
    [](DialogRecord *) {},
    NextAction,
    [](ControlRecord *) { return CurrentAction().tracked; },
    EditText,
    [](DialogRecord *, Point start) -> Point {
        const Point drag = CurrentAction().drag;
        return {static_cast<int16_t>(start.v + drag.v), static_cast<int16_t>(start.h + drag.h)};
    },
};

UserAction Mouse(int16_t item) {
    UserAction action = {};
    action.event.what = mouseDown;
    action.item = item;
    return action;
}

const ControlRecord *ControlOf(const DialogRecord &dialog, const DialogItem &item) {
    if (model::IsControlItem(item)) {
        return item.control;
    }
    for (const auto &control : dialog.controls) {
        if (control->definition == scrollBarProc && control->bounds.top == item.bounds.top &&
            control->bounds.left == item.bounds.left) {
            return control.get();
        }
    }
    return nullptr;
}

}  // namespace

UserAction user::Key(char character, uint16_t modifiers) {
    UserAction action = {};
    action.event = {keyDown, static_cast<uint8_t>(character), 0, {}, modifiers};
    return action;
}

UserAction user::Click(int16_t item) {
    return Mouse(item);
}

UserAction user::DoubleClick(int16_t item) {
    UserAction action = Mouse(item);
    action.selectAll = true;
    return action;
}

UserAction user::Press(int16_t item, int16_t part) {
    UserAction action = Mouse(item);
    action.tracked.part = part;
    return action;
}

UserAction user::MoveThumb(int16_t item, int16_t value) {
    UserAction action = Mouse(item);
    action.tracked = {kControlIndicatorPart, value};
    return action;
}

UserAction user::DragWindow(int16_t dh, int16_t dv) {
    UserAction action = Mouse(0);
    action.drag = {dv, dh};
    return action;
}

UserAction user::Event(uint16_t what, bool ofOtherWindow) {
    UserAction action = {};
    action.event.what = what;
    action.otherWindow = ofOtherWindow;
    return action;
}

std::vector<UserAction> user::Answer(int16_t item, const std::string &text) {
    std::vector<UserAction> actions = {DoubleClick(item)};
    std::transform(text.begin(), text.end(), std::back_inserter(actions), [](char c) { return Key(c); });
    actions.push_back(Key(kReturnCharCode));
    return actions;
}

DialogState StateOf(const DialogRecord &dialog) {
    const PixMap &pixels = dialog.window.port.pixMap;
    DialogState state = {dialog.window.bounds, {}, {}, {}, dialog.window.port.drawn, {}};
    for (const DialogItem &item : dialog.items) {
        const ControlRecord *control = ControlOf(dialog, item);
        state.texts.push_back(item.text);
        state.values.push_back(control == nullptr ? int16_t{0} : control->value);
        state.controls.push_back(control != nullptr);
    }
    for (int32_t v = state.drawn.top; v < state.drawn.bottom; ++v) {
        state.picture.insert(state.picture.end(), ports::PixelAt(pixels, state.drawn.left, v),
                             ports::PixelAt(pixels, state.drawn.right, v));
    }
    return state;
}

const DialogBackend &ScriptedDialogs(ScriptedSession *wanted) {
    session = wanted;
    return kScripted;
}

void UseScriptedDialogs(ScriptedSession *wanted) {
    const DialogBackend &scripted = ScriptedDialogs(wanted);
    SetDialogBackend(wanted == nullptr ? nullptr : &scripted);
}
