#include "platform/resources.h"
#include "hybridmedian/public.h"

#include <algorithm>
#include <fstream>
#include <random>

#include "platform/memory.h"
#include "platform/native_paths.h"
#include "resources/big_endian.h"
#include "resources/plugin_properties.h"
#include "resources/resource_file.h"
#include "tests/support/scratch_folder.h"

namespace {

constexpr OSType kText = FourCharCode("TEXT");
constexpr OSType kItems = FourCharCode("DITL");
constexpr OSType kDialog = FourCharCode("DLOG");

class Resources : public ScratchFolder {
  protected:
    int16_t Open(const std::vector<uint8_t> &bytes) {
        std::ofstream file(folder / "test.rsrc", std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file.close();
        FSSpec spec;
        EXPECT_EQ(SpecFromNativePath((folder / "test.rsrc").string(), &spec), noErr);
        return FSpOpenResFile(&spec, 1);
    }
};

std::vector<uint8_t> Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

// A rectangle and an item of three characters, which is odd.
std::vector<uint8_t> ItemList() {
    std::vector<uint8_t> list;
    AppendNumber(&list, 0, 2);
    AppendNumber(&list, 0, 4);
    for (const uint16_t side : {uint16_t{10}, uint16_t{20}, uint16_t{30}, uint16_t{0xFFFE}}) {
        AppendNumber(&list, side, 2);
    }
    AppendNumber(&list, 8, 1);
    AppendPString(&list, "abc");
    return list;
}

std::vector<ResourceToWrite> Sample() {
    return {{kText, 5, Bytes("five")},
            {kText, -3, Bytes("")},
            {FourCharCode("PiPL"), kPropertyListID, PropertyList()},
            {kItems, 9534, ItemList()}};
}

TEST_F(Resources, AreFoundByTypeAndNumber) {
    const int16_t first = Open(ResourceFileBytes(Sample()));
    ASSERT_GT(first, 0);
    const int16_t second = Open(ResourceFileBytes({{kText, 5, Bytes("the later file")}}));
    const auto text = [](OSType type, int16_t id) {
        const Handle found = GetResource(type, id);
        return found == nullptr ? "none" : std::string(*found, static_cast<size_t>(GetHandleSize(found)));
    };
    EXPECT_EQ(text(kText, 5), "the later file");
    CloseResFile(second);
    EXPECT_EQ(text(kText, 5), "five");
    // References are reused, so they do not run out.
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Open(ResourceFileBytes({{kText, 6, Bytes("six")}})), second);
        CloseResFile(second);
    }
    EXPECT_EQ(text(kText, -3), "");
    EXPECT_EQ(text(kText, 6), "none");
    EXPECT_EQ(ResError(), resNotFound);

    const Handle items = GetResource(kItems, 9534);
    ASSERT_NE(items, nullptr);
    int16_t sides[4];
    std::copy_n(*items + 6, sizeof sides, reinterpret_cast<char *>(sides));
    EXPECT_EQ(sides[0], 10) << "numbers are native";
    EXPECT_EQ(sides[3], -2);
    CloseResFile(first);
    EXPECT_EQ(text(kItems, 9534), "none");
}

TEST_F(Resources, OfferedFilesAreOpenedWhenTheyAreNeeded) {
    CloseResFile(Open(ResourceFileBytes(Sample())));
    const int16_t other = Open(ResourceFileBytes({{kText, 7, Bytes("another file's")}}));
    const std::string path = Path("offered.rsrc");
    OfferResourceFile(&path);
    std::filesystem::copy(folder / "test.rsrc", path);
    EXPECT_NE(GetResource(kText, 7), nullptr);
    // Not read yet, so what is there now counts.
    CloseResFile(Open(ResourceFileBytes(Sample())));
    std::filesystem::rename(folder / "test.rsrc", path);
    EXPECT_NE(GetResource(kItems, 9534), nullptr);
    WithdrawResources();
    EXPECT_EQ(GetResource(kItems, 9534), nullptr);

    std::filesystem::remove(path);
    OfferResourceFile(&path);
    EXPECT_EQ(GetResource(kItems, 9534), nullptr);
    WithdrawResources();
    EXPECT_NE(GetResource(kText, 7), nullptr);
    CloseResFile(other);
}

// Every file that is truncated or has a byte changed is either refused or read without harm.
TEST_F(Resources, DamagedFilesDoNoHarm) {
    const std::vector<uint8_t> whole = ResourceFileBytes(Sample());
    int refused = 0;
    for (size_t size = 0; size < whole.size(); ++size) {
        const int16_t file = Open({whole.begin(), whole.begin() + static_cast<int64_t>(size)});
        refused += file < 0;
        CloseResFile(file);
    }
    EXPECT_EQ(refused, static_cast<int>(whole.size()));
    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round) {
        std::vector<uint8_t> damaged = whole;
        // Most faults are in the header and in the map at the end.
        const size_t map = whole.size() - 1 - random() % 90;
        damaged[round % 3 == 0   ? random() % 16
                : round % 3 == 1 ? map
                                 : random() % whole.size()] = static_cast<uint8_t>(random());
        CloseResFile(Open(damaged));
    }
    std::vector<uint8_t> shortDialog = Bytes("\0\0\0\0");
    EXPECT_LT(Open(ResourceFileBytes({{kDialog, 1, shortDialog}})), 0);
    EXPECT_EQ(ResError(), mapReadErr);
    EXPECT_LT(Open(std::vector<uint8_t>(17 << 20)), 0) << "too large";
    EXPECT_EQ(GetResource(kText, 5), nullptr);
}

}  // namespace
