#include "host/work/band_filter.h"

#include <algorithm>

#include "host/filter/tiles.h"
#include "host/picture/selection.h"

namespace {

VRect Rows(const VRect &rect, int32_t top, int32_t bottom) {
    return {std::max(rect.top, top), rect.left, std::min(rect.bottom, bottom), rect.right};
}

}  // namespace

BandDocument LendBand(const DocumentShape &picture, const Band &band, int32_t storeRow,
                      const LentBlocks &blocks) {
    BandDocument lent = {{}, band.top - band.frameTop, band.bottom - band.frameTop};
    Document *document = &lent.document;
    static_cast<DocumentShape &>(*document) = picture;
    document->height = band.frameBottom - band.frameTop;
    if (picture.selection) {
        const VRect selected = Rows(*picture.selection, band.frameTop, band.frameBottom);
        document->selection = {selected.top - band.frameTop, selected.left, selected.bottom - band.frameTop,
                               selected.right};
    }
    document->source = Borrow(*blocks.source, storeRow * RowBytes(picture));
    document->destination = Borrow(*blocks.destination, storeRow * RowBytes(picture));
    if (*blocks.mask != nullptr) {
        document->mask = Borrow(*blocks.mask, int64_t{band.frameTop} * picture.width);
    }
    return lent;
}

FilterOutcome FilterBand(Module *module, const FilterOrders &orders, const Watcher &watcher,
                         BandDocument *band) {
    Document *document = &band->document;
    const VRect selected = SelectedRect(*document);
    const VRect core = Rows(selected, band->top, band->bottom);
    FilterOutcome outcome = RunTiles({module, document, orders, true, watcher}, CutIntoTiles(core, selected));
    if (outcome.result == noErr && document->mask != nullptr) {
        BlendByMask(band->top, band->bottom, document);
    }
    return outcome;
}
