// How the dialog's window looks, and what it tells those who cannot see it.
#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include "tests/platform/qt/screen_dialog_fixture.h"

namespace {

using user::Click;

TEST_F(ScreenDialog, StandsUnderItsTitleWhereItIsCentered) {
    // Placed low enough for its frame to be on the screen even at double scale.
    std::vector<uint8_t> low = DialogTemplate();
    PutShort(low.data() + 4, 400);
    faults::RemoveResources();
    faults::AddResource(kDialogType, kRadiusDialogID, low);
    faults::AddResource(kItemListType, kRadiusDialogID, DialogItemList());
    const Step look = [](QDialog *window) {
        const QSize screen = window->screen()->size();
        EXPECT_EQ(window->windowTitle(), "Hybrid Median");
        EXPECT_EQ(window->geometry(),
                  QRect((screen.width() - 380) / 2, (screen.height() - 400 - 20) / 3 + 20, 380, 400));
        PressKey(window, kEscape);
    };
    RunOnScreen(image, 3, {look});
}

TEST_F(ScreenDialog, TabGoesThroughTheRowsAndEveryWidgetHasAName) {
    std::vector<std::string> order;
    std::vector<std::string> bars;
    const Step look = [&](QDialog *window) {
        for (int i = 0; i < 6; ++i) {
            order.push_back(window->focusWidget()->accessibleName().toStdString());
            QTest::keyClick(window->windowHandle(), Qt::Key_Tab);
        }
        for (const QWidget *widget : window->findChildren<QWidget *>()) {
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
        }
        for (const QScrollBar *bar : window->findChildren<QScrollBar *>()) {
            bars.push_back(bar->accessibleName().toStdString());
        }
    };
    RunOnScreen(image, 1, {look, StepsOf({Click(kOKItem)})[0]});
    EXPECT_EQ(order,
              (std::vector<std::string>{"Radius", "Radius \u2013", "Radius +", "Cancel", "OK", "Preview"}));
    EXPECT_EQ(bars, (std::vector<std::string>{"Horizontal position", "Vertical position", "Radius"}));
}

// Sky over a field with a wire fence, all of it noisy.
TestImage Photograph() {
    TestImage photo = RandomImage(600, 450, 3, 9);
    for (int y = 0; y < photo.height; ++y) {
        for (int x = 0; x < photo.width; ++x) {
            const bool wire = (x + y) % 60 < 2 || x % 80 < 2;
            const int light = 160 - y / 4;
            const int color[] = {wire ? 30 : light - 40 + x / 12, wire ? 30 : light,
                                 wire      ? 35
                                 : y < 220 ? light + 60
                                           : light - 60};
            for (int c = 0; c < 3; ++c) {
                uint8_t *sample = &photo.bytes[static_cast<size_t>((y * photo.width + x) * 3 + c)];
                const int noise = *sample < 24 ? 200 - 16 * *sample : *sample / 8 - 16;
                *sample = static_cast<uint8_t>(std::clamp(color[c] + noise, 0, 255));
            }
        }
    }
    return photo;
}

QPalette DarkPalette() {
    QPalette dark(QColor(50, 50, 50));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    return dark;
}

void ExpectCleanLayout(QDialog *window) {
    const QList<QWidget *> widgets = window->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    const QRect inside = window->rect().adjusted(8, 8, -8, -8);
    const Rect &preview = model::OpenDialogs().back()->window.port.drawn;
    const QRect picture(QPoint(preview.left, preview.top), QPoint(preview.right - 1, preview.bottom - 1));
    for (const QWidget *widget : widgets) {
        SCOPED_TRACE(widget->accessibleName().toStdString());
        EXPECT_TRUE(inside.contains(widget->geometry()));
        EXPECT_FALSE(picture.intersects(widget->geometry()));
        for (const QWidget *other : widgets) {
            EXPECT_TRUE(widget == other || !widget->geometry().intersects(other->geometry()));
        }
        if (qobject_cast<const QLabel *>(widget) != nullptr) {
            EXPECT_GE(widget->width(), widget->sizeHint().width());
            EXPECT_GE(widget->height(), widget->sizeHint().height());
        }
    }
}

// Everything fits its place, nothing overlaps, and the theme's colours are kept. Pictures are saved in the
// folder $HYMEDIAN_SCREENSHOTS.
TEST_F(ScreenDialog, LooksRightInLightAndDark) {
    InstallItems(DialogItemList());
    UseScreen();
    const QPalette usual = QApplication::palette();
    const std::pair<const char *, QPalette> themes[] = {{"/light.png", usual}, {"/dark.png", DarkPalette()}};
    for (const auto &[name, palette] : themes) {
        SCOPED_TRACE(name);
        QApplication::setPalette(palette);
        const Step look = [&, file = name, background = palette.color(QPalette::Window)](QDialog *window) {
            ExpectCleanLayout(window);
            const QImage shot = window->grab().toImage();
            EXPECT_EQ(shot.pixelColor(2, 2), background);
            if (const char *place = std::getenv("HYMEDIAN_SCREENSHOTS"); place != nullptr) {
                EXPECT_TRUE(shot.save(QString(place) + file));
            }
        };
        RunOnScreen(Photograph(), 4, {look, StepsOf({Click(kOKItem)})[0]});
    }
    QApplication::setPalette(usual);
}

}  // namespace
