#include "host/document.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

namespace {

// Shared memory is promised without limit, and a page that then cannot be had ends the process.
int64_t PhysicalMemory() {
    return int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
}

}  // namespace

void PixelUnmapper::operator()(uint8_t *pixels) const {
    munmap(pixels, size);
    close(descriptor);
}

int32_t SampleBytes(const Document &document) {
    return document.depth / 8;
}

int64_t RowBytes(const Document &document) {
    return int64_t{document.width} * document.planes * SampleBytes(document);
}

int64_t PixelBytes(const Document &document) {
    return RowBytes(document) * document.height;
}

int64_t MaskBytes(const Document &document) {
    return int64_t{document.width} * document.height;
}

VRect SelectedRect(const Document &document) {
    return document.selection.value_or(VRect{0, 0, document.height, document.width});
}

int32_t WidthOf(const VRect &rect) {
    return rect.right - rect.left;
}

int32_t HeightOf(const VRect &rect) {
    return rect.bottom - rect.top;
}

PixelBlock MapBlock(int64_t size) {
    if (size > PhysicalMemory()) {
        return nullptr;
    }
    const int descriptor = memfd_create("pixels", MFD_CLOEXEC);
    if (descriptor >= 0 && ftruncate(descriptor, size) != 0) {
        close(descriptor);
        return nullptr;
    }
    return descriptor < 0 ? nullptr : MapShared(descriptor, size);
}

PixelBlock MapShared(int descriptor, int64_t size) {
    const auto bytes = static_cast<size_t>(size);
    void *block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (block == MAP_FAILED) {
        close(descriptor);
        return nullptr;
    }
    return PixelBlock(static_cast<uint8_t *>(block), PixelUnmapper{bytes, descriptor});
}

bool MapPixels(Document *document) {
    if (PixelBytes(*document) > PhysicalMemory() / 2) {
        return false;
    }
    document->source = MapBlock(PixelBytes(*document));
    document->destination = MapBlock(PixelBytes(*document));
    return document->source != nullptr && document->destination != nullptr;
}

void ResetDestination(Document *document) {
    std::memcpy(document->destination.get(), document->source.get(),
                static_cast<size_t>(PixelBytes(*document)));
}
