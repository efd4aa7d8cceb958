// The picture library as a whole: starts it, keeps it silent, and gets its errors as one line.
#pragma once

#include <vips/vips.h>

#include <memory>
#include <string>

struct GObjectUnref {
    void operator()(void *object) const { g_object_unref(object); }
};
template <typename Object>
using OwnedObject = std::unique_ptr<Object, GObjectUnref>;

// False when the library cannot be used at all.
bool StartVips(const char *program);

// Whether the library reads and writes HEIC and AVIF. It does so in a module of its own, which is loaded
// here, or not at all.
bool HasHeif();
constexpr char kNoHeif[] =
    "libvips reads and writes HEIC and AVIF only with its module for them, which is missing here";

// Takes the first line of the library's message about the latest failure, without its source, and clears it.
std::string TakeVipsError();
