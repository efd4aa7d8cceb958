// The picture library as a whole: starting it, keeping it silent, and its errors in one line.
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

// The first line of what the library has to say about the latest failure, without its source; forgets it.
std::string TakeVipsError();
