// A file that is read and patched at places, whatever its size, without being held in memory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct ByteFile {
    int descriptor = -1;
    uint64_t size = 0;

    ByteFile() = default;
    ByteFile(const ByteFile &) = delete;
    ByteFile &operator=(const ByteFile &) = delete;
    ~ByteFile();
};

// These return false for failure, and errno tells why.
bool OpenForReading(const std::string &path, ByteFile *file);
bool OpenForPatching(const std::string &path, ByteFile *file);
// False also when the file ends earlier.
bool ReadAt(const ByteFile &file, uint64_t place, uint64_t count, std::string *bytes);
// Extends the file if need be.
bool WriteAt(ByteFile *file, uint64_t place, std::string_view bytes);
// Puts `head` in the place of the first `oldBytes`, and moves all that follows.
bool ReplaceHead(ByteFile *file, uint64_t oldBytes, std::string_view head);
// Appends a part of another file.
bool AppendPart(const ByteFile &from, uint64_t place, uint64_t count, ByteFile *to);
