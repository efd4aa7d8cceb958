#include "host/document.h"

#include <sys/mman.h>

#include <cstring>

namespace {

// Mapped rather than taken from the heap: given back to the system as a whole, and one call away from being
// shared.
PixelBlock MapBlock(size_t size) {
    void *block = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return PixelBlock(block == MAP_FAILED ? nullptr : static_cast<uint8_t *>(block), PixelUnmapper{size});
}

}  // namespace

void PixelUnmapper::operator()(uint8_t *pixels) const {
    munmap(pixels, size);
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

bool MapPixels(Document *document) {
    const auto size = static_cast<size_t>(PixelBytes(*document));
    document->source = MapBlock(size);
    document->destination = MapBlock(size);
    return document->source != nullptr && document->destination != nullptr;
}

void ResetDestination(Document *document) {
    std::memcpy(document->destination.get(), document->source.get(),
                static_cast<size_t>(PixelBytes(*document)));
}
