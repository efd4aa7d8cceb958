#include "host/picture/picture_writer.h"

#include <algorithm>
#include <vector>

#include "host/picture/picture_mode.h"

namespace {

void FollowWriting(VipsImage *image, VipsProgress *progress, void *data) {
    const auto &watcher = *static_cast<const Watcher *>(data);
    watcher.progress(progress->percent / 100.0);
    if (watcher.cancelled()) {
        vips_image_set_kill(image, TRUE);
    }
}

// From the form of documents to that of files. XOR with 0 leaves the extra channels as they are.
OwnedObject<VipsImage> Flipped(OwnedObject<VipsImage> image, const Document &document) {
    const auto &flipped = ModeOfDocument(document.imageMode).flips;
    if (image == nullptr || flipped[document.colorPlanes - 1] == 0) {
        return image;
    }
    std::vector<double> flips(static_cast<size_t>(vips_image_get_bands(image.get())));
    std::copy_n(flipped, document.colorPlanes, flips.begin());
    VipsImage *made = nullptr;
    vips_boolean_const(image.get(), &made, VIPS_OPERATION_BOOLEAN_EOR, flips.data(),
                       static_cast<int>(flips.size()), nullptr);
    return OwnedObject<VipsImage>(made);
}

// Shows the destination's pixels without copying them.
OwnedObject<VipsImage> ImageOf(const Picture &picture) {
    const Document &document = picture.document;
    const PictureMode &mode = ModeOfDocument(document.imageMode);
    OwnedObject<VipsImage> image(
        vips_image_new_from_memory(document.destination.get(), static_cast<size_t>(PixelBytes(document)),
                                   document.width, document.height, document.planes, mode.format));
    image = Flipped(std::move(image), document);
    if (image != nullptr) {
        image->Type = mode.interpretation;
        CopyMetadata(picture.metadata.get(), image.get());
    }
    return image;
}

}  // namespace

MaybeFailure WritePicture(const Picture &picture, const PictureFormat &format, const std::string &path,
                          const std::string &outputFile, const Watcher &watcher) {
    const OwnedObject<VipsImage> image = ImageOf(picture);
    if (image == nullptr) {
        return FileFailure(outputFile, "cannot be written: " + TakeVipsError());
    }
    vips_image_set_progress(image.get(), TRUE);
    g_signal_connect(image.get(), "eval", G_CALLBACK(FollowWriting), const_cast<Watcher *>(&watcher));
    if (format.save(image.get(), path.c_str()) != 0) {
        const std::string error = TakeVipsError();
        return watcher.cancelled() ? Interruption(picture.file)
                                   : FileFailure(outputFile, "cannot be written: " + error);
    }
    return watcher.cancelled() ? MaybeFailure(Interruption(picture.file)) : std::nullopt;
}
