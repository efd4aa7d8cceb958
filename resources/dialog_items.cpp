#include "resources/dialog_items.h"

#include <iterator>
#include <string_view>

#include "hybridmedian/public.h"
#include "platform/dialogs.h"
#include "resources/big_endian.h"

namespace {

// In pixels.
constexpr int16_t kWidth = 380;
constexpr int16_t kHeight = 452;
constexpr int16_t kMovableModalBox = 5;
constexpr std::string_view kTitle = "Hybrid Median";

constexpr int16_t kLabel = kStaticTextDialogItem | kItemDisableBit;
constexpr int16_t kPicture = kUserDialogItem | kItemDisableBit;
constexpr int16_t kBar = kUserDialogItem;  // the dialog puts a scroll bar there
constexpr std::string_view kEnDash = "\xD0";

// In the order of their numbers, from 1. Texts are in Mac Roman. Coordinates are pixels from the dialog's top
// left corner. The preview is 320 x 240, with bars of 16 pixels three pixels away, and margins of 20 at the
// sides.
constexpr struct {
    Rect bounds;  // top, left, bottom, right
    int16_t type;
    std::string_view text;
} kItems[] = {
    {{410, 276, 436, 360}, kButtonDialogItem, "OK"},
    {{410, 184, 436, 268}, kButtonDialogItem, "Cancel"},
    {{310, 20, 332, 150}, kCheckBoxDialogItem, "Preview"},
    {{346, 20, 366, 74}, kLabel, "Radius:"},
    {{344, 78, 368, 118}, kEditTextDialogItem, ""},
    {{348, 216, 364, 328}, kBar, ""},
    {{44, 20, 284, 340}, kPicture, ""},
    {{287, 20, 303, 340}, kBar, ""},
    {{44, 343, 284, 359}, kBar, ""},
    {{346, 124, 366, 176}, kLabel, "pixels"},
    {{376, 20, 396, 360}, kLabel, "1 keeps the most detail, 6 removes the most noise."},
    {{311, 246, 331, 360}, kLabel, "Shown at 100%"},
    {{14, 20, 34, 360}, kLabel, "Removes noise, keeps edges and fine lines."},
    {{344, 332, 368, 360}, kButtonDialogItem, "+"},
    {{344, 184, 368, 212}, kButtonDialogItem, kEnDash},
};

void AppendShort(std::vector<uint8_t> *bytes, int32_t value) {
    AppendNumber(bytes, static_cast<uint64_t>(value), 2);
}

void AppendRect(std::vector<uint8_t> *bytes, const Rect &rect) {
    for (const int16_t side : {rect.top, rect.left, rect.bottom, rect.right}) {
        AppendShort(bytes, side);
    }
}

}  // namespace

std::vector<uint8_t> DialogTemplate() {
    std::vector<uint8_t> bytes;
    AppendRect(&bytes, {0, 0, kHeight, kWidth});
    AppendShort(&bytes, kMovableModalBox);
    AppendShort(&bytes, 1 << 8);  // visible, and a filler
    AppendShort(&bytes, 0);       // no close box
    AppendNumber(&bytes, 0, 4);   // reference value
    AppendShort(&bytes, kRadiusDialogID);
    AppendPString(&bytes, kTitle);
    return bytes;
}

std::vector<uint8_t> DialogItemList() {
    std::vector<uint8_t> bytes;
    AppendShort(&bytes, static_cast<int32_t>(std::size(kItems)) - 1);
    for (const auto &item : kItems) {
        AppendNumber(&bytes, 0, 4);  // room for a handle
        AppendRect(&bytes, item.bounds);
        AppendNumber(&bytes, static_cast<uint64_t>(item.type), 1);
        AppendPString(&bytes, item.text);
        PadTo(&bytes, 2);
    }
    return bytes;
}
