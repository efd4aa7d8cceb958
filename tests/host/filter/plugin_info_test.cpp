// What the host reads from a plug-in's property list, sound and damaged.
#include "host/filter/plugin_info.h"

#include <algorithm>

#include "photoshop/image_modes.h"
#include "resources/plugin_properties.h"
#include "tests/host/host_fixture.h"

namespace {

std::string RealList() {
    const std::vector<uint8_t> list = PropertyList();
    return {list.begin(), list.end()};
}

// Overwrites the bytes that start `offset` after the property's key.
std::string WithBytes(std::string list, const std::string &key, size_t offset, const std::string &bytes) {
    return list.replace(list.find(key) + offset, bytes.size(), bytes);
}

TEST(PluginInfo, IsWhatTheListDeclares) {
    PluginInfo info;
    ASSERT_TRUE(ParsePropertyList(RealList(), &info));
    EXPECT_EQ(info.name, "Hybrid Median…");
    EXPECT_EQ(info.category, "Noise");
    EXPECT_EQ(info.version, 4);
    EXPECT_EQ(info.modes, (std::vector<int16_t>{1, 3, 4, 9, 10, 11, 12, 13, 16, 17}));
    // A property's third number is its length, followed by the data.
    ASSERT_TRUE(
        ParsePropertyList(WithBytes(RealList(), "mode", 12, std::string("\x80\0\x40\0", 4)), &(info = {})));
    EXPECT_EQ(info.modes, (std::vector<int16_t>{0, 17}));
}

TEST(PluginInfo, DamagedListsAreRefused) {
    const std::string whole = RealList();
    PluginInfo info;
    for (size_t size = 0; size + 4 < whole.size(); ++size) {
        ASSERT_FALSE(ParsePropertyList(whole.substr(0, size), &info)) << size;
    }
    const std::string damaged[] = {
        WithBytes(whole, std::string("\0\0\0\0", 4), 3, "\1"),  // another version
        std::string(whole).replace(4, 4, "\xFF\xFF\xFF\xFF"),   // count
        WithBytes(whole, "kind", 8, "\xFF\xFF\xFF\xFC"),        // length
        WithBytes(whole, "kind", 12, "8BAM"),                   // not a filter
        WithBytes(whole, "name", 12, "\x7F"),                   // a name longer than its property
        WithBytes(whole, "catg", 0, "name"),                    // one property twice, one missing
        WithBytes(whole, "mode", 0, "Mode"),
    };
    for (const std::string &list : damaged) {
        EXPECT_FALSE(ParsePropertyList(list, &info)) << &list - damaged;
    }
}

}  // namespace
