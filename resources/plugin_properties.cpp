#include "resources/plugin_properties.h"

#include <string>

#include "photoshop/image_modes.h"
#include "photoshop/property_list.h"
#include "resources/big_endian.h"

namespace {

constexpr std::string_view kName = "Hybrid Median";
constexpr std::string_view kCategory = "Noise";

constexpr int kInterfaceVersion = 4;
constexpr int kInterfaceSubversion = 0;

#if defined(__aarch64__)
constexpr OSType kCodeProperty = FourCharCode("ma64");
#else
constexpr OSType kCodeProperty = FourCharCode("8664");
#endif

using Bytes = std::vector<uint8_t>;

// What differs between systems.
struct Form {
    void (*appendNumber)(Bytes *bytes, uint64_t number, int width);
    std::string_view dialogFollows;  // ends the name in the menu
    OSType codeProperty;
    std::string_view entryPoint;
    std::string_view textEnd;
};
// Mac Roman's ellipsis; on Windows every language has other bytes for it.
constexpr Form kMac = {AppendNumber, "\xC9", kCodeProperty, "main", ""};
constexpr Form kWindows = {AppendLittleEndian, "...", FourCharCode("8664"), "PluginMain", {"\0", 1}};

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

void AppendProperty(const Form &form, Bytes *list, OSType key, const Bytes &data) {
    form.appendNumber(list, plugInVendorID, 4);
    form.appendNumber(list, key, 4);
    form.appendNumber(list, 0, 4);
    form.appendNumber(list, data.size(), 4);
    list->insert(list->end(), data.begin(), data.end());
    list->resize(list->size() + (4 - data.size() % 4) % 4);
}

Bytes Number(const Form &form, uint64_t number) {
    Bytes bytes;
    form.appendNumber(&bytes, number, 4);
    return bytes;
}

Bytes Text(const Form &form, std::string_view text) {
    Bytes bytes(text.begin(), text.end());
    AppendText(&bytes, form.textEnd);
    return bytes;
}

Bytes PString(std::string_view text) {
    Bytes bytes;
    AppendPString(&bytes, text);
    return bytes;
}

Bytes ModeFlags() {
    Bytes flags(4);
    for (const DeclaredMode &declared : kModes) {
        flags[static_cast<size_t>(declared.mode / 8)] |= static_cast<uint8_t>(0x80 >> declared.mode % 8);
    }
    return flags;
}

std::string EnableExpression() {
    std::string text = "in (PSHOP_ImageMode";
    for (const DeclaredMode &declared : kModes) {
        text.append(", ").append(declared.name);
    }
    return text + ")";
}

Bytes FilterCases() {
    Bytes cases;
    for (int i = 0; i < kFilterCases; ++i) {
        cases.insert(cases.end(), {kStraightData, kStraightData, 0, 0});
    }
    return cases;
}

void AppendProperties(const Form &form, Bytes *list) {
    const struct {
        OSType key;
        Bytes data;
    } properties[] = {
        {PIKindProperty, Number(form, PIFilterKind)},
        {PINameProperty, PString(std::string(kName).append(form.dialogFollows))},
        {PICategoryProperty, PString(kCategory)},
        {PIVersionProperty, Number(form, kInterfaceVersion << 16 | kInterfaceSubversion)},
        {PIPriorityProperty, Number(form, 0)},
        {PIImageModesProperty, ModeFlags()},
        {PIEnableInfoProperty, Text(form, EnableExpression())},
        {PIFilterCaseInfoProperty, FilterCases()},
        {form.codeProperty, Text(form, form.entryPoint)},
    };
    form.appendNumber(list, 0, 4);  // the list's version
    form.appendNumber(list, std::size(properties), 4);
    for (const auto &property : properties) {
        AppendProperty(form, list, property.key, property.data);
    }
}

}  // namespace

std::vector<uint8_t> PropertyList() {
    Bytes list;
    AppendProperties(kMac, &list);
    return list;
}

std::vector<uint8_t> WindowsPropertyList() {
    Bytes list;
    AppendLittleEndian(&list, 1, 2);  // told of the resource, not of the list
    AppendProperties(kWindows, &list);
    return list;
}
