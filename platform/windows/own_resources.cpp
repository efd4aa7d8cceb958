#include "platform/resources.h"
#include "platform/windows/own_module.h"

namespace {

// The whole file, as a resource of Windows' own kind; see resources/module.rc.in.
constexpr wchar_t kType[] = L"MACRESOURCES";
constexpr WORD kNumber = 1;

}  // namespace

HMODULE windows::OwnModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&windows::OwnModule), &module);
    return module;
}

void OfferOwnResources() {
    const HMODULE self = windows::OwnModule();
    const HRSRC found = FindResourceW(self, MAKEINTRESOURCEW(kNumber), kType);
    const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(self, found);
    if (loaded != nullptr) {
        OfferResourceBytes({static_cast<const char *>(LockResource(loaded)), SizeofResource(self, found)});
    }
}
