#include "resources/plugin_properties.h"

#include "photoshop/image_modes.h"
#include "photoshop/property_list.h"
#include "resources/big_endian.h"

namespace {

// Mac Roman; 0xC9 is the ellipsis, which says that a dialog follows.
constexpr std::string_view kName = "Hybrid Median\xC9";
constexpr std::string_view kCategory = "Noise";
constexpr std::string_view kEntryPoint = "main";

constexpr int kInterfaceVersion = 4;
constexpr int kInterfaceSubversion = 0;

#if defined(__aarch64__)
constexpr OSType kCodeProperty = FourCharCode("ma64");
#else
constexpr OSType kCodeProperty = FourCharCode("8664");
#endif

struct DeclaredMode {
    int16_t mode;
    std::string_view name;  // in the enable expression
};

constexpr DeclaredMode kModes[] = {
    {plugInModeGrayScale, "GrayScaleMode"}, {plugInModeRGBColor, "RGBMode"},
    {plugInModeCMYKColor, "CMYKMode"},      {plugInModeLabColor, "LabMode"},
    {plugInModeGray16, "Gray16Mode"},       {plugInModeRGB48, "RGB48Mode"},
    {plugInModeLab48, "Lab48Mode"},         {plugInModeCMYK64, "CMYK64Mode"},
    {plugInModeRGB96, "RGB96Mode"},         {plugInModeGray32, "Gray32Mode"},
};

constexpr int kFilterCases = 7;  // of the interface, see FilterRecord's filterCase
constexpr uint8_t kStraightData = 1;

void AppendProperty(std::vector<uint8_t> *list, OSType key, const std::vector<uint8_t> &data) {
    AppendNumber(list, plugInVendorID, 4);
    AppendNumber(list, key, 4);
    AppendNumber(list, 0, 4);
    AppendNumber(list, data.size(), 4);
    list->insert(list->end(), data.begin(), data.end());
    PadTo(list, 4);
}

std::vector<uint8_t> Number(uint64_t number) {
    std::vector<uint8_t> bytes;
    AppendNumber(&bytes, number, 4);
    return bytes;
}

std::vector<uint8_t> PString(std::string_view text) {
    std::vector<uint8_t> bytes;
    AppendPString(&bytes, text);
    return bytes;
}

std::vector<uint8_t> ModeFlags() {
    std::vector<uint8_t> flags(4);
    for (const DeclaredMode &declared : kModes) {
        flags[static_cast<size_t>(declared.mode / 8)] |= static_cast<uint8_t>(0x80 >> declared.mode % 8);
    }
    return flags;
}

std::vector<uint8_t> EnableExpression() {
    std::vector<uint8_t> text;
    AppendText(&text, "in (PSHOP_ImageMode");
    for (const DeclaredMode &declared : kModes) {
        AppendText(&text, ", ");
        AppendText(&text, declared.name);
    }
    AppendText(&text, ")");
    return text;
}

std::vector<uint8_t> FilterCases() {
    std::vector<uint8_t> cases;
    for (int i = 0; i < kFilterCases; ++i) {
        cases.insert(cases.end(), {kStraightData, kStraightData, 0, 0});
    }
    return cases;
}

}  // namespace

std::vector<uint8_t> PropertyList() {
    const struct {
        OSType key;
        std::vector<uint8_t> data;
    } properties[] = {
        {PIKindProperty, Number(PIFilterKind)},
        {PINameProperty, PString(kName)},
        {PICategoryProperty, PString(kCategory)},
        {PIVersionProperty, Number(kInterfaceVersion << 16 | kInterfaceSubversion)},
        {PIPriorityProperty, Number(0)},
        {PIImageModesProperty, ModeFlags()},
        {PIEnableInfoProperty, EnableExpression()},
        {PIFilterCaseInfoProperty, FilterCases()},
        {kCodeProperty, {kEntryPoint.begin(), kEntryPoint.end()}},
    };
    std::vector<uint8_t> list;
    AppendNumber(&list, 0, 4);
    AppendNumber(&list, std::size(properties), 4);
    for (const auto &property : properties) {
        AppendProperty(&list, property.key, property.data);
    }
    return list;
}
