#include "host/filter/last_radius.h"

#include <fstream>

#include "hybridmedian/public.h"
#include "platform/native_paths.h"

std::optional<int32_t> LastRadius() {
    std::ifstream file(PreferencesPath() + "/" + kPreferencesFile, std::ios::binary);
    float radius = 0;
    file.seekg(kRememberedRadiusOffset);
    file.read(reinterpret_cast<char *>(&radius), sizeof radius);
    return file && radius != 0 ? std::optional(static_cast<int32_t>(ClampRadius(radius))) : std::nullopt;
}
