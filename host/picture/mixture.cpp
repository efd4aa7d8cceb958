#include "host/picture/mixture.h"

#include <algorithm>

#include "host/document/blend.h"

namespace {

constexpr uint32_t kWhole = 100;

template <typename Sample>
void Mix(const uint8_t *resultRow, const uint8_t *sourceRow, uint32_t percent, std::vector<uint8_t> *mixed) {
    const auto *result = reinterpret_cast<const Sample *>(resultRow);
    const auto *source = reinterpret_cast<const Sample *>(sourceRow);
    auto *to = reinterpret_cast<Sample *>(mixed->data());
    for (size_t i = 0; i < mixed->size() / sizeof(Sample); ++i) {
        to[i] = Blend(result[i], source[i], percent, kWhole);
    }
}

// The library's pixels belong to the thread that reads them, which also has to let go of them; the thread
// that writes may end anywhere.
void ReadStrips(Mixture *mixture) {
    RowReader reader = StartReading(&mixture->original);
    std::unique_lock lock(mixture->mutex);
    for (;;) {
        mixture->changed.wait(lock, [&] { return mixture->ended || mixture->wanted != mixture->read; });
        if (mixture->ended) {
            break;
        }
        const int32_t left = mixture->original.document.height - reader.rows;
        mixture->failure = ReadRows(&reader, std::min(mixture->strip.height, left), &mixture->strip, 0);
        mixture->read = mixture->wanted;
        mixture->changed.notify_all();
    }
    reader.region.reset();
    vips_thread_shutdown();
}

// The original's row, which lies in the strip that was read last, or in the next; null for failure.
const uint8_t *OriginalRow(int32_t row, Mixture *mixture) {
    const int32_t strip = row / mixture->strip.height;
    std::unique_lock lock(mixture->mutex);
    mixture->wanted = strip;
    mixture->changed.notify_all();
    mixture->changed.wait(lock, [&] { return mixture->read == strip; });
    return mixture->failure ? nullptr
                            : mixture->strip.source.get() +
                                  int64_t{row % mixture->strip.height} * RowBytes(mixture->strip);
}

}  // namespace

Mixture::~Mixture() {
    if (reading.joinable()) {
        {
            const std::lock_guard lock(mutex);
            ended = true;
        }
        changed.notify_all();
        reading.join();
    }
}

MaybeFailure StartMixing(const std::string &file, int32_t percent, Mixture *mixture) {
    mixture->percent = percent;
    if (MaybeFailure failure = OpenPicture(file, &mixture->original)) {
        return failure;
    }
    static_cast<DocumentShape &>(mixture->strip) = mixture->original.document;
    mixture->strip.height = StripHeight(mixture->original.document);
    if (!MapPixels(Sharing::none, &mixture->strip)) {
        return TooLittleMemory(file);
    }
    mixture->mixed.resize(static_cast<size_t>(RowBytes(mixture->strip)));
    mixture->reading = std::thread(ReadStrips, mixture);
    return std::nullopt;
}

RowSource MixedRows(const RowSource &rows, Mixture *mixture) {
    return [&rows, mixture](int32_t row) -> const uint8_t * {
        const uint8_t *result = rows(row);
        const uint8_t *original = result == nullptr ? nullptr : OriginalRow(row, mixture);
        if (original == nullptr) {
            return nullptr;
        }
        (mixture->strip.depth == 8 ? Mix<uint8_t>
         : mixture->strip.depth == 16
             ? Mix<uint16_t>
             : Mix<float>)(result, original, static_cast<uint32_t>(mixture->percent), &mixture->mixed);
        return mixture->mixed.data();
    };
}
