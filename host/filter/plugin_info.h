// What a plug-in declares about itself in its property list.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct PluginInfo {
    std::string name;  // in UTF-8, like the category
    std::string category;
    int32_t version = 0;  // of the interface
    int32_t subversion = 0;
    std::vector<int16_t> modes;  // as in photoshop/image_modes.h, ascending
};

// False for bytes that are not the property list of a filter.
bool ParsePropertyList(std::string_view bytes, PluginInfo *info);

// The lines that --info prints.
std::string DescribePlugin(const PluginInfo &info);
