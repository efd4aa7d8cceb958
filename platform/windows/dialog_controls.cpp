// The controls of a dialog's items, and its scroll bars. Only the plug-in moves those, and checks the boxes.
#include <algorithm>
#include <iterator>

#include "platform/mac_roman.h"
#include "platform/windows/dialog_window.h"
#include "platform/windows/display.h"
#include "platform/windows/own_module.h"
#include "platform/windows/texts.h"

namespace {

using windows::DialogWindow;

// In pixels; smaller text would be hard to read.
constexpr int kSmallestFont = 9;
constexpr int kFieldBorder = 3;  // with what Windows leaves free around the text

constexpr struct {
    int16_t kind;
    const wchar_t *name;
    DWORD style;
    DWORD extendedStyle;
} kControls[] = {
    {kButtonDialogItem, L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP, 0},
    {kCheckBoxDialogItem, L"BUTTON", BS_CHECKBOX | WS_TABSTOP, 0},
    {kStaticTextDialogItem, L"STATIC", SS_LEFT | SS_NOPREFIX | SS_CENTERIMAGE, 0},
    {kEditTextDialogItem, L"EDIT", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE},
};

std::wstring TitleOf(const DialogItem &item) {
    return windows::UTF16From(
        MacRomanToUTF8(item.control == nullptr ? item.text.characters : item.control->title));
}

std::wstring TextOf(HWND control) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

HWND MakeWindow(const DialogWindow &shown, const wchar_t *name, const std::wstring &title, DWORD style,
                DWORD extendedStyle, size_t number) {
    return CreateWindowExW(extendedStyle, name, title.c_str(), style | WS_CHILD | WS_VISIBLE | WS_GROUP, 0, 0,
                           0, 0, shown.window, reinterpret_cast<HMENU>(number), windows::OwnModule(),
                           nullptr);
}

// Numbered like the items: those of OK and Cancel are Windows' own for them.
HWND MakeControl(const DialogWindow &shown, size_t index) {
    const DialogItem &item = shown.dialog->items[index];
    const auto *found = std::find_if(std::begin(kControls), std::end(kControls), [&](const auto &candidate) {
        return candidate.kind == model::KindOf(item);
    });
    if (found == std::end(kControls)) {
        return nullptr;
    }
    const bool isDefault = index + 1 == static_cast<size_t>(shown.dialog->defaultItem);
    const DWORD style =
        found->style | (isDefault && found->kind == kButtonDialogItem ? BS_DEFPUSHBUTTON : 0u);
    const HWND control =
        MakeWindow(shown, found->name, TitleOf(item), style, found->extendedStyle, index + 1);
    if (found->kind == kEditTextDialogItem) {
        SendMessageW(control, EM_LIMITTEXT, model::kLongestText, 0);
    }
    return control;
}

HWND MakeBar(const DialogWindow &shown, const ControlRecord &control) {
    const Rect &bounds = control.bounds;
    const bool across = bounds.right - bounds.left >= bounds.bottom - bounds.top;
    const HWND bar = MakeWindow(shown, L"SCROLLBAR", {}, (across ? SBS_HORZ : SBS_VERT) | WS_TABSTOP, 0, 0);
    const int page = model::ThumbLength(control);
    SCROLLINFO range = {sizeof range,
                        SIF_RANGE | SIF_PAGE,
                        control.minimum,
                        control.maximum + page - 1,
                        static_cast<UINT>(page),
                        0,
                        0};
    SetScrollInfo(bar, SB_CTL, &range, FALSE);
    return bar;
}

// All controls with the places of theirs.
std::vector<std::pair<HWND, Rect>> Controls(const DialogWindow &shown) {
    std::vector<std::pair<HWND, Rect>> controls;
    for (size_t i = 0; i < shown.items.size(); ++i) {
        if (shown.items[i] != nullptr) {
            controls.emplace_back(shown.items[i], shown.dialog->items[i].bounds);
        }
    }
    for (const windows::BarWindow &made : shown.bars) {
        controls.emplace_back(made.bar, made.control->bounds);
    }
    return controls;
}

int TextHeight(const DialogWindow &shown) {
    const HDC device = GetDC(shown.window);
    const HGDIOBJ before = SelectObject(device, shown.font);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(device, &metrics);
    SelectObject(device, before);
    ReleaseDC(shown.window, device);
    return static_cast<int>(metrics.tmHeight);
}

// Fields have their text at the top, so they are as high as it is and stand in the middle of their place.
RECT PlaceOfControl(const DialogWindow &shown, HWND control, const Rect &bounds) {
    RECT place = windows::PlaceOf(shown, bounds);
    const bool isField = (GetWindowLongW(control, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0;
    const int border = 2 * windows::Scaled(kFieldBorder, shown.resolution);
    const LONG spare = place.bottom - place.top - TextHeight(shown) - border;
    if (isField && spare > 0) {
        InflateRect(&place, 0, static_cast<int>(-spare / 2));
    }
    return place;
}

// Rectangles are fixed, so if any label is too wide in the system's font, the font shrinks for the whole
// window.
HFONT FittingFont(const DialogWindow &shown) {
    LOGFONTW font = windows::MessageFont(shown.resolution);
    const int step = font.lfHeight < 0 ? 1 : -1;
    const int smallest = windows::Scaled(kSmallestFont, shown.resolution);
    const HDC device = GetDC(shown.window);
    for (;; font.lfHeight += step) {
        const HFONT made = CreateFontIndirectW(&font);
        const HGDIOBJ before = SelectObject(device, made);
        const bool fits =
            std::all_of(shown.dialog->items.begin(), shown.dialog->items.end(), [&](const DialogItem &item) {
                const std::wstring title = TitleOf(item);
                SIZE size = {};
                GetTextExtentPoint32W(device, title.c_str(), static_cast<int>(title.size()), &size);
                const RECT place = windows::PlaceOf(shown, item.bounds);
                return model::KindOf(item) != kStaticTextDialogItem || size.cx <= place.right - place.left;
            });
        SelectObject(device, before);
        if (fits || std::abs(font.lfHeight) <= smallest) {
            ReleaseDC(shown.window, device);
            return made;
        }
        DeleteObject(made);
    }
}

// Row by row, left to right within a row, which also puts each label before what it names.
void SetTabOrder(const DialogWindow &shown) {
    auto controls = Controls(shown);
    const auto middle = [](const Rect &bounds) {
        return std::pair(bounds.top + bounds.bottom, bounds.left + bounds.right);
    };
    std::sort(controls.begin(), controls.end(),
              [&](const auto &a, const auto &b) { return middle(a.second) < middle(b.second); });
    HWND before = HWND_TOP;
    for (const auto &[control, bounds] : controls) {
        SetWindowPos(control, before, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        before = control;
    }
}

void RefreshBars(DialogWindow *shown) {
    const auto &controls = shown->dialog->controls;
    bool changed = std::erase_if(shown->bars, [&](const windows::BarWindow &made) {
                       const bool gone =
                           std::none_of(controls.begin(), controls.end(),
                                        [&](const auto &control) { return control.get() == made.control; });
                       if (gone) {
                           DestroyWindow(made.bar);
                       }
                       return gone;
                   }) > 0;
    for (const auto &control : controls) {
        const bool made = std::any_of(shown->bars.begin(), shown->bars.end(),
                                      [&](const auto &bar) { return bar.control == control.get(); });
        if (control->definition == scrollBarProc && control->visible && !made) {
            shown->bars.push_back({control.get(), MakeBar(*shown, *control)});
            changed = true;
        }
    }
    if (changed) {
        windows::PlaceControls(shown);
        SetTabOrder(*shown);
    }
    for (const windows::BarWindow &made : shown->bars) {
        SCROLLINFO value = {sizeof value, SIF_POS, 0, 0, 0, made.control->value, 0};
        SetScrollInfo(made.bar, SB_CTL, &value, TRUE);
    }
}

void RefreshItem(const DialogItem &item, HWND control) {
    if (control == nullptr) {
        return;
    }
    if (model::KindOf(item) == kCheckBoxDialogItem) {
        SendMessageW(control, BM_SETCHECK, item.control->value != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
    }
    if (TextOf(control) != TitleOf(item)) {
        SetWindowTextW(control, TitleOf(item).c_str());
        if (model::KindOf(item) == kEditTextDialogItem) {
            // What is typed next replaces it.
            SendMessageW(control, EM_SETSEL, 0, -1);
        }
    }
}

// Applies only the plug-in's own selections, so that the user's are kept.
void RefreshSelection(DialogWindow *shown) {
    const HWND field = windows::FieldOf(*shown);
    if (shown->selectionCount == shown->dialog->selectionCount || field == nullptr) {
        return;
    }
    shown->selectionCount = shown->dialog->selectionCount;
    const EditedText &text = model::ItemAt(shown->dialog, shown->dialog->focusItem)->text;
    SetFocus(field);
    SendMessageW(field, EM_SETSEL, text.selectionStart, static_cast<LPARAM>(text.selectionEnd));
}

void PostEdit(DialogWindow *shown, size_t index, const std::wstring &text, size_t caret) {
    user_actions::PostEdit(&shown->actions, static_cast<int16_t>(index + 1), windows::UTF8From(text), caret);
}

// A field in whose row a scroll bar shows the same number shows what applies when it is left, whatever was
// typed.
void SettleNumber(DialogWindow *shown, size_t index) {
    const ControlRecord *bar = dialog_bars::BarInRow(*shown->dialog, shown->dialog->items[index].bounds);
    const std::wstring text = TextOf(shown->items[index]);
    const std::wstring number = bar == nullptr ? text : std::to_wstring(bar->value);
    if (text != number) {
        PostEdit(shown, index, number, number.size());
    }
}

bool IsBar(const DialogWindow &shown, HWND control) {
    return std::any_of(shown.bars.begin(), shown.bars.end(),
                       [=](const auto &made) { return made.bar == control; });
}

void TakeFieldsCommand(DialogWindow *shown, int code, size_t index) {
    const HWND field = shown->items[index];
    if (code == EN_CHANGE) {
        DWORD caret = 0;
        SendMessageW(field, EM_GETSEL, 0, reinterpret_cast<LPARAM>(&caret));
        PostEdit(shown, index, TextOf(field), caret);
    }
    // Not for another window, and a button that is clicked gives the focus back.
    const HWND focus = GetFocus();
    if (code == EN_KILLFOCUS && IsChild(shown->window, focus) != 0 &&
        (!shown->clicking || IsBar(*shown, focus))) {
        SettleNumber(shown, index);
    }
}

}  // namespace

void windows::MakeControls(DialogWindow *shown) {
    for (size_t i = 0; i < shown->dialog->items.size(); ++i) {
        shown->items.push_back(MakeControl(*shown, i));
    }
    SendMessageW(shown->window, DM_SETDEFID, static_cast<WPARAM>(shown->dialog->defaultItem), 0);
    PlaceControls(shown);
    SetTabOrder(*shown);
}

void windows::PlaceControls(DialogWindow *shown) {
    const HFONT before = shown->font;
    shown->font = FittingFont(*shown);
    for (const auto &[control, bounds] : Controls(*shown)) {
        const RECT place = PlaceOfControl(*shown, control, bounds);
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(shown->font), FALSE);
        SetWindowPos(control, nullptr, place.left, place.top, place.right - place.left,
                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    DeleteObject(before);
}

void windows::RefreshControls(DialogWindow *shown) {
    shown->refreshing = true;
    RefreshBars(shown);
    for (size_t i = 0; i < shown->items.size(); ++i) {
        RefreshItem(shown->dialog->items[i], shown->items[i]);
    }
    RefreshSelection(shown);
    shown->refreshing = false;
}

void windows::TakeCommand(DialogWindow *shown, int code, HWND control) {
    const auto found = std::find(shown->items.begin(), shown->items.end(), control);
    if (control == nullptr || found == shown->items.end() || shown->refreshing) {
        return;
    }
    const auto index = static_cast<size_t>(found - shown->items.begin());
    const DialogItem &item = shown->dialog->items[index];
    if (model::KindOf(item) == kEditTextDialogItem) {
        TakeFieldsCommand(shown, code, index);
    } else if (code == BN_CLICKED && model::IsControlItem(item)) {
        user_actions::PostPress(&shown->actions, item.bounds, {});
        // A click leaves the focus, and the selection, in the field; only keys move the focus to the button.
        if (GetKeyState(VK_SPACE) >= 0 && GetFocus() == control) {
            SetFocus(FieldOf(*shown));
        }
    }
}

// One action for each time that the mouse is down: while it is, the bar would repeat itself.
void windows::TakeScroll(DialogWindow *shown, int code, int16_t position, HWND bar) {
    static constexpr std::pair<int, int16_t> kParts[] = {
        {SB_LINEUP, kControlUpButtonPart},         {SB_LINEDOWN, kControlDownButtonPart},
        {SB_PAGEUP, kControlPageUpPart},           {SB_PAGEDOWN, kControlPageDownPart},
        {SB_THUMBPOSITION, kControlIndicatorPart},
    };
    const auto made = std::find_if(shown->bars.begin(), shown->bars.end(),
                                   [=](const BarWindow &candidate) { return candidate.bar == bar; });
    const auto *part = std::find_if(std::begin(kParts), std::end(kParts),
                                    [=](const auto &candidate) { return candidate.first == code; });
    const bool pressed =
        std::any_of(shown->actions.waiting.begin(), shown->actions.waiting.end(),
                    [](const user_actions::Action &action) { return action.tracked.part != 0; });
    if (made == shown->bars.end() || part == std::end(kParts) || pressed) {
        return;
    }
    user_actions::PostPress(&shown->actions, made->control->bounds, {part->second, position});
}
