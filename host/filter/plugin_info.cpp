#include "host/filter/plugin_info.h"

#include <algorithm>
#include <iterator>

#include "host/document/document_mode.h"
#include "photoshop/image_modes.h"
#include "photoshop/property_list.h"
#include "platform/mac_roman.h"

namespace {

constexpr uint32_t kVersion = 0;  // of the list's format
constexpr size_t kAlignment = 4;  // of each property's data, in bytes

bool TakeNumber(std::string_view *bytes, uint32_t *number) {
    if (bytes->size() < 4) {
        return false;
    }
    *number = 0;
    for (int i = 0; i < 4; ++i) {
        *number = *number << 8 | static_cast<uint8_t>((*bytes)[static_cast<size_t>(i)]);
    }
    bytes->remove_prefix(4);
    return true;
}

bool TakeKind(std::string_view data, PluginInfo *) {
    uint32_t kind = 0;
    return TakeNumber(&data, &kind) && kind == PIFilterKind;
}

bool TakePString(std::string_view data, std::string *text) {
    if (data.empty() || static_cast<uint8_t>(data[0]) >= data.size()) {
        return false;
    }
    *text = MacRomanToUTF8(data.substr(1, static_cast<uint8_t>(data[0])));
    return true;
}

bool TakeName(std::string_view data, PluginInfo *info) {
    return TakePString(data, &info->name);
}

bool TakeCategory(std::string_view data, PluginInfo *info) {
    return TakePString(data, &info->category);
}

bool TakeVersion(std::string_view data, PluginInfo *info) {
    uint32_t version = 0;
    if (!TakeNumber(&data, &version)) {
        return false;
    }
    info->version = static_cast<int32_t>(version >> 16);
    info->subversion = static_cast<int32_t>(version & 0xFFFF);
    return true;
}

// One bit per mode, starting with the top bit of the first byte.
bool TakeModes(std::string_view data, PluginInfo *info) {
    for (int16_t mode = 0; mode < plugInModeCount; ++mode) {
        const auto byte = static_cast<size_t>(mode / 8);
        if (byte < data.size() && (static_cast<uint8_t>(data[byte]) & (0x80 >> mode % 8)) != 0) {
            info->modes.push_back(mode);
        }
    }
    return true;
}

struct Property {
    OSType key;
    bool (*take)(std::string_view data, PluginInfo *info);
};

// Each must occur exactly once.
constexpr Property kProperties[] = {
    {PIKindProperty, TakeKind},       {PINameProperty, TakeName},        {PICategoryProperty, TakeCategory},
    {PIVersionProperty, TakeVersion}, {PIImageModesProperty, TakeModes},
};

struct Entry {
    uint32_t vendor, key, id, length;
    std::string_view data;
};

bool TakeEntry(std::string_view *bytes, Entry *entry) {
    if (!TakeNumber(bytes, &entry->vendor) || !TakeNumber(bytes, &entry->key) ||
        !TakeNumber(bytes, &entry->id) || !TakeNumber(bytes, &entry->length) ||
        entry->length > bytes->size()) {
        return false;
    }
    entry->data = bytes->substr(0, entry->length);
    const size_t padded = (size_t{entry->length} + kAlignment - 1) / kAlignment * kAlignment;
    bytes->remove_prefix(std::min(padded, bytes->size()));
    return true;
}

}  // namespace

bool ParsePropertyList(std::string_view bytes, PluginInfo *info) {
    uint32_t version = 0;
    uint32_t count = 0;
    if (!TakeNumber(&bytes, &version) || version != kVersion || !TakeNumber(&bytes, &count)) {
        return false;
    }
    int found[std::size(kProperties)] = {};
    for (uint32_t i = 0; i < count; ++i) {
        Entry entry = {};
        if (!TakeEntry(&bytes, &entry)) {
            return false;
        }
        const auto *property = std::find_if(std::begin(kProperties), std::end(kProperties),
                                            [&](const Property &known) { return known.key == entry.key; });
        if (entry.vendor != plugInVendorID || property == std::end(kProperties)) {
            continue;
        }
        if (found[property - kProperties]++ > 0 || !property->take(entry.data, info)) {
            return false;
        }
    }
    return std::all_of(std::begin(found), std::end(found), [](int times) { return times == 1; });
}

std::string DescribePlugin(const PluginInfo &info) {
    std::string modes;
    for (const int16_t mode : info.modes) {
        modes += (modes.empty() ? "" : ", ") + ModeName(mode);
    }
    return "name:      " + info.name + "\ncategory:  " + info.category +
           "\ninterface: " + std::to_string(info.version) + "." + std::to_string(info.subversion) +
           "\nmodes:     " + modes + "\n";
}
