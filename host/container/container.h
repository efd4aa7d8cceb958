// The kinds of picture files that are taken apart here, told by their first bytes.
#pragma once

#include "host/container/byte_file.h"

enum class Container { other, gif, heif, jpeg, png, tiff, webp };

Container ContainerOf(const ByteFile &file);
