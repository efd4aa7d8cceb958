#include "tests/support/hostile_host.h"

#include <cstdlib>
#include <iterator>
#include <memory>

#include "platform/memory.h"
#include "plugin/entry.h"
#include "plugin/states.h"
#include "tests/support/script_host.h"

namespace {

// Decisions, until there are none left.
struct Decisions {
    const uint8_t *next;
    const uint8_t *end;

    bool Left() const { return next != end; }
    uint8_t Byte() { return Left() ? *next++ : uint8_t{0}; }
    bool OneIn(int n) { return Byte() % n == 0; }

    // Mostly small, sometimes at the limits of the range.
    int16_t Coordinate() {
        static constexpr int16_t kExtremes[] = {INT16_MIN, -1, 0, 1, 32755, 32756, INT16_MAX};
        const uint8_t byte = Byte();
        return byte < 224 ? static_cast<int16_t>(byte % 9) : kExtremes[byte % std::size(kExtremes)];
    }
};

constexpr int kMostRequests = 60;
constexpr int64_t kMostRowBytes = 4 << 20;

struct Session {
    Decisions decisions;
    FilterRecord record;
    PIDescriptorParameters parameters;
    int requests;
    std::unique_ptr<uint8_t[]> inRow, outRow, maskRow;
};
Session *session;

// A row of the size the record requests, at an odd address and with nothing after it.
void *MakeRow(const Rect &rect, int32_t bytesPerPixel, std::unique_ptr<uint8_t[]> *row, int32_t *rowBytes) {
    const int64_t width = rect.right - rect.left;
    const int64_t size = width * bytesPerPixel;
    *rowBytes = static_cast<int32_t>(size);
    if (width <= 0 || rect.bottom <= rect.top || size > kMostRowBytes || session->decisions.OneIn(40)) {
        *rowBytes = 0;
        row->reset();
        return nullptr;
    }
    row->reset(new uint8_t[static_cast<size_t>(size) + 1]);
    for (int64_t i = 0; i <= size; ++i) {
        (*row)[static_cast<size_t>(i)] = static_cast<uint8_t>(i * 7);
    }
    return row->get() + 1;
}

void Deliver() {
    FilterRecord &record = session->record;
    const int32_t sampleBytes = record.depth == 16 ? 2 : record.depth == 32 ? 4 : 1;
    const int32_t inPlanes = record.inHiPlane - record.inLoPlane + 1;
    const int32_t outPlanes = record.outHiPlane - record.outLoPlane + 1;
    record.inData = MakeRow(record.inRect, inPlanes * sampleBytes, &session->inRow, &record.inRowBytes);
    record.outData = MakeRow(record.outRect, outPlanes * sampleBytes, &session->outRow, &record.outRowBytes);
    record.maskData = MakeRow(record.maskRect, 1, &session->maskRow, &record.maskRowBytes);
}

OSErr AdvanceState() {
    if (++session->requests > kMostRequests) {
        return ioErr;
    }
    Deliver();
    if (session->decisions.OneIn(30)) {
        session->record.advanceState = nullptr;
    }
    return session->decisions.OneIn(50) ? paramErr : noErr;
}

Boolean AbortProc() {
    return session->decisions.OneIn(60);
}

void ProgressProc(int32_t, int32_t) {}

void ChangeShape() {
    Decisions &d = session->decisions;
    FilterRecord &record = session->record;
    static constexpr int32_t kDepths[] = {8, 16, 32, 8, 16, 1, 0, -8, 24, 64};
    record.filterRect = {d.Coordinate(), d.Coordinate(), d.Coordinate(), d.Coordinate()};
    record.planes = static_cast<int16_t>(d.Byte() % 10 - 1);
    record.imageMode = static_cast<int16_t>(d.Byte() % 22 - 1);
    record.depth = kDepths[d.Byte() % std::size(kDepths)];
}

void ChangeCallbacks() {
    Decisions &d = session->decisions;
    FilterRecord &record = session->record;
    record.advanceState = d.OneIn(3) ? nullptr : AdvanceState;
    record.abortProc = d.OneIn(3) ? nullptr : AbortProc;
    record.progressProc = d.OneIn(3) ? nullptr : ProgressProc;
    record.haveMask = d.OneIn(2);
    session->parameters.playInfo = static_cast<int16_t>(d.Byte() % 4);
    session->parameters.descriptorParametersVersion = d.OneIn(9);
    session->parameters.readDescriptorProcs = d.OneIn(9) ? nullptr : &script::readProcs;
    session->parameters.writeDescriptorProcs = d.OneIn(9) ? nullptr : &script::writeProcs;
    record.descriptorParameters = d.OneIn(5) ? nullptr : &session->parameters;
}

void CallOnce(intptr_t *data) {
    Decisions &d = session->decisions;
    // Mostly in the proper order, or no run would ever get far.
    static constexpr int16_t kSelectors[] = {3, 3, 4, 4, 4, 4, 4, 5, 1, 2, 0, -1, 6};
    const int16_t selector = kSelectors[d.Byte() % std::size(kSelectors)];
    if (selector == filterSelectorStart || d.OneIn(25)) {
        ChangeShape();
        ChangeCallbacks();
    }
    session->requests = 0;
    if (selector == filterSelectorContinue) {
        Deliver();
    }
    int16_t result = 0;
    PluginMain(selector, selector == filterSelectorAbout ? nullptr : &session->record, data, &result);
    // Positive results say that the user has been told, which only a dialog does.
    if (result > 0) {
        std::abort();
    }
}

// Finish leaves the selection for the next Start.
void ReleaseEverything(intptr_t *data) {
    int16_t result = 0;
    session->record.filterRect = {};
    PluginMain(filterSelectorFinish, &session->record, data, &result);
    PluginMain(filterSelectorStart, &session->record, data, &result);
    DisposeState(*data);
    DisposeHandle(session->record.parameters);
    DisposeHandle(session->parameters.descriptor);
}

}  // namespace

void PlayHostileHost(const uint8_t *bytes, size_t size) {
    Session current = {};
    session = &current;
    current.record.handleProcs = &script::handleProcs;
    current.decisions = {bytes, bytes + size};
    current.parameters = script::Parameters({{FourCharCode("nRad"), typeFloat, bytes[0] / 40.0}}, 0);
    intptr_t data = 0;
    while (current.decisions.Left()) {
        CallOnce(&data);
    }
    ReleaseEverything(&data);
    session = nullptr;
}
