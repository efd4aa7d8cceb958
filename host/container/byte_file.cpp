#include "host/container/byte_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

constexpr uint64_t kBlockBytes = 1 << 20;  // moved at a time

bool Open(const std::string &path, int flags, ByteFile *file) {
    file->descriptor = open(path.c_str(), flags | O_CLOEXEC);
    struct stat info = {};
    if (file->descriptor < 0 || fstat(file->descriptor, &info) != 0) {
        return false;
    }
    file->size = static_cast<uint64_t>(info.st_size);
    return true;
}

}  // namespace

ByteFile::~ByteFile() {
    if (descriptor >= 0) {
        close(descriptor);
    }
}

bool OpenForReading(const std::string &path, ByteFile *file) {
    return Open(path, O_RDONLY, file);
}

bool OpenForPatching(const std::string &path, ByteFile *file) {
    return Open(path, O_RDWR, file);
}

bool ReadAt(const ByteFile &file, uint64_t place, uint64_t count, std::string *bytes) {
    if (place > file.size || count > file.size - place) {
        errno = EINVAL;
        return false;
    }
    bytes->resize(count);
    for (uint64_t done = 0; done < count;) {
        const ssize_t read =
            pread(file.descriptor, bytes->data() + done, count - done, static_cast<off_t>(place + done));
        if (read == 0 || (read < 0 && errno != EINTR)) {
            return false;
        }
        done += read > 0 ? static_cast<uint64_t>(read) : 0;
    }
    return true;
}

bool WriteAt(ByteFile *file, uint64_t place, std::string_view bytes) {
    for (uint64_t done = 0; done < bytes.size();) {
        const ssize_t written = pwrite(file->descriptor, bytes.data() + done, bytes.size() - done,
                                       static_cast<off_t>(place + done));
        if (written < 0 && errno != EINTR) {
            return false;
        }
        done += written > 0 ? static_cast<uint64_t>(written) : 0;
    }
    file->size = std::max(file->size, place + bytes.size());
    return true;
}

bool ReplaceHead(ByteFile *file, uint64_t oldBytes, std::string_view head) {
    const uint64_t oldSize = file->size;
    const uint64_t newSize = oldSize - oldBytes + head.size();
    const bool grows = newSize > oldSize;
    std::string block;
    // Blocks move in the order in which none lands on one that has not moved yet.
    for (uint64_t moved = 0; newSize != oldSize && moved < oldSize - oldBytes;) {
        const uint64_t count = std::min(kBlockBytes, oldSize - oldBytes - moved);
        const uint64_t from = grows ? oldSize - moved - count : oldBytes + moved;
        if (!ReadAt(*file, from, count, &block) || !WriteAt(file, from + head.size() - oldBytes, block)) {
            return false;
        }
        moved += count;
    }
    file->size = newSize;
    return WriteAt(file, 0, head) && ftruncate(file->descriptor, static_cast<off_t>(newSize)) == 0;
}

bool AppendPart(const ByteFile &from, uint64_t place, uint64_t count, ByteFile *to) {
    std::string block;
    for (uint64_t done = 0; done < count; done += block.size()) {
        if (!ReadAt(from, place + done, std::min(kBlockBytes, count - done), &block) ||
            !WriteAt(to, to->size, block)) {
            return false;
        }
    }
    return true;
}
