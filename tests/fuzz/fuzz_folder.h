// Gives a fuzzer its own Preferences folder.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

struct FuzzFolder {
    FuzzFolder() {
        std::string name = std::filesystem::temp_directory_path() / "hymedian-fuzz-XXXXXX";
        path = mkdtemp(name.data());
        setenv("HYMEDIAN_PREFERENCES", path.c_str(), 1);
    }
    ~FuzzFolder() { std::filesystem::remove_all(path); }

    void Write(const char *name, const uint8_t *bytes, size_t size) const {
        std::ofstream file(path / name, std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char *>(bytes), static_cast<std::streamsize>(size));
    }

    std::filesystem::path path;
};
