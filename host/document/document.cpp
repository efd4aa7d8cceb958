#include "host/document/document.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "photoshop/image_modes.h"

namespace {

// Large pages: fewer faults while fresh memory is filled.
PixelBlock Map(int descriptor, int64_t size, int flags) {
    const auto bytes = static_cast<size_t>(size);
    void *block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, flags, descriptor, 0);
    if (block == MAP_FAILED) {
        return nullptr;
    }
    madvise(block, bytes, MADV_HUGEPAGE);
    return PixelBlock(static_cast<uint8_t *>(block), PixelUnmapper{bytes, descriptor});
}

}  // namespace

void PixelUnmapper::operator()(uint8_t *pixels) const {
    if (size > 0) {
        munmap(pixels, size);
    }
    if (descriptor >= 0) {
        close(descriptor);
    }
}

int16_t ShownMode(const DocumentShape &document) {
    switch (document.imageMode) {
        case plugInModeGray32:
            return plugInModeGray16;
        case plugInModeRGB96:
            return plugInModeRGB48;
        default:
            return document.imageMode;
    }
}

int32_t ShownDepth(const DocumentShape &document) {
    return std::min(document.depth, 16);
}

int32_t ShownPlanes(const DocumentShape &document) {
    return document.colorPlanes + (document.transparency != 0 ? 1 : 0);
}

int32_t SampleBytes(const DocumentShape &document) {
    return document.depth / 8;
}

int64_t RowBytes(const DocumentShape &document) {
    return int64_t{document.width} * document.planes * SampleBytes(document);
}

int64_t PixelBytes(const DocumentShape &document) {
    return RowBytes(document) * document.height;
}

int64_t MaskBytes(const DocumentShape &document) {
    return int64_t{document.width} * document.height;
}

VRect WholeRect(const DocumentShape &document) {
    return {0, 0, document.height, document.width};
}

VRect SelectedRect(const DocumentShape &document) {
    return document.selection.value_or(WholeRect(document));
}

int32_t WidthOf(const VRect &rect) {
    return rect.right - rect.left;
}

int32_t HeightOf(const VRect &rect) {
    return rect.bottom - rect.top;
}

// The system promises any amount of memory, and kills the process when it cannot deliver a page.
bool FitsIntoMemory(int64_t size) {
    return size <= int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
}

PixelBlock MapBlock(int64_t size, Sharing sharing) {
    if (!FitsIntoMemory(size)) {
        return nullptr;
    }
    if (sharing == Sharing::none) {
        return Map(-1, size, MAP_PRIVATE | MAP_ANONYMOUS);
    }
    const int descriptor = memfd_create("pixels", MFD_CLOEXEC);
    if (descriptor >= 0 && ftruncate(descriptor, size) != 0) {
        close(descriptor);
        return nullptr;
    }
    return descriptor < 0 ? nullptr : MapShared(descriptor, size);
}

PixelBlock MapShared(int descriptor, int64_t size) {
    PixelBlock block = Map(descriptor, size, MAP_SHARED);
    if (block == nullptr) {
        close(descriptor);
    }
    return block;
}

PixelBlock Borrow(const PixelBlock &block, int64_t offset) {
    return PixelBlock(block.get() + offset, PixelUnmapper{});
}

bool MapPixels(Sharing sharing, Document *document) {
    if (!FitsIntoMemory(2 * PixelBytes(*document))) {
        return false;
    }
    document->source = MapBlock(PixelBytes(*document), sharing);
    document->destination = MapBlock(PixelBytes(*document), sharing);
    return document->source != nullptr && document->destination != nullptr;
}

// Shared pages are filled by pwrite: that costs half as much, and if memory runs out the call fails instead
// of the process.
bool FillRow(Document *document, int64_t y, const uint8_t *samples) {
    const auto size = static_cast<size_t>(RowBytes(*document));
    const int64_t offset = y * RowBytes(*document);
    for (PixelBlock *block : {&document->source, &document->destination}) {
        const int descriptor = block->get_deleter().descriptor;
        if (descriptor < 0) {
            std::memcpy(block->get() + offset, samples, size);
        } else if (pwrite(descriptor, samples, size, offset) != static_cast<ssize_t>(size)) {
            return false;
        }
    }
    return true;
}

void ResetDestination(Document *document, const VRect &rect) {
    const int64_t pixelBytes = int64_t{document->planes} * SampleBytes(*document);
    for (int64_t y = rect.top; y < rect.bottom; ++y) {
        const int64_t offset = y * RowBytes(*document) + rect.left * pixelBytes;
        std::memcpy(document->destination.get() + offset, document->source.get() + offset,
                    static_cast<size_t>(WidthOf(rect) * pixelBytes));
    }
}
