// Owns the open dialogs.
#include "platform/dialogs.h"

#include <algorithm>

#include "platform/dialog_backend.h"
#include "platform/internal/dialog_model.h"
#include "platform/memory.h"
#include "platform/resources.h"

namespace {

constexpr OSType kDialogType = FourCharCode("DLOG");
constexpr OSType kItemListType = FourCharCode("DITL");
constexpr RGBColor kWhite = {0xFFFF, 0xFFFF, 0xFFFF};

bool IsTextItem(const DialogItem &item) {
    const int16_t kind = model::KindOf(item);
    return kind == kStaticTextDialogItem || kind == kEditTextDialogItem;
}

// A text item's handle is the address of its record, which does not move while the dialog is open.
DialogItem *TextItemOf(Handle handle) {
    for (DialogRecord *dialog : model::OpenDialogs()) {
        for (DialogItem &item : dialog->items) {
            if (reinterpret_cast<Handle>(&item) == handle && IsTextItem(item)) {
                return &item;
            }
        }
    }
    return nullptr;
}

Handle HandleOf(DialogItem *item) {
    if (model::KindOf(*item) == kUserDialogItem) {
        return reinterpret_cast<Handle>(item->draw);
    }
    return model::IsControlItem(*item) ? reinterpret_cast<Handle>(item->control)
                                       : reinterpret_cast<Handle>(item);
}

void PaintWhite(GrafPort *port) {
    GrafPtr saved;
    GetPort(&saved);
    SetPort(port);
    RGBForeColor(&kWhite);
    PaintRect(&port->pixMap.bounds);
    constexpr RGBColor kBlack = {};
    RGBForeColor(&kBlack);
    port->drawn = {};
    SetPort(saved);
}

bool ReadTemplates(int16_t id, DialogRecord *dialog) {
    Handle window = GetResource(kDialogType, id);
    int16_t itemListID;
    if (window == nullptr || !model::ReadWindowTemplate(window, &dialog->window, &itemListID)) {
        return false;
    }
    Handle items = GetResource(kItemListType, itemListID);
    return items != nullptr && model::ReadItemList(items, dialog);
}

bool MakePicture(WindowRecord *window) {
    Rect contents = window->bounds;
    OffsetRect(&contents, static_cast<int16_t>(-contents.left), static_cast<int16_t>(-contents.top));
    if (ports::InitPort(&window->port, contents, false) != noErr) {
        return false;
    }
    PaintWhite(&window->port);
    model::MoveWindowTo(window, {window->bounds.top, window->bounds.left});
    window->invalid = contents;
    return true;
}

int16_t FirstTextField(const DialogRecord &dialog) {
    const auto field = std::find_if(dialog.items.begin(), dialog.items.end(), [](const DialogItem &item) {
        return model::KindOf(item) == kEditTextDialogItem;
    });
    return field == dialog.items.end() ? int16_t{0} : static_cast<int16_t>(field - dialog.items.begin() + 1);
}

bool Open(DialogRecord *dialog) {
    dialog->defaultItem = kStdOkItemIndex;
    dialog->focusItem = FirstTextField(*dialog);
    return CurrentDialogBackend().open(dialog);
}

}  // namespace

std::vector<DialogRecord *> &model::OpenDialogs() {
    static std::vector<DialogRecord *> dialogs;
    return dialogs;
}

DialogItem *model::ItemAt(DialogRecord *dialog, int16_t item) {
    const auto index = static_cast<size_t>(item - 1);
    return item >= 1 && index < dialog->items.size() ? &dialog->items[index] : nullptr;
}

int16_t model::ItemUnder(const DialogRecord &dialog, Point local) {
    const auto found = std::find_if(dialog.items.begin(), dialog.items.end(), [&](const DialogItem &item) {
        return ports::Contains(item.bounds, local);
    });
    return found == dialog.items.end() ? int16_t{0} : static_cast<int16_t>(found - dialog.items.begin() + 1);
}

int16_t model::KindOf(const DialogItem &item) {
    return static_cast<int16_t>(item.type & ~kItemDisableBit);
}

bool model::IsControlItem(const DialogItem &item) {
    return KindOf(item) >= kButtonDialogItem && KindOf(item) <= kResourceControlDialogItem;
}

bool model::IsTextField(DialogRecord *dialog, int16_t item) {
    const DialogItem *found = ItemAt(dialog, item);
    return found != nullptr && KindOf(*found) == kEditTextDialogItem;
}

DialogRef GetNewDialog(int16_t id, void *, WindowRef) {
    auto dialog = std::make_unique<DialogRecord>();
    if (!ReadTemplates(id, dialog.get()) || !MakePicture(&dialog->window) || !Open(dialog.get())) {
        CurrentDialogBackend().close(dialog.get());
        ports::ReleasePort(&dialog->window.port);
        return nullptr;
    }
    model::OpenDialogs().push_back(dialog.get());
    return dialog.release();
}

void DisposeDialog(DialogRef dialog) {
    CurrentDialogBackend().close(dialog);
    std::erase(model::OpenDialogs(), dialog);
    ports::ReleasePort(&dialog->window.port);
    delete dialog;
}

WindowRef GetDialogWindow(DialogRef dialog) {
    return &dialog->window;
}

CGrafPtr GetDialogPort(DialogRef dialog) {
    return &dialog->window.port;
}

void GetDialogItem(DialogRef dialog, int16_t item, int16_t *type, Handle *handle, Rect *bounds) {
    if (DialogItem *found = model::ItemAt(dialog, item); found != nullptr) {
        *type = found->type;
        *handle = HandleOf(found);
        *bounds = found->bounds;
    }
}

void SetDialogItem(DialogRef dialog, int16_t item, int16_t type, Handle handle, const Rect *bounds) {
    DialogItem *found = model::ItemAt(dialog, item);
    if (found == nullptr) {
        return;
    }
    found->type = type;
    found->bounds = *bounds;
    if (model::KindOf(*found) == kUserDialogItem) {
        found->draw = reinterpret_cast<UserItemUPP>(handle);
    } else if (model::IsControlItem(*found)) {
        found->control = reinterpret_cast<ControlRef>(handle);
    }
}

void GetDialogItemText(Handle handle, StringPtr text) {
    const DialogItem *item = TextItemOf(handle);
    model::CopyTitle(item == nullptr ? "" : item->text.characters, text);
}

void SetDialogItemText(Handle handle, ConstStringPtr text) {
    if (DialogItem *item = TextItemOf(handle); item != nullptr) {
        const std::string characters = model::TitleFrom(text);
        item->text = {characters, characters.size(), characters.size()};
    }
}

void SelectDialogItemText(DialogRef dialog, int16_t item, int16_t start, int16_t end) {
    if (!model::IsTextField(dialog, item)) {
        return;
    }
    DialogItem *found = model::ItemAt(dialog, item);
    const auto position = [&](int16_t at) {
        return std::min(static_cast<size_t>(std::max(at, int16_t{0})), found->text.characters.size());
    };
    found->text.selectionStart = position(start);
    found->text.selectionEnd = std::max(position(start), position(end));
    dialog->focusItem = item;
    ++dialog->selectionCount;
}

OSErr SetDialogDefaultItem(DialogRef dialog, int16_t item) {
    dialog->defaultItem = item;
    return noErr;
}

OSErr SetDialogCancelItem(DialogRef dialog, int16_t item) {
    dialog->cancelItem = item;
    return noErr;
}

ModalFilterUPP NewModalFilterUPP(ModalFilterProc procedure) {
    return procedure;
}

UserItemUPP NewUserItemUPP(UserItemProc procedure) {
    return procedure;
}
