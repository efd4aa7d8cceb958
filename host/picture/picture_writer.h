// Writes the filtered picture, with everything else that its file held.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "host/picture/picture.h"
#include "host/picture/picture_format.h"
#include "host/report/failure.h"

// Gives a row of filtered samples, as documents hold them. Rows are asked for once each, from top to bottom,
// from a thread of the picture library. Null ends the writing with a failure.
using RowSource = std::function<const uint8_t *(int32_t row)>;

// Writes the rows to `path`; messages name `outputFile`.
MaybeFailure WritePicture(const Picture &picture, const PictureFormat &format, const SaveOptions &options,
                          const std::string &path, const std::string &outputFile, const RowSource &rows);
