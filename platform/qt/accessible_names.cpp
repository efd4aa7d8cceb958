#include "platform/qt/accessible_names.h"

#include <algorithm>

#include "platform/mac_roman.h"

namespace {

const DialogItem *LabelOfRow(const DialogRecord &dialog, const Rect &bounds) {
    const DialogItem *first = nullptr;
    for (const DialogItem &item : dialog.items) {
        const bool sameRow = item.bounds.top < bounds.bottom && bounds.top < item.bounds.bottom;
        if (model::KindOf(item) == kStaticTextDialogItem && sameRow && item.bounds.left < bounds.left &&
            (first == nullptr || item.bounds.left < first->bounds.left)) {
            first = &item;
        }
    }
    return first;
}

}  // namespace

QString qt::TextFrom(const std::string &macRoman) {
    return QString::fromStdString(MacRomanToUTF8(macRoman));
}

QString qt::AccessibleName(const DialogRecord &dialog, const Rect &bounds, const QString &title) {
    if (std::any_of(title.begin(), title.end(), [](QChar c) { return c.isLetter(); })) {
        return title;
    }
    const DialogItem *label = LabelOfRow(dialog, bounds);
    if (label == nullptr) {
        return title;
    }
    return (TextFrom(label->text.characters).remove(':') + ' ' + title).trimmed();
}
