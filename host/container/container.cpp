#include "host/container/container.h"

#include <algorithm>
#include <iterator>

namespace {

using namespace std::string_literals;

const struct {
    Container container;
    size_t place;
    std::string bytes;
} kSignatures[] = {
    {Container::jpeg, 0, "\xFF\xD8\xFF"s}, {Container::png, 0, "\x89PNG\r\n\x1A\n"s},
    {Container::tiff, 0, "II*\0"s},        {Container::tiff, 0, "MM\0*"s},
    {Container::tiff, 0, "II+\0\x08\0"s},  {Container::tiff, 0, "MM\0+\0\x08"s},
    {Container::gif, 0, "GIF8"s},          {Container::webp, 8, "WEBP"s},
    {Container::heif, 4, "ftypheic"s},     {Container::heif, 4, "ftypheix"s},
    {Container::heif, 4, "ftypmif1"s},     {Container::heif, 4, "ftypavif"s},
};

}  // namespace

Container ContainerOf(const ByteFile &file) {
    std::string bytes;
    ReadAt(file, 0, std::min<uint64_t>(file.size, 16), &bytes);
    const auto *found =
        std::find_if(std::begin(kSignatures), std::end(kSignatures), [&](const auto &signature) {
            return bytes.size() > signature.place &&
                   bytes.compare(signature.place, signature.bytes.size(), signature.bytes) == 0;
        });
    return found == std::end(kSignatures) ? Container::other : found->container;
}
