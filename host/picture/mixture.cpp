#include "host/picture/mixture.h"

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

}  // namespace

MaybeFailure StartMixing(const std::string &file, int32_t percent, Mixture *mixture) {
    mixture->percent = percent;
    if (MaybeFailure failure = OpenPicture(file, &mixture->original)) {
        return failure;
    }
    static_cast<DocumentShape &>(mixture->row) = mixture->original.document;
    mixture->row.height = 1;
    if (!MapPixels(Sharing::none, &mixture->row)) {
        return TooLittleMemory(file);
    }
    mixture->mixed.resize(static_cast<size_t>(RowBytes(mixture->row)));
    return std::nullopt;
}

RowSource MixedRows(const RowSource &rows, Mixture *mixture) {
    return [&rows, mixture](int32_t row) -> const uint8_t * {
        const uint8_t *result = rows(row);
        // Only the thread that asks for rows may read them.
        if (mixture->reader.picture == nullptr) {
            mixture->reader = StartReading(&mixture->original);
        }
        mixture->failure = result == nullptr ? std::nullopt : ReadRows(&mixture->reader, 1, &mixture->row, 0);
        if (result == nullptr || mixture->failure) {
            return nullptr;
        }
        (mixture->row.depth == 8    ? Mix<uint8_t>
         : mixture->row.depth == 16 ? Mix<uint16_t>
                                    : Mix<float>)(result, mixture->row.source.get(),
                                                  static_cast<uint32_t>(mixture->percent), &mixture->mixed);
        return mixture->mixed.data();
    };
}
