// Tests every kernel that this machine can run against the plain implementation of the filter.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include "median/kernel/hybrid_kernel.h"
#include "median/plain/plain_filter.h"
#include "tests/support/scratch_folder.h"

namespace {

struct Format {
    PixelFormat format;
    int samples;
    int sampleBytes;
};

constexpr Format kFormats[] = {
    {PixelFormat::gray8, 1, 1},
    {PixelFormat::gray16, 1, 2},
    {PixelFormat::rgb8, 3, 1},
    {PixelFormat::rgb16, 3, 2},
};

// With random samples distance decides; with few values and flat pictures the order of the samples does.
enum class Content { kRandom, kThreeValues, kNarrowRange, kFlat };
constexpr Content kContents[] = {Content::kRandom, Content::kThreeValues, Content::kNarrowRange,
                                 Content::kFlat};

class Kernels : public testing::TestWithParam<int> {
  protected:
    std::vector<uint8_t> MakePixels(const Format &format, int width, int height, Content content) {
        const uint32_t top = format.sampleBytes == 1 ? 255 : 65535;
        const uint32_t values[3] = {Next() % (top + 1), Next() % (top + 1), top};
        std::vector<uint8_t> bytes;
        for (int i = 0; i < width * height * format.samples; ++i) {
            const uint32_t sample = content == Content::kRandom        ? Next() & top
                                    : content == Content::kThreeValues ? values[Next() % 3]
                                    : content == Content::kNarrowRange ? top - Next() % 4
                                                                       : values[0];
            for (int b = 0; b < format.sampleBytes; ++b) {
                bytes.push_back(static_cast<uint8_t>(sample >> (8 * b)));
            }
        }
        return bytes;
    }

    uint32_t Next() { return static_cast<uint32_t>(random()); }

    std::mt19937 random{7};
};

struct Blocks {
    int lines;
    int columns;
};

// Filters block by block. Every line is a separate allocation, so that a sanitizer detects reads and writes
// beyond it, and scratch memory starts out full of NaNs.
std::vector<uint8_t> FilterInBlocks(const HybridKernel &kernel, const Format &format, int width, int height,
                                    const std::vector<uint8_t> &pixels, int radius, Blocks blocks) {
    const size_t rowBytes = static_cast<size_t>(width * format.samples * format.sampleBytes);
    std::vector<std::unique_ptr<uint8_t[]>> source, target;
    for (size_t y = 0; y < static_cast<size_t>(height); ++y) {
        source.emplace_back(new uint8_t[rowBytes]);
        std::copy_n(pixels.data() + y * rowBytes, rowBytes, source.back().get());
        target.emplace_back(new uint8_t[rowBytes]);
    }
    const size_t scratchBytes = kernel.scratchBytes(format.format, radius);
    constexpr std::align_val_t kAlignment{kHybridScratchAlignment};
    const std::unique_ptr<void, void (*)(void *)> scratch(operator new(scratchBytes, kAlignment),
                                                          [](void *block) {
                                                              operator delete(block, kAlignment);
                                                          });
    std::memset(scratch.get(), 0xFF, scratchBytes);
    for (int y = 0; y < height; y += blocks.lines) {
        const int lines = std::min(blocks.lines, height - y);
        std::vector<const void *> sourceLines;
        std::vector<void *> targetLines;
        for (int i = -radius; i < lines + radius; ++i) {
            sourceLines.push_back(source[static_cast<size_t>(std::clamp(y + i, 0, height - 1))].get());
        }
        for (int i = 0; i < lines; ++i) {
            targetLines.push_back(target[static_cast<size_t>(y + i)].get());
        }
        for (int x = 0; x < width; x += blocks.columns) {
            kernel.filter({format.format, radius, width, lines, x, std::min(x + blocks.columns, width),
                           sourceLines.data(), targetLines.data(), scratch.get()});
        }
    }
    std::vector<uint8_t> filtered;
    for (const auto &line : target) {
        filtered.insert(filtered.end(), line.get(), line.get() + rowBytes);
    }
    return filtered;
}

TEST_P(Kernels, GiveWhatTheDefinitionGives) {
    constexpr int kSizes[][2] = {{1, 1}, {1, 30}, {70, 1}, {2, 3}, {37, 23}, {129, 9}, {531, 3}};
    constexpr Blocks kBlocks[] = {{1, 1 << 20}, {3, 100}, {8, 7}, {64, 1 << 20}};
    const int radius = GetParam();
    size_t picture = 0;
    for (const auto &[width, height] : kSizes) {
        for (const Format &format : kFormats) {
            for (const Content content : kContents) {
                const std::vector<uint8_t> pixels = MakePixels(format, width, height, content);
                std::vector<uint8_t> defined(pixels.size());
                FilterPlainly({format.format, width, height, pixels.data()}, radius, defined.data());
                for (auto kernel = UsableHybridKernels(); *kernel != nullptr; ++kernel) {
                    const Blocks blocks = kBlocks[picture++ % std::size(kBlocks)];
                    ASSERT_EQ(FilterInBlocks(**kernel, format, width, height, pixels, radius, blocks),
                              defined)
                        << (*kernel)->name << ", " << width << " x " << height << ", " << format.samples
                        << " x " << format.sampleBytes << " bytes, blocks of " << blocks.lines
                        << " lines and " << blocks.columns << " columns";
                }
            }
        }
    }
}

// Samples up to 65535 come out whole, and a tag with its pixel, although neither is compared: it is by their
// halves that the pixels are chosen. Here the tags tell where each chosen pixel was.
TEST_P(Kernels, CarryWhatTheyDoNotCompare) {
    constexpr int kWidth = 131, kHeight = 21;
    constexpr PixelFormat kRelated[][3] = {
        {PixelFormat::gray16, PixelFormat::gray16Full, PixelFormat::gray16Tagged},
        {PixelFormat::rgb16, PixelFormat::rgb16Full, PixelFormat::rgb16Tagged}};
    const auto bytesOf = [](const std::vector<uint16_t> &samples) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(samples.data());
        return std::vector<uint8_t>(bytes, bytes + 2 * samples.size());
    };
    const int radius = GetParam();
    for (const auto &[halvedFormat, fullFormat, taggedFormat] : kRelated) {
        const int samples = halvedFormat == PixelFormat::gray16 ? 1 : 3;
        for (const uint32_t values : {65536u, 3u}) {
            std::vector<uint16_t> full, halved, tagged;
            for (int i = 0; i < kWidth * kHeight; ++i) {
                for (int sample = 0; sample < samples; ++sample) {
                    full.push_back(static_cast<uint16_t>(65535 - Next() % values));
                    halved.push_back(static_cast<uint16_t>((full.back() + 1) / 2));
                    tagged.push_back(halved.back());
                }
                tagged.push_back(static_cast<uint16_t>(i));
            }
            std::vector<uint8_t> defined(2 * halved.size());
            FilterPlainly({halvedFormat, kWidth, kHeight, bytesOf(halved).data()}, radius, defined.data());
            for (auto kernel = UsableHybridKernels(); *kernel != nullptr; ++kernel) {
                const auto filter = [&](PixelFormat format, int count, const std::vector<uint16_t> &pixels) {
                    const std::vector<uint8_t> filtered = FilterInBlocks(
                        **kernel, {format, count, 2}, kWidth, kHeight, bytesOf(pixels), radius, {8, 100});
                    std::vector<uint16_t> result(filtered.size() / 2);
                    std::memcpy(result.data(), filtered.data(), filtered.size());
                    return result;
                };
                const std::vector<uint16_t> places = filter(taggedFormat, samples + 1, tagged);
                std::vector<uint16_t> chosenHalved, chosenFull;
                for (size_t i = static_cast<size_t>(samples); i < places.size();
                     i += static_cast<size_t>(samples) + 1) {
                    for (int sample = 0; sample < samples; ++sample) {
                        chosenHalved.push_back(halved[static_cast<size_t>(places[i] * samples + sample)]);
                        chosenFull.push_back(full[static_cast<size_t>(places[i] * samples + sample)]);
                    }
                }
                EXPECT_EQ(bytesOf(chosenHalved), defined) << (*kernel)->name << ", " << samples;
                EXPECT_EQ(filter(fullFormat, samples, full), chosenFull)
                    << (*kernel)->name << ", " << samples;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryRadius, Kernels, testing::Range(1, 7));

TEST(KernelChoice, EnvironmentNamesAKernelThatRuns) {
    const HybridKernel *fastest = SelectHybridKernel();
    for (auto kernel = UsableHybridKernels(); *kernel != nullptr; ++kernel) {
        SetVariable("HYMEDIAN_KERNEL", (*kernel)->name);
        EXPECT_EQ(SelectHybridKernel(), *kernel);
    }
    SetVariable("HYMEDIAN_KERNEL", "no such kernel");
    EXPECT_EQ(SelectHybridKernel(), fastest);
    SetVariable("HYMEDIAN_KERNEL", nullptr);
}

}  // namespace
