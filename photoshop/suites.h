// Callback suites through which a plug-in gets memory from its host. Natural alignment.
#pragma once

#include <cstddef>

#include "platform/types.h"

using BufferID = intptr_t;

struct BufferProcs {
    int16_t bufferProcsVersion;
    int16_t numBufferProcs;
    OSErr (*allocateProc)(int32_t size, BufferID *buffer);
    Ptr (*lockProc)(BufferID buffer, Boolean moveHigh);
    void (*unlockProc)(BufferID buffer);
    void (*freeProc)(BufferID buffer);
    int32_t (*spaceProc)();
};

constexpr int16_t kBufferProcsVersion = 2;
constexpr int16_t kBufferProcsCount = 5;

struct HandleProcs {
    int16_t handleProcsVersion;
    int16_t numHandleProcs;  // 6 in hosts without the last two
    Handle (*newProc)(int32_t size);
    void (*disposeProc)(Handle handle);
    int32_t (*getSizeProc)(Handle handle);
    OSErr (*setSizeProc)(Handle handle, int32_t size);
    Ptr (*lockProc)(Handle handle, Boolean moveHigh);
    void (*unlockProc)(Handle handle);
    void (*recoverSpaceProc)(int32_t size);
    void (*disposeRegularHandleProc)(Handle handle);
};

constexpr int16_t kHandleProcsVersion = 1;
constexpr int16_t kHandleProcsCount = 8;

static_assert(offsetof(BufferProcs, allocateProc) == 8 && sizeof(BufferProcs) == 48);
static_assert(offsetof(HandleProcs, newProc) == 8 && offsetof(HandleProcs, disposeRegularHandleProc) == 64);
