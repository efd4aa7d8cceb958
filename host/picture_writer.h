// Writing the filtered picture, with everything else that its file held.
#pragma once

#include <string>

#include "host/failure.h"
#include "host/picture.h"
#include "host/picture_format.h"
#include "host/watcher.h"

// Writes the document's destination to `path`; messages speak of `outputFile`.
MaybeFailure WritePicture(const Picture &picture, const PictureFormat &format, const std::string &path,
                          const std::string &outputFile, const Watcher &watcher);
