#include "platform/qt/item_widgets.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <iterator>

#include "platform/qt/accessible_names.h"
#include "platform/qt/rectangles.h"

namespace {

using qt::DialogWindow;

// In pixels; smaller text would be hard to read.
constexpr int kSmallestFont = 9;
// A click leaves the focus, and the selection, in the field; only Tab moves the focus to the widget.
constexpr Qt::FocusPolicy kNoClickFocus = Qt::TabFocus;

QWidget *MakeButton(DialogWindow *shown, size_t index, const QString &title) {
    auto *button = new QPushButton(title, shown->window.get());
    button->setAutoDefault(false);
    button->setFocusPolicy(kNoClickFocus);
    QObject::connect(button, &QPushButton::clicked, [=] {
        user_actions::PostPress(&shown->input.actions, shown->dialog->items[index].bounds, {});
    });
    return button;
}

// Only the plug-in checks the box.
QWidget *MakeCheckBox(DialogWindow *shown, size_t index, const QString &title) {
    auto *box = new QCheckBox(title, shown->window.get());
    box->setFocusPolicy(kNoClickFocus);
    QObject::connect(box, &QCheckBox::clicked, [=](bool checked) {
        box->setChecked(!checked);
        user_actions::PostPress(&shown->input.actions, shown->dialog->items[index].bounds, {});
    });
    return box;
}

QWidget *MakeLabel(DialogWindow *shown, size_t, const QString &text) {
    return new QLabel(text, shown->window.get());
}

QWidget *MakeField(DialogWindow *shown, size_t index, const QString &text) {
    auto *field = new QLineEdit(text, shown->window.get());
    field->setMaxLength(static_cast<int>(model::kLongestText));
    QObject::connect(field, &QLineEdit::textEdited, [=] {
        user_actions::PostEdit(&shown->input.actions, static_cast<int16_t>(index + 1),
                               field->text().toStdString(), static_cast<size_t>(field->cursorPosition()));
    });
    return field;
}

constexpr struct {
    int16_t kind;
    QWidget *(*make)(DialogWindow *shown, size_t index, const QString &title);
} kMakers[] = {
    {kButtonDialogItem, MakeButton},
    {kCheckBoxDialogItem, MakeCheckBox},
    {kStaticTextDialogItem, MakeLabel},
    {kEditTextDialogItem, MakeField},
};

QString TitleOf(const DialogItem &item) {
    return qt::TextFrom(item.control == nullptr ? item.text.characters : item.control->title);
}

QWidget *MakeItemWidget(DialogWindow *shown, size_t index) {
    const DialogItem &item = shown->dialog->items[index];
    const auto *maker = std::find_if(std::begin(kMakers), std::end(kMakers), [&](const auto &candidate) {
        return candidate.kind == model::KindOf(item);
    });
    if (maker == std::end(kMakers)) {
        return nullptr;
    }
    QWidget *widget = maker->make(shown, index, TitleOf(item));
    widget->setGeometry(qt::QRectOf(item.bounds));
    widget->setAccessibleName(qt::AccessibleName(*shown->dialog, item.bounds, TitleOf(item)));
    widget->installEventFilter(shown->watcher.get());
    return widget;
}

// Rectangles are fixed, so if any label is too wide in the desktop's font, the font shrinks for the whole
// window.
void FitFont(const DialogWindow &shown) {
    QFont font = shown.window->font();
    const auto fits = [&](const QWidget *widget) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        return label == nullptr || QFontMetrics(font).horizontalAdvance(label->text()) <= label->width();
    };
    int pixels = QFontInfo(font).pixelSize();
    while (pixels > kSmallestFont && !std::all_of(shown.items.begin(), shown.items.end(), fits)) {
        font.setPixelSize(--pixels);
    }
    shown.window->setFont(font);
}

// Row by row, left to right within a row.
void SetTabOrder(const DialogWindow &shown) {
    std::vector<QWidget *> order;
    std::copy_if(
        shown.items.begin(), shown.items.end(), std::back_inserter(order),
        [](const QWidget *widget) { return widget != nullptr && widget->focusPolicy() != Qt::NoFocus; });
    std::sort(order.begin(), order.end(), [](const QWidget *a, const QWidget *b) {
        const QPoint first = a->geometry().center();
        const QPoint second = b->geometry().center();
        return first.y() != second.y() ? first.y() < second.y() : first.x() < second.x();
    });
    for (size_t i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

void RefreshItem(DialogWindow *shown, size_t index) {
    const DialogItem &item = shown->dialog->items[index];
    QWidget *widget = shown->items[index];
    if (auto *box = qobject_cast<QCheckBox *>(widget)) {
        box->setChecked(item.control->value != 0);
    } else if (auto *button = qobject_cast<QPushButton *>(widget)) {
        button->setText(TitleOf(item));
    } else if (auto *field = qobject_cast<QLineEdit *>(widget);
               field != nullptr && field->text() != TitleOf(item)) {
        field->setText(TitleOf(item));
    }
}

// Applies only the plug-in's own selections, so that the user's are kept.
void RefreshSelection(DialogWindow *shown) {
    if (shown->selectionCount == shown->dialog->selectionCount) {
        return;
    }
    shown->selectionCount = shown->dialog->selectionCount;
    const int16_t item = shown->dialog->focusItem;
    const EditedText &text = model::ItemAt(shown->dialog, item)->text;
    auto *field = qobject_cast<QLineEdit *>(shown->items[static_cast<size_t>(item - 1)]);
    if (field != nullptr) {
        field->setFocus();
        field->setSelection(static_cast<int>(text.selectionStart),
                            static_cast<int>(text.selectionEnd - text.selectionStart));
    }
}

}  // namespace

void qt::MakeItemWidgets(DialogWindow *shown) {
    for (size_t i = 0; i < shown->dialog->items.size(); ++i) {
        shown->items.push_back(MakeItemWidget(shown, i));
    }
    FitFont(*shown);
    SetTabOrder(*shown);
}

void qt::RefreshItems(DialogWindow *shown) {
    for (size_t i = 0; i < shown->items.size(); ++i) {
        RefreshItem(shown, i);
    }
    RefreshSelection(shown);
}
