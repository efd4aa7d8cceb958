#include "host/picture/page_stack.h"

#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstring>
#include <numeric>

#include "host/picture/storage.h"

namespace {

// Of samples. A classic TIFF ends at 4 GiB; half of that is left for tables and for what packs badly.
constexpr uint64_t kMaxClassicBytes = 2'000'000'000;

bool Empty(ByteFile *file) {
    file->size = 0;
    return ftruncate(file->descriptor, 0) == 0;
}

MaybeFailure Unwritable(const std::string &name) {
    return FileFailure(name, std::string("cannot be written: ") + std::strerror(errno));
}

// Of a file that could not be moved: one that is damaged, or one that could not be written.
MaybeFailure Unmoved(const PageStack &stack, size_t page, const std::string &target) {
    return errno == EINVAL
               ? FileFailure(NameOfPage(stack.name, page), "cannot be read: it is damaged or cut short")
               : Unwritable(target);
}

}  // namespace

bool OpenStack(const std::string &path, const std::string &name, PageStack *stack) {
    stack->name = name;
    if (!OpenForReading(path, &stack->file) || !OpenTiff(BytesOfFile(stack->file), &stack->tiff)) {
        return false;
    }
    stack->pages = PagesOfTiff(stack->file);
    return stack->pages.size() > 1 && !StorageOf(path).pyramid;
}

std::string NameOfPage(const std::string &name, size_t page) {
    return name + ", page " + std::to_string(page + 1);
}

MaybeFailure TakePage(const PageStack &stack, size_t page, const std::string &path) {
    ByteFile file;
    TiffJoiner joiner;
    errno = 0;
    return OpenForPatching(path, &file) && Empty(&file) && StartTiff(stack.tiff.form, &file, &joiner) &&
                   AppendPage(stack.tiff, stack.pages[page], stack.file, &joiner)
               ? std::nullopt
               : Unmoved(stack, page, NameOfPage(stack.name, page));
}

MaybeFailure StartStack(const PageStack &stack, const std::string &path, const std::string &name,
                        StackWriter *writer) {
    writer->name = name;
    const uint64_t bytes =
        std::accumulate(stack.pages.begin(), stack.pages.end(), uint64_t{0},
                        [](uint64_t sum, const TiffPage &page) { return sum + page.bytes; });
    const TiffForm form = {std::endian::native == std::endian::big,
                           stack.tiff.form.big || bytes > kMaxClassicBytes};
    return OpenForPatching(path, &writer->file) && Empty(&writer->file) &&
                   StartTiff(form, &writer->file, &writer->joiner)
               ? std::nullopt
               : Unwritable(name);
}

bool CanCopyPage(const PageStack &stack, size_t page, const StackWriter &writer) {
    return CanJoin(stack.tiff, stack.pages[page], writer.joiner);
}

MaybeFailure CopyPage(const PageStack &stack, size_t page, StackWriter *writer) {
    errno = 0;
    return AppendPage(stack.tiff, stack.pages[page], stack.file, &writer->joiner)
               ? std::nullopt
               : Unmoved(stack, page, writer->name);
}

MaybeFailure PutPage(const PageStack &stack, size_t page, const std::string &path, StackWriter *writer) {
    ByteFile file;
    TiffSource tiff;
    const bool sound = OpenForReading(path, &file) && OpenTiff(BytesOfFile(file), &tiff);
    TiffPage written = stack.pages[page];
    written.place = tiff.first;
    return sound && AppendPage(tiff, written, file, &writer->joiner) ? std::nullopt
                                                                     : Unwritable(writer->name);
}
