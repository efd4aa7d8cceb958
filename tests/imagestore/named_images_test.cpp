#include "imagestore/named_images.h"

#include <fstream>
#include <vector>

#include "imagestore/kept_images.h"
#include "platform/files.h"
#include "platform/memory.h"
#include "tests/support/held_lock.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_images.h"

namespace {

class NamedImages : public ScratchFolder {
  protected:
    std::string File(const char *name) const {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

constexpr uint8_t kKeptName[] = "\004Kept";

// Leaves room for the image's record, but not for its contents.
void LeaveRoomForRecords() {
    faults::SetMemoryLimit(faults::BytesInUse() + int64_t{sizeof(NamedImage)});
}

TEST_F(NamedImages, BackingFileIsHeaderAndRows) {
    LeaveRoomForRecords();
    NamedImage *image;
    ASSERT_EQ(MakeTempImage(1000, 4, 3, &image), dskFulErr) << "not even one row to clear with";
    EXPECT_EQ(image->fileRef, -1);
    TossTempImage(image);
    EXPECT_EQ(FileCount(), 0u);

    faults::SetMemoryLimit(faults::BytesInUse() + int64_t{sizeof(NamedImage)} + 100);
    ASSERT_EQ(MakeTempImage(10, 4, 3, &image), noErr);
    EXPECT_TRUE(image->onDisk);
    EXPECT_EQ(image->memory, nullptr);
    std::string expected = std::string("\3\0\12\0\4\0", 6) + std::string(120, '\0');
    EXPECT_EQ(File("TempImage"), expected);

    const char *digits = "0123456789";
    PutLine(image, 29, 3, 10, digits);
    expected[125] = '0';
    EXPECT_EQ(File("TempImage"), expected);
    TossTempImage(image);
    EXPECT_EQ(FileCount(), 0u);

    // Larger than two of the blocks used to clear files.
    faults::SetMemoryLimit(-1);
    faults::RefuseTemporaryMemory(true);
    ASSERT_EQ(MakeTempImage(1000, 600, 2, &image), noErr);
    EXPECT_TRUE(File("TempImage") == std::string("\2\0\350\3\130\2", 6) + std::string(1200000, '\0'));
    EXPECT_EQ(CloseNamedImage(image), noErr);
    EXPECT_EQ(FileCount(), 0u) << "it was not to be kept";
}

TEST_F(NamedImages, LineAccessStaysInsideTheImage) {
    for (const bool onDisk : {false, true}) {
        faults::RefuseTemporaryMemory(onDisk);
        NamedImage *image;
        ASSERT_EQ(MakeImage(5, 3, 4, &image), noErr);
        ASSERT_EQ(image->onDisk, onDisk);

        const std::vector<uint8_t> ones(40, 1);
        const struct {
            int32_t x, y, count, written;
        } cases[] = {{-1, 0, 5, 0}, {20, 0, 5, 0}, {0, -1, 5, 0},  {0, 3, 5, 0},         {0, 0, -5, 0},
                     {0, 0, 0, 0},  {3, 1, 2, 2},  {19, 1, 10, 1}, {1, 2, INT32_MAX, 19}};
        for (const auto &c : cases) {
            const auto before = BytesOf(image);
            PutLine(image, c.x, c.y, c.count, ones.data());
            const auto after = BytesOf(image);
            EXPECT_EQ(std::count(after.begin(), after.end(), 1) - std::count(before.begin(), before.end(), 1),
                      c.written)
                << c.x << ' ' << c.y << ' ' << c.count;
            std::vector<uint8_t> read(40, 7);
            GetLine(image, c.x, c.y, c.count, read.data());
            EXPECT_EQ(std::count(read.begin(), read.end(), 7), 40 - c.written);
        }
        TossImage(image);
    }
    PutLine(nullptr, 0, 0, 1, "x");
    ImageData data = {1, 2, 3};
    GetImageData(nullptr, &data);
    EXPECT_EQ(data.bytesPerPixel + data.width + data.height, 0);
    EXPECT_EQ(TossImage(nullptr), noErr);
}

TEST_F(NamedImages, LeftOversOfTheNameGo) {
    std::ofstream(folder / "SelectionImage") << "old";
    TossSelectionImage(nullptr);
    EXPECT_EQ(FileCount(), 0u);

    std::ofstream(folder / "AlphaImage") << "old";
    NamedImage *image;
    ASSERT_EQ(MakeAlphaImage(2, 2, 1, &image), noErr);
    EXPECT_EQ(FileCount(), 0u);
    TossAlphaImage(image);
}

TEST_F(NamedImages, KeptImagesHaveMemoryAndFile) {
    NamedImage *image;
    ASSERT_EQ(MakeNamedImage(kKeptName, true, 4, 2, 1, &image), noErr);
    EXPECT_TRUE(image->onDisk);
    EXPECT_NE(image->memory, nullptr);
    EXPECT_EQ(File("Kept").substr(0, 6), std::string("\1\0\4\0\2\0", 6));
    TossNamedImage(kKeptName, image);
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(NamedImages, KeptImagesComeBackUnderTheirNames) {
    const struct {
        OSErr (*make)(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
        OSErr (*open)(NamedImage **image);
        OSErr (*close)(NamedImage *image);
        OSErr (*toss)(NamedImage *image);
        std::string name;
    } kinds[] = {
        {MakeImage2, OpenImage2, CloseImage2, TossImage2, "PSsecImage"},
        {MakeImage2Dup16, OpenImage2Dup16, CloseImage2Dup16, TossImage2Dup16, "PSsecImageDup16"},
        {MakeImageFFT, OpenImageFFT, CloseImageFFT, TossImageFFT, "FFTImage"},
    };
    for (const auto &kind : kinds) {
        SCOPED_TRACE(kind.name);
        const std::string pascalName = static_cast<char>(kind.name.size()) + kind.name;
        const auto dimensions = [&] {
            int16_t width, height, bytes;
            const OSErr err = GetNamedImageDimensions(reinterpret_cast<ConstStringPtr>(pascalName.data()),
                                                      &width, &height, &bytes);
            return std::vector<int>{err, width, height, bytes};
        };
        const std::vector<uint8_t> noise = RandomBytes(6 * 4 * 2, 5);
        for (const bool onDisk : {false, true}) {
            faults::RefuseTemporaryMemory(onDisk);
            NamedImage *image;
            ASSERT_EQ(kind.make(6, 4, 2, &image), noErr);
            for (int32_t y = 0; y < 4; ++y) {
                PutLine(image, 0, y, 12, noise.data() + y * 12);
            }
            ASSERT_EQ(kind.close(image), noErr);
            EXPECT_EQ(dimensions(), (std::vector<int>{noErr, 6, 4, 2}));
            ASSERT_EQ(kind.open(&image), noErr);
            EXPECT_EQ(BytesOf(image), noise);
            EXPECT_EQ(kind.close(image), noErr);
            for (const auto &[header, err] : {std::pair{"\2\0\6", eofErr}, {"\2\0\6\0\377\377", paramErr}}) {
                std::ofstream(folder / kind.name, std::ios::binary)
                    << std::string(header, err == eofErr ? 3 : 6);
                EXPECT_EQ(kind.open(&image), err);
                EXPECT_EQ(image, nullptr);
            }
            std::filesystem::remove(folder / kind.name);
            if (MakeLink("elsewhere", folder / kind.name)) {
                EXPECT_EQ(kind.open(&image), ioErr);
            }
            EXPECT_EQ(FileCount(), 0u) << "what cannot be opened goes";
            std::ofstream(folder / kind.name) << "old";
            EXPECT_EQ(kind.toss(nullptr), noErr);
            EXPECT_EQ(FileCount(), 0u);
            EXPECT_EQ(kind.open(&image), fnfErr);
            EXPECT_EQ(dimensions(), (std::vector<int>{fnfErr, 0, 0, 0}));
        }
    }
}

TEST_F(NamedImages, ImagesTooLargeForMemoryGoToDisk) {
    // The limit is 512 MiB plus 8 bytes; these sizes are the closest that three dimensions can get. The
    // second allocation, for the contents, fails if it is attempted, and a folder below a file cannot be
    // made.
    WriteBytes("file", "");
    SetVariable("HYMEDIAN_PREFERENCES", folder / "file" / "missing");
    const struct {
        int16_t width, height, bytesPerPixel;
        bool tried;
    } cases[] = {{16384, 16384, 2, true}, {13307, 8069, 5, false}, {32767, 32767, 6, false}};
    NamedImage *image;
    for (const auto &c : cases) {
        faults::FailAllocation(2);
        EXPECT_NE(MakeImage(c.width, c.height, c.bytesPerPixel, &image), noErr);
        EXPECT_EQ(faults::FaultStruck(), c.tried) << c.width;
        ASSERT_NE(image, nullptr);
        EXPECT_TRUE(image->onDisk);
        EXPECT_EQ(image->memory, nullptr);
        TossImage(image);
    }
    faults::FailAllocation(0);
    // Negative dimensions count as 0.
    EXPECT_EQ(MakeImage(-5, 7, 3, &image), noErr);
    EXPECT_EQ(image->data.width, 0);
    TossImage(image);
}

TEST_F(NamedImages, ImagesInMemoryTakeNoMoreThanTheirLimit) {
    SetVariable("HYMEDIAN_PREFERENCES", folder / "made" / "for it");
    LimitImageMemory(2 * (6 + 30 * 20) + 6 + 50);
    const struct {
        int16_t width;
        bool onDisk;
    } cases[] = {{30, false}, {30, false}, {3, true}, {2, false}};
    std::vector<NamedImage *> images;
    for (const auto &[width, onDisk] : cases) {
        ASSERT_EQ(MakeImage(width, 20, 1, &images.emplace_back()), noErr);
        EXPECT_EQ(images.back()->onDisk, onDisk) << images.size();
    }
    // What is tossed makes room again.
    TossImage(images[0]);
    ASSERT_EQ(MakeImage(30, 20, 1, &images[0]), noErr);
    EXPECT_FALSE(images[0]->onDisk);
    for (NamedImage *image : images) {
        TossImage(image);
    }
    LimitImageMemory(0);
}

// With room for only the record and the contents, there is no block to clear with.
TEST_F(NamedImages, MemoryHoldsNothingOldEvenUncleared) {
    constexpr int64_t kContentsSize = 6 + 100 * 30;
    Ptr old = NewPtr(kContentsSize);
    std::fill_n(old, kContentsSize, 'x');
    DisposePtr(old);
    faults::SetMemoryLimit(faults::BytesInUse() + int64_t{sizeof(NamedImage)} + kContentsSize);
    NamedImage *image;
    ASSERT_EQ(MakeImage(100, 30, 1, &image), noErr);
    EXPECT_FALSE(image->onDisk);
    EXPECT_EQ(BytesOf(image), std::vector<uint8_t>(100 * 30, 0));
    TossImage(image);
}

// The folder is left untouched: an image in memory does not need it, and one on disk cannot be made.
TEST_F(NamedImages, FoldersThatOthersKeepLockedAreDoneWithout) {
    std::ofstream(folder / "BackingStore") << "of another process";
    for (const bool onDisk : {false, true}) {
        const HeldLock other(folder);
        faults::RefuseTemporaryMemory(onDisk);
        NamedImage *image;
        EXPECT_EQ(MakeImage(5, 3, 4, &image), onDisk ? fBsyErr : noErr);
        EXPECT_EQ(image->onDisk, onDisk);
        TossImage(image);
        EXPECT_EQ(File("BackingStore"), "of another process");
    }
    TossTempImage(nullptr);
    EXPECT_EQ(FileCount(), 1u);
}

TEST_F(NamedImages, EveryFailingAllocationIsAnswered) {
    for (int64_t n = 1; n <= 3; ++n) {
        NamedImage *image = nullptr;
        faults::FailAllocation(n);
        const OSErr err = MakeImage(30, 20, 3, &image);
        EXPECT_EQ(err, n == 1 ? memFullErr : noErr);
        EXPECT_EQ(image == nullptr, n == 1);
        if (image != nullptr) {
            EXPECT_EQ(BytesOf(image), std::vector<uint8_t>(30 * 20 * 3, 0));
        }
        TossImage(image);
        EXPECT_EQ(FileCount(), 0u);
    }
}

}  // namespace
