#include "platform/windows/texts.h"

#include <windows.h>

#include <algorithm>

namespace {

constexpr std::wstring_view kLiteral = L"\\\\?\\";
constexpr std::wstring_view kLiteralShare = L"\\\\?\\UNC\\";
constexpr std::wstring_view kShare = L"\\\\";

}  // namespace

std::wstring windows::UTF16From(std::string_view utf8) {
    const int size = static_cast<int>(utf8.size());
    std::wstring utf16(utf8.size(), L'\0');
    utf16.resize(static_cast<size_t>(
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, utf16.data(), static_cast<int>(utf16.size()))));
    return utf16;
}

std::string windows::UTF8From(std::wstring_view utf16) {
    const int size = static_cast<int>(utf16.size());
    std::string utf8(utf16.size() * 3, '\0');
    utf8.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, utf8.data(),
                                                        static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

std::wstring windows::SystemPath(std::string_view path) {
    std::wstring whole = UTF16From(path);
    std::replace(whole.begin(), whole.end(), L'/', L'\\');
    if (whole.starts_with(kShare)) {
        return std::wstring(kLiteralShare) + whole.substr(kShare.size());
    }
    return std::wstring(kLiteral) + whole;
}

std::string windows::PathFromSystem(std::wstring path) {
    if (path.starts_with(kLiteralShare)) {
        path.replace(0, kLiteralShare.size(), kShare);
    } else if (path.starts_with(kLiteral)) {
        path.erase(0, kLiteral.size());
    }
    std::replace(path.begin(), path.end(), L'\\', L'/');
    return UTF8From(path);
}

std::wstring windows::Variable(const wchar_t *name) {
    std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}
