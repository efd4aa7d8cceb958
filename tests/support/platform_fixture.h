// A scratch folder as the File Manager knows it.
#pragma once

#include <algorithm>

#include "platform/files.h"
#include "tests/support/scratch_folder.h"

class Platform : public ScratchFolder {
  protected:
    void SetUp() override {
        ASSERT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &volume, &directory), noErr);
    }

    int16_t volume;
    int32_t directory;
};

struct Name {
    explicit Name(const std::string &text) {
        bytes[0] = static_cast<uint8_t>(text.size());
        std::copy(text.begin(), text.end(), bytes + 1);
    }
    operator ConstStringPtr() const { return bytes; }
    Str255 bytes;
};

constexpr OSType kCode = FourCharCode("abcd");
