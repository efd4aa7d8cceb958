#include "platform/windows/display.h"

#include "platform/windows/own_module.h"

namespace {

// What is not in all versions of Windows that a host may run on; null if it is not there.
template <typename Procedure>
Procedure Find(const wchar_t *library, const char *name) {
    const HMODULE loaded = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return loaded == nullptr
               ? nullptr
               : reinterpret_cast<Procedure>(reinterpret_cast<void *>(GetProcAddress(loaded, name)));
}

using SetThreadContext = void *(WINAPI *)(void *context);
using GetMonitorResolution = HRESULT(WINAPI *)(HMONITOR, int kind, UINT *across, UINT *down);

SetThreadContext ThreadContextSetter() {
    static const auto set = Find<SetThreadContext>(L"user32.dll", "SetThreadDpiAwarenessContext");
    return set;
}

// In the published numbering of such contexts.
void *const kEachDisplaysDots = reinterpret_cast<void *>(intptr_t{-4});

int ResolutionOf(HMONITOR monitor) {
    static const auto get = Find<GetMonitorResolution>(L"shcore.dll", "GetDpiForMonitor");
    UINT across = 0;
    UINT down = 0;
    if (ThreadContextSetter() != nullptr && get != nullptr && get(monitor, 0, &across, &down) == S_OK) {
        return static_cast<int>(across);
    }
    const HDC screen = GetDC(nullptr);
    const int resolution = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return resolution;
}

}  // namespace

int windows::Scaled(int length, int resolution) {
    return MulDiv(length, resolution, kUsualResolution);
}

int windows::Unscaled(int length, int resolution) {
    return MulDiv(length, kUsualResolution, resolution);
}

windows::Display windows::DisplayOf(HWND owner) {
    const HMONITOR monitor = owner == nullptr ? MonitorFromPoint({0, 0}, MONITOR_DEFAULTTOPRIMARY)
                                              : MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST);
    MONITORINFO information = {};
    information.cbSize = sizeof information;
    GetMonitorInfoW(monitor, &information);
    return {information.rcWork, ResolutionOf(monitor)};
}

LOGFONTW windows::MessageFont(int resolution) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const HDC screen = GetDC(nullptr);
    LOGFONTW font = metrics.lfMessageFont;
    font.lfHeight = MulDiv(font.lfHeight, resolution, GetDeviceCaps(screen, LOGPIXELSY));
    ReleaseDC(nullptr, screen);
    return font;
}

windows::InOwnDots::InOwnDots()
    : before(ThreadContextSetter() == nullptr ? nullptr : ThreadContextSetter()(kEachDisplaysDots)) {}

windows::InOwnDots::~InOwnDots() {
    if (before != nullptr) {
        ThreadContextSetter()(before);
    }
}

windows::InOwnLook::InOwnLook() {
    ACTCTXW wanted = {};
    wanted.cbSize = sizeof wanted;
    wanted.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    wanted.hModule = OwnModule();
    wanted.lpResourceName = MAKEINTRESOURCEW(2);  // of libraries; see resources/module.rc.in
    context = CreateActCtxW(&wanted);
    if (context != INVALID_HANDLE_VALUE && ActivateActCtx(context, &cookie) == 0) {
        ReleaseActCtx(context);
        context = INVALID_HANDLE_VALUE;
    }
}

windows::InOwnLook::~InOwnLook() {
    if (context != INVALID_HANDLE_VALUE) {
        DeactivateActCtx(0, cookie);
        ReleaseActCtx(context);
    }
}
