// Filtering a picture in tiles gives the same result as filtering it whole.
#include "host/filter/tiles.h"

#include <algorithm>

#include "tests/host/host_fixture.h"

namespace {

class Tiles : public HostTest {};

TEST_F(Tiles, CoresCoverTheAreaOnceAndFramesStayWithin) {
    const VRect areas[] = {{0, 0, 100, 90}, {7, 5, 8, 6}, {10, 3, 75, 31}, {0, 0, 31, 1000}};
    for (const VRect &area : areas) {
        for (const int32_t cut : {0, 2, 7}) {
            const VRect core = {area.top + HeightOf(area) * cut / 8, area.left, area.bottom, area.right};
            for (const int32_t maxSide : {13, 30, 1000}) {
                std::vector<int> covered(static_cast<size_t>(WidthOf(core)) *
                                         static_cast<size_t>(HeightOf(core)));
                for (const Tile &tile : CutIntoTiles(core, area, maxSide)) {
                    ASSERT_LE(std::max(WidthOf(tile.framed), HeightOf(tile.framed)), maxSide);
                    // Six pixels around the core, but not beyond the area's border.
                    ASSERT_EQ(tile.framed.top, std::max(area.top, tile.core.top - 6));
                    ASSERT_EQ(tile.framed.left, std::max(area.left, tile.core.left - 6));
                    ASSERT_EQ(tile.framed.bottom, std::min(area.bottom, tile.core.bottom + 6));
                    ASSERT_EQ(tile.framed.right, std::min(area.right, tile.core.right + 6));
                    for (int32_t y = tile.core.top; y < tile.core.bottom; ++y) {
                        for (int32_t x = tile.core.left; x < tile.core.right; ++x) {
                            ++covered.at(static_cast<size_t>((y - core.top) * WidthOf(core) + x - core.left));
                        }
                    }
                }
                EXPECT_EQ(std::count(covered.begin(), covered.end(), 1), std::ssize(covered));
            }
        }
    }
}

TEST_F(Tiles, GiveTheResultOfOneRun) {
    const struct {
        int16_t mode;
        int32_t depth, colorPlanes, planes;
    } kinds[] = {{plugInModeGrayScale, 8, 1, 2},
                 {plugInModeRGB48, 16, 3, 4},
                 {plugInModeCMYKColor, 8, 4, 4},
                 {plugInModeLab48, 16, 3, 3},
                 {plugInModeRGB96, 32, 3, 3}};
    const std::optional<VRect> selections[] = {std::nullopt, VRect{9, 5, 52, 40}};
    Action action;
    action.items.push_back({.key = kRadiusKey, .type = typeFloat, .number = 4});
    for (const auto &kind : kinds) {
        for (const auto &selection : selections) {
            for (const bool masked : {false, true}) {
                SCOPED_TRACE(testing::Message() << kind.mode << selection.has_value() << masked);
                Document document =
                    RandomDocument(kind.mode, kind.depth, kind.colorPlanes, kind.planes, 45, 61);
                document.selection = selection;
                if (masked) {
                    document.mask = MapBlock(MaskBytes(document), Sharing::none);
                    document.mask[700] = 255;
                }
                const FilterRequest request = {&realFilter, &document, {action}, true, {}};
                ASSERT_EQ(RunTiles(request, {{SelectedRect(document), WholeRect(document)}}).result, noErr);
                const std::vector<uint8_t> whole = BytesOf(document, document.destination);
                const VRect selected = SelectedRect(document);
                for (const int32_t maxSide : {30, 1000}) {
                    const FilterOutcome outcome =
                        RunTiles(request, CutIntoTiles(selected, selected, maxSide));
                    ASSERT_EQ(outcome.result, noErr);
                    ASSERT_EQ(BytesOf(document, document.destination), whole);
                    EXPECT_EQ(FindItem(outcome.recorded, kRadiusKey)->number, 4);
                }
                // Nothing changes outside a rectangle; the rectangle is filtered like a picture of its own.
                if (selection) {
                    const auto pixel = static_cast<size_t>(PixelBytes(document) / MaskBytes(document));
                    EXPECT_TRUE(std::equal(whole.begin(),
                                           whole.begin() + static_cast<ptrdiff_t>(pixel * (9 * 45 + 5)),
                                           document.source.get()));
                }
            }
        }
    }
}

}  // namespace
