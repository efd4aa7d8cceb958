#include "host/picture/raw_source.h"

#include <fcntl.h>
#include <unistd.h>

#include <vector>

#include "host/picture/file_probe.h"

namespace {

struct PatchedFile {
    int descriptor;
    std::vector<BytePatch> patches;
};

gint64 Read(VipsSourceCustom *, void *buffer, gint64 length, void *data) {
    const auto *file = static_cast<const PatchedFile *>(data);
    const off_t begin = lseek(file->descriptor, 0, SEEK_CUR);
    const ssize_t count = read(file->descriptor, buffer, static_cast<size_t>(length));
    for (const BytePatch &patch : file->patches) {
        if (patch.place >= begin && patch.place < begin + count) {
            static_cast<uint8_t *>(buffer)[patch.place - begin] = patch.value;
        }
    }
    return count;
}

gint64 Seek(VipsSourceCustom *, gint64 offset, int whence, void *data) {
    return lseek(static_cast<const PatchedFile *>(data)->descriptor, offset, whence);
}

void Close(void *data, GClosure *) {
    auto *file = static_cast<PatchedFile *>(data);
    close(file->descriptor);
    delete file;
}

}  // namespace

// A source takes the name as it is; in a plain file name the library would look for options.
OwnedObject<VipsSource> OpenRawSource(const std::string &file) {
    std::vector<BytePatch> patches = PatchesForRawSamples(file);
    if (patches.empty()) {
        return OwnedObject<VipsSource>(vips_source_new_from_file(file.c_str()));
    }
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return nullptr;
    }
    VipsSourceCustom *source = vips_source_custom_new();
    auto *patched = new PatchedFile{descriptor, std::move(patches)};
    g_signal_connect(source, "seek", G_CALLBACK(Seek), patched);
    // The last one owns the file.
    g_signal_connect_data(source, "read", G_CALLBACK(Read), patched, Close, GConnectFlags(0));
    return OwnedObject<VipsSource>(VIPS_SOURCE(source));
}
