#include "host/work/picture_task.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/filter/action_file.h"
#include "host/filter/plugin.h"
#include "host/picture/comparison.h"
#include "host/picture/metadata.h"
#include "host/picture/picture_format.h"
#include "host/picture/picture_writer.h"
#include "host/picture/sample_range.h"

namespace {

constexpr int64_t kMegapixel = 1'000'000;

FileReport ReportOn(const Picture &picture, const Action &recorded, const PictureFormat &format,
                    const std::vector<std::string> &lost) {
    FileReport report = {.kind = DescribePicture(picture), .format = format.name, .lost = lost};
    if (picture.storage.palette) {
        report.kind += ", true colour instead of a palette";
    }
    if (const ActionItem *item = FindItem(recorded, kRadiusKey)) {
        report.radius = static_cast<int32_t>(item->number);  // a fraction has no effect
    }
    return report;
}

// Why all of a picture has to be in memory; empty for no reason.
const char *ReasonToHoldWhole(const FileTask &task, const PictureFormat &format, const Picture &picture) {
    const struct {
        bool holds;
        const char *reason;
    } reasons[] = {
        {task.settings.orders.user == DialogUser::person, " with a dialog"},
        {!task.settings.selection.maskFile.empty(), " with a mask"},
        {!task.outputs[kComparisonOutput].empty(), " with a comparison"},
        {IsReadWhole(picture), " for pictures that cannot be read row by row, as this one"},
        {format.writtenWhole, " for outputs that cannot be written row by row, as this one"},
    };
    const auto *found =
        std::find_if(std::begin(reasons), std::end(reasons), [](const auto &entry) { return entry.holds; });
    return found == std::end(reasons) ? "" : found->reason;
}

MaybeFailure CheckSize(const FileTask &task, const PictureFormat &format, const Picture &picture) {
    const std::string reason = ReasonToHoldWhole(task, format, picture);
    const std::optional<int32_t> &limit = task.settings.maxMegapixels;
    const int32_t most = limit.value_or(reason.empty() ? kMaxStreamedMegapixels : kMaxWholeMegapixels);
    const int64_t pixels = int64_t{picture.document.width} * picture.document.height;
    if (pixels <= most * kMegapixel) {
        return reason.empty() || FitsIntoMemory(PixelBytes(picture.document))
                   ? std::nullopt
                   : MaybeFailure(TooLittleMemory(task.inputFile));
    }
    return FileFailure(task.inputFile, "its " + SizeOf(picture.document) + " pixels are more than the " +
                                           std::to_string(most) + " megapixels that --max-megapixels allows" +
                                           (limit ? "" : reason));
}

// A dialog shows the picture whole, and a comparison is made when all of it is done.
Store StoreFor(const FileTask &task) {
    return task.settings.orders.user == DialogUser::person || !task.outputs[kComparisonOutput].empty()
               ? Store::whole
               : Store::slots;
}

MaybeFailure WriteFurtherResults(const FileTask &task, const Picture &picture, const Action &recorded) {
    if (!task.outputs[kComparisonOutput].empty()) {
        if (MaybeFailure failure =
                WriteComparison(picture, task.written[kComparisonOutput], task.outputs[kComparisonOutput])) {
            return failure;
        }
    }
    return task.outputs[kActionOutput].empty()
               ? std::nullopt
               : WriteAction(recorded, task.written[kActionOutput], task.outputs[kActionOutput]);
}

}  // namespace

MaybeFailure CheckPicture(const FileTask &task, const PluginInfo &plugin, const Picture &picture) {
    const PictureFormat *format = nullptr;
    const std::string &output = task.outputs[kPictureOutput];
    if (MaybeFailure failure = FindFormat(output, task.settings.save.format, &format)) {
        return failure;
    }
    if (MaybeFailure failure = CheckSize(task, *format, picture)) {
        return failure;
    }
    if (MaybeFailure failure = CheckMode(plugin, picture.document, task.inputFile)) {
        return failure;
    }
    if (MaybeFailure failure = CheckFormatHolds(*format, picture.document, task.inputFile, output)) {
        return failure;
    }
    return CheckChoice(task.settings.save.storage, *format, picture.storage, output);
}

MaybeFailure DoPicture(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                       const std::function<void(const Failure &)> &leave, Picture *picture,
                       FileReport *report) {
    const PictureFormat *format = nullptr;
    if (MaybeFailure failure = FindFormat(task.outputs[kPictureOutput], task.settings.save.format, &format)) {
        return failure;
    }
    Choose(task.settings.save.storage, &picture->storage);
    const Sharing sharing = place.jobs > 1 ? Sharing::withWorkers : Sharing::none;
    const Watcher silent = {[](double) {}, watcher.cancelled};
    if (MaybeFailure failure =
            Select(task.settings.selection, task.inputFile, sharing, silent, &picture->document)) {
        return failure;
    }
    if (MaybeFailure failure = ChooseRange(task.settings.range, task.inputFile, silent, &picture->document)) {
        return failure;
    }
    const auto write = [&](const RowSource &rows) {
        return WritePicture(*picture, *format, task.settings.save, task.written[kPictureOutput],
                            task.outputs[kPictureOutput], rows);
    };
    Action recorded;
    if (MaybeFailure failure = StreamPicture(
            {place, task.settings.orders, watcher, StoreFor(task), write, leave}, picture, &recorded)) {
        return failure;
    }
    if (MaybeFailure failure = WriteFurtherResults(task, *picture, recorded)) {
        return failure;
    }
    std::vector<std::string> lost;
    if (MaybeFailure failure = CarryMetadata({task.inputFile, task.written[kPictureOutput],
                                              task.outputs[kPictureOutput], task.settings.save.stamp},
                                             &lost)) {
        return failure;
    }
    *report = ReportOn(*picture, recorded, *format, lost);
    return std::nullopt;
}

std::string WordsOn(const FileReport &report) {
    const std::string pages = report.pages == 1 ? "" : std::to_string(report.pages) + " pages of ";
    return pages + (report.alike ? report.kind : "different kinds") +
           (report.radius > 0 ? ", radius " + std::to_string(report.radius) : "");
}
