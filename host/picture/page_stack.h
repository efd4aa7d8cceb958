// A TIFF of several pages. For the work on it, each page lies in a file of its own for a while.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/container/byte_file.h"
#include "host/container/tiff_pages.h"
#include "host/report/failure.h"

struct PageStack {
    std::string name;  // as messages call the file
    ByteFile file;
    TiffSource tiff;
    std::vector<TiffPage> pages;  // at least two
};

// False for other files, also for a single picture with smaller copies of itself.
bool OpenStack(const std::string &path, const std::string &name, PageStack *stack);

// "stack.tif, page 3"; pages count from 0 here.
std::string NameOfPage(const std::string &name, size_t page);

// Makes the file at `path` one that holds nothing but this page, not decoded.
MaybeFailure TakePage(const PageStack &stack, size_t page, const std::string &path);

// A stack that is being written.
struct StackWriter {
    std::string name;  // as messages call the file
    ByteFile file;
    TiffJoiner joiner;
};

// Starts the file at `path`, which holds what comes out of `stack`: a BigTIFF where that is one or is large,
// in the byte order that pictures are written in.
MaybeFailure StartStack(const PageStack &stack, const std::string &path, const std::string &name,
                        StackWriter *writer);

// Whether the page can go into the file as it is.
bool CanCopyPage(const PageStack &stack, size_t page, const StackWriter &writer);
MaybeFailure CopyPage(const PageStack &stack, size_t page, StackWriter *writer);
// Appends what became of the page: the file at `path`.
MaybeFailure PutPage(const PageStack &stack, size_t page, const std::string &path, StackWriter *writer);
