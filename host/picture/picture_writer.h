// Writes the filtered picture, with everything else that its file held.
#pragma once

#include <string>

#include "host/picture/picture.h"
#include "host/picture/picture_format.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

// Writes the document's destination to `path`; messages name `outputFile`.
MaybeFailure WritePicture(const Picture &picture, const PictureFormat &format, const std::string &path,
                          const std::string &outputFile, const Watcher &watcher);
