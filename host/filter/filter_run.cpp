#include "host/filter/filter_run.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "host/document/document_rows.h"
#include "host/filter/descriptor_suites.h"
#include "host/filter/memory_suites.h"
#include "hybridmedian/public.h"
#include "photoshop/filter_record.h"
#include "platform/answered_dialogs.h"
#include "platform/owned_block.h"

namespace {

// Filter cases, as the interface numbers them.
constexpr int16_t kFlatImageNoSelection = 1;
constexpr int16_t kFlatImageWithSelection = 2;
constexpr Fixed kFixedOne = 1 << 16;
constexpr int32_t kRowAlignment = 64;  // bytes: a cache line
constexpr uint8_t kSelected = 255;
// A filter that asks for one row or column of one plane at a time may go over all of them this often: more
// than any filter needs. Beyond that it is taken to be stuck.
constexpr int64_t kMaxPasses = 16;
constexpr std::string_view kEndless =
    "the filter does not come to an end, it asks for the same rows over and over";

// Rows as the filter sees them; null while it asks for none.
struct Delivery {
    Area area;
    OwnedBlock<uint8_t> rows;
};

struct Run {
    const FilterRequest *request;
    Document *document;
    Tile tile;
    FilterRecord record;
    PIDescriptorParameters descriptorParameters;
    ReadImageDocumentDesc documentInfo;
    Str255 errorString;
    Delivery input;
    Delivery output;
    OwnedBlock<uint8_t> mask;
    int64_t requests;
};

Run *currentRun = nullptr;

bool IsEmpty(const Rect &rect) {
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

bool RequestsNothing(const FilterRecord &record) {
    return IsEmpty(record.inRect) && IsEmpty(record.outRect) && IsEmpty(record.maskRect);
}

// From the filter's coordinates to the document's.
VRect Placed(const Run &run, const Rect &rect) {
    const VRect &framed = run.tile.framed;
    return {framed.top + rect.top, framed.left + rect.left, framed.top + rect.bottom,
            framed.left + rect.right};
}

bool LiesInside(const Run &run, const Area &area) {
    const VRect &framed = run.tile.framed;
    return area.rect.left >= framed.left && area.rect.top >= framed.top && area.rect.right <= framed.right &&
           area.rect.bottom <= framed.bottom && area.loPlane >= 0 && area.loPlane <= area.hiPlane &&
           area.hiPlane < ShownPlanes(*run.document);
}

// Always longer than the pixels need, so that filters do not come to count on packed rows.
int32_t PaddedRowBytes(int32_t bytes) {
    return (bytes / kRowAlignment + 1) * kRowAlignment;
}

// Stores what the filter has written since the latest delivery in the destination.
void StoreOutput(Run *run) {
    if (run->output.rows != nullptr) {
        StoreRows(run->document, run->output.area, run->tile.core, run->output.rows.get());
        run->output.rows.reset();
    }
}

// For an empty rectangle there are no rows.
OSErr Deliver(const Run &run, const PixelBlock &pixels, const Rect &rect, int16_t loPlane, int16_t hiPlane,
              Delivery *delivery) {
    *delivery = {};
    if (IsEmpty(rect)) {
        return noErr;
    }
    Area area = {Placed(run, rect), loPlane, hiPlane, 0};
    if (!LiesInside(run, area)) {
        return filterBadParameters;
    }
    const Document &document = *run.document;
    area.rowBytes = PaddedRowBytes(WidthOf(area.rect) * (hiPlane - loPlane + 1) * ShownDepth(document) / 8);
    delivery->rows = MakeOwnedBlock<uint8_t>(int64_t{area.rowBytes} * HeightOf(area.rect));
    if (delivery->rows == nullptr) {
        return memFullErr;
    }
    delivery->area = area;
    DeliverRows(document, pixels, area, delivery->rows.get());
    return noErr;
}

// Without a mask, everything is selected.
void FillMask(const Document &document, const VRect &rect, int32_t rowBytes, uint8_t *rows) {
    const auto width = static_cast<size_t>(WidthOf(rect));
    for (int64_t y = rect.top; y < rect.bottom; ++y, rows += rowBytes) {
        if (document.mask == nullptr) {
            std::memset(rows, kSelected, width);
        } else {
            std::memcpy(rows, document.mask.get() + y * document.width + rect.left, width);
        }
    }
}

OSErr DeliverMask(Run *run) {
    FilterRecord *record = &run->record;
    run->mask.reset();
    record->maskData = nullptr;
    record->maskRowBytes = 0;
    if (IsEmpty(record->maskRect)) {
        return noErr;
    }
    const VRect rect = Placed(*run, record->maskRect);
    if (!LiesInside(*run, {rect, 0, 0, 0})) {
        return filterBadParameters;
    }
    const int32_t rowBytes = PaddedRowBytes(WidthOf(rect));
    run->mask = MakeOwnedBlock<uint8_t>(int64_t{rowBytes} * HeightOf(rect));
    if (run->mask == nullptr) {
        return memFullErr;
    }
    FillMask(*run->document, rect, rowBytes, run->mask.get());
    record->maskData = run->mask.get();
    record->maskRowBytes = rowBytes;
    return noErr;
}

// How samples are laid out in the rows, for filters that do not assume interleaving.
void DescribeLayout(const Document &document, FilterRecord *record) {
    const int32_t sampleBytes = ShownDepth(document) / 8;
    record->inPlaneBytes = sampleBytes;
    record->outPlaneBytes = sampleBytes;
    record->inColumnBytes = (record->inHiPlane - record->inLoPlane + 1) * sampleBytes;
    record->outColumnBytes = (record->outHiPlane - record->outLoPlane + 1) * sampleBytes;
}

int64_t MaxRequests(const Run &run) {
    const VRect &framed = run.tile.framed;
    return kMaxPasses * ShownPlanes(*run.document) * std::max(WidthOf(framed), HeightOf(framed));
}

OSErr Report(std::string_view message, Run *run) {
    run->errorString[0] = static_cast<uint8_t>(message.size());
    std::copy(message.begin(), message.end(), run->errorString + 1);
    return errReportString;
}

// Stores what was written, then delivers what the record now asks for.
OSErr ServeRequest(Run *run) {
    StoreOutput(run);
    if (run->request->watcher.cancelled()) {
        return userCanceledErr;
    }
    if (++run->requests > MaxRequests(*run)) {
        return Report(kEndless, run);
    }
    FilterRecord *record = &run->record;
    const Document &document = *run->document;
    OSErr err =
        Deliver(*run, document.source, record->inRect, record->inLoPlane, record->inHiPlane, &run->input);
    if (err == noErr) {
        err = Deliver(*run, document.destination, record->outRect, record->outLoPlane, record->outHiPlane,
                      &run->output);
    }
    if (err == noErr) {
        err = DeliverMask(run);
    }
    record->inData = run->input.rows.get();
    record->inRowBytes = run->input.area.rowBytes;
    record->outData = run->output.rows.get();
    record->outRowBytes = run->output.area.rowBytes;
    DescribeLayout(document, record);
    return err;
}

OSErr AdvanceState() {
    return ServeRequest(currentRun);
}

Boolean AbortAsked() {
    return currentRun->request->watcher.cancelled();
}

void ShowProgress(int32_t done, int32_t total) {
    if (total > 0) {
        currentRun->request->watcher.progress(std::clamp(double{1} * done / total, 0.0, 1.0));
    }
}

Tile WholeOf(const Document &document) {
    return {SelectedRect(document), WholeRect(document)};
}

void FillDocumentInfo(Run *run) {
    Document &document = *run->document;
    ReadImageDocumentDesc *info = &run->documentInfo;
    info->maxVersion = 1;
    info->imageMode = ShownMode(document);
    info->depth = ShownDepth(document);
    info->bounds = {0, 0, HeightOf(run->tile.framed), WidthOf(run->tile.framed)};
    info->hResolution = document.horizontalResolution;
    info->vResolution = document.verticalResolution;
    // The number of a directory would mean nothing to the module, which has a table of its own.
    info->documentFileSpec = nullptr;
    for (int i = 0; i < 256; ++i) {
        info->redLUT[i] = info->greenLUT[i] = info->blueLUT[i] = static_cast<uint8_t>(i);
    }
}

// From the document's coordinates to the filter's.
Rect Narrow(const VRect &rect, const VRect &framed) {
    return {static_cast<int16_t>(rect.top - framed.top), static_cast<int16_t>(rect.left - framed.left),
            static_cast<int16_t>(rect.bottom - framed.top), static_cast<int16_t>(rect.right - framed.left)};
}

void FillRecord(Run *run) {
    const Document &document = *run->document;
    const VRect &framed = run->tile.framed;
    const VRect &filtered = run->request->tile ? framed : run->tile.core;
    const bool partly = document.mask != nullptr || (!run->request->tile && document.selection);
    const Point size = {static_cast<int16_t>(HeightOf(framed)), static_cast<int16_t>(WidthOf(framed))};
    const auto colorPlanes = static_cast<int16_t>(document.colorPlanes);
    const auto extraPlanes = static_cast<int16_t>(ShownPlanes(document) - document.colorPlanes);
    FilterRecord *record = &run->record;
    record->abortProc = AbortAsked;
    record->progressProc = ShowProgress;
    record->imageSize = size;
    record->planes = static_cast<int16_t>(ShownPlanes(document));
    record->filterRect = Narrow(filtered, framed);
    record->haveMask = document.mask != nullptr;
    record->autoMask = document.mask != nullptr;
    record->background = {UINT16_MAX, UINT16_MAX, UINT16_MAX};
    record->backColor = {{UINT8_MAX, UINT8_MAX, UINT8_MAX, UINT8_MAX}};
    record->maxSpace = INT32_MAX;
    record->bufferSpace = INT32_MAX;
    record->hostSig = kAnsweringHost;
    record->imageMode = ShownMode(document);
    record->imageHRes = document.horizontalResolution;
    record->imageVRes = document.verticalResolution;
    record->wholeSize = size;
    record->bufferProcs = HostBufferProcs();
    record->handleProcs = HostHandleProcs();
    record->filterCase = partly ? kFlatImageWithSelection : kFlatImageNoSelection;
    record->advanceState = run->request->offerAdvanceState ? AdvanceState : nullptr;
    record->inputRate = kFixedOne;
    record->maskRate = kFixedOne;
    record->inLayerPlanes = record->outLayerPlanes = record->absLayerPlanes = colorPlanes;
    record->inNonLayerPlanes = record->outNonLayerPlanes = record->absNonLayerPlanes = extraPlanes;
    record->descriptorParameters = &run->descriptorParameters;
    record->errorString = &run->errorString;
    record->documentInfo = &run->documentInfo;
    record->depth = ShownDepth(document);
}

OSErr Call(Run *run, int16_t selector) {
    Module *module = run->request->module;
    OSErr result = noErr;
    module->entry(selector, &run->record, &module->data, &result);
    return result;
}

// From a successful Start to Finish, which is called whatever happens in between.
OSErr FinishRun(Run *run) {
    OSErr err = noErr;
    while (err == noErr && !RequestsNothing(run->record)) {
        err = ServeRequest(run);
        if (err == noErr) {
            err = Call(run, filterSelectorContinue);
        }
    }
    if (err == noErr) {
        StoreOutput(run);
    }
    const OSErr finish = Call(run, filterSelectorFinish);
    return err == noErr ? finish : err;
}

OSErr CallSelectors(Run *run) {
    for (const int16_t selector : {filterSelectorPrepare, filterSelectorStart}) {
        if (const OSErr err = Call(run, selector); err != noErr) {
            return err;
        }
    }
    return FinishRun(run);
}

std::string MessageOf(const Run &run, OSErr result) {
    return result == errReportString
               ? std::string(reinterpret_cast<const char *>(run.errorString + 1), run.errorString[0])
               : std::string();
}

}  // namespace

FilterOutcome RunFilter(const FilterRequest &request) {
    std::unique_ptr<AnsweredDialogs> answered;
    if (request.orders.user == DialogUser::script) {
        answered = AnswerDialogs(user::Answer(kRadiusFieldItem, std::to_string(request.orders.radius)));
        if (answered == nullptr) {
            return {memFullErr, {}, {}};
        }
    }
    Run run = {};
    run.request = &request;
    run.document = request.document;
    run.tile = request.tile.value_or(WholeOf(*request.document));
    const bool asks = request.orders.user != DialogUser::nobody;
    run.descriptorParameters = {
        kDescriptorParametersVersion, asks ? plugInDialogDisplay : plugInDialogDontDisplay,
        plugInDialogOptional,         EncodeAction(request.orders.action),
        HostWriteDescriptorProcs(),   HostReadDescriptorProcs()};
    FillDocumentInfo(&run);
    FillRecord(&run);
    run.record.platformData = answered == nullptr ? nullptr : &answered->forModule;

    currentRun = &run;
    const OSErr result = CallSelectors(&run);
    currentRun = nullptr;

    if (result != noErr) {
        ResetDestination(run.document, run.tile.core);
    }
    FilterOutcome outcome = {result, MessageOf(run, result), {}};
    DecodeAction(run.descriptorParameters.descriptor, &outcome.recorded);
    DisposeHandle(run.descriptorParameters.descriptor);
    DisposeHandle(run.record.parameters);
    return outcome;
}
