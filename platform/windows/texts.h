// Paths and names between UTF-8 with '/', as the rooms above have them, and what Windows takes.
#pragma once

#include <string>
#include <string_view>

namespace windows {

std::wstring UTF16From(std::string_view utf8);
std::string UTF8From(std::wstring_view utf16);

// Of an absolute path: in the form that has no limit of 260 characters, and in which names mean themselves.
std::wstring SystemPath(std::string_view path);
std::string PathFromSystem(std::wstring path);

// Empty if it is not set.
std::wstring Variable(const wchar_t *name);

}  // namespace windows
