// What the host's tests share: a folder of their own, the filter's module, and pictures of random samples.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "host/document/document.h"
#include "host/filter/plugin.h"
#include "photoshop/filter_record.h"
#include "photoshop/image_modes.h"
#include "tests/support/scratch_folder.h"

class HostTest : public ScratchFolder {
  protected:
    // The module stays loaded, and from its first call on it keeps one block.
    static void SetUpTestSuite();

    static Module realFilter;
};

// A document of random samples; floats lie between 0 and 1.
Document RandomDocument(int16_t mode, int32_t depth, int32_t colorPlanes, int32_t planes, int32_t width,
                        int32_t height);

std::vector<uint8_t> BytesOf(const Document &document, const PixelBlock &pixels);
