#include "host/work/worker_job.h"

#include <algorithm>

#include "host/filter/packing.h"

namespace {

// A document without its blocks.
struct Shape {
    int16_t imageMode;
    int32_t depth, colorPlanes, planes, width, height;
    Fixed horizontalResolution, verticalResolution;
    bool hasFile;
    FSSpec file;
    bool masked;
    Tile tile;
};

struct RectRecord {
    bool there;
    VRect rect;
};

constexpr char kTileMark = 't';
constexpr char kFileMark = 'f';

Shape ShapeOf(const Document &document, const Tile &tile) {
    return {document.imageMode,
            document.depth,
            document.colorPlanes,
            document.planes,
            document.width,
            document.height,
            document.horizontalResolution,
            document.verticalResolution,
            document.file.has_value(),
            document.file.value_or(FSSpec{}),
            document.mask != nullptr,
            tile};
}

void TakeShape(const Shape &shape, TileJob *job) {
    Document *document = &job->document;
    document->imageMode = shape.imageMode;
    document->depth = shape.depth;
    document->colorPlanes = shape.colorPlanes;
    document->planes = shape.planes;
    document->width = shape.width;
    document->height = shape.height;
    document->horizontalResolution = shape.horizontalResolution;
    document->verticalResolution = shape.verticalResolution;
    document->file = shape.hasFile ? std::optional(shape.file) : std::nullopt;
    job->masked = shape.masked;
    job->tile = shape.tile;
}

bool TakeActionText(std::string_view *packed, Action *action) {
    std::string bytes;
    return TakeText(packed, &bytes) && UnpackAction(bytes, action);
}

std::string JobHead(const std::string &pluginFolder, char mark) {
    std::string packed;
    AppendText(&packed, pluginFolder);
    AppendRecord(&packed, mark);
    return packed;
}

bool TakeNames(std::string_view *packed, OutputNames *names) {
    return std::all_of(names->begin(), names->end(),
                       [=](std::string &name) { return TakeText(packed, &name); });
}

void AppendNames(std::string *packed, const OutputNames &names) {
    for (const std::string &name : names) {
        AppendText(packed, name);
    }
}

bool TakeTask(std::string_view *packed, FileTask *task) {
    RectRecord rect;
    Selection *selection = &task->settings.selection;
    if (!TakeText(packed, &task->inputFile) || !TakeNames(packed, &task->outputs) ||
        !TakeNames(packed, &task->written) || !TakeOrders(packed, &task->settings.orders) ||
        !TakeText(packed, &selection->maskFile) || !TakeRecord(packed, &rect)) {
        return false;
    }
    selection->rect = rect.there ? std::optional(rect.rect) : std::nullopt;
    return true;
}

bool TakeTile(std::string_view *packed, TileJob *job) {
    Shape shape;
    if (!TakeRecord(packed, &shape) || !TakeOrders(packed, &job->orders)) {
        return false;
    }
    TakeShape(shape, job);
    return true;
}

}  // namespace

std::string PackTileJob(const std::string &pluginFolder, const Document &document, const FilterOrders &orders,
                        const Tile &tile) {
    std::string packed = JobHead(pluginFolder, kTileMark);
    AppendRecord(&packed, ShapeOf(document, tile));
    AppendOrders(&packed, orders);
    return packed;
}

std::string PackFileJob(const std::string &pluginFolder, const FileTask &task) {
    std::string packed = JobHead(pluginFolder, kFileMark);
    AppendText(&packed, task.inputFile);
    AppendNames(&packed, task.outputs);
    AppendNames(&packed, task.written);
    const Selection &selection = task.settings.selection;
    AppendOrders(&packed, task.settings.orders);
    AppendText(&packed, selection.maskFile);
    AppendRecord(&packed, RectRecord{selection.rect.has_value(), selection.rect.value_or(VRect{})});
    return packed;
}

bool UnpackJob(std::string_view packed, WorkerJob *job) {
    char mark = 0;
    if (!TakeText(&packed, &job->pluginFolder) || !TakeRecord(&packed, &mark)) {
        return false;
    }
    return mark == kTileMark ? TakeTile(&packed, &job->tile.emplace()) : TakeTask(&packed, &job->file);
}

std::string PackOutcome(const FilterOutcome &outcome) {
    std::string packed;
    AppendRecord(&packed, outcome.result);
    AppendText(&packed, outcome.message);
    AppendText(&packed, PackAction(outcome.recorded));
    return packed;
}

bool UnpackOutcome(std::string_view packed, FilterOutcome *outcome) {
    return TakeRecord(&packed, &outcome->result) && TakeText(&packed, &outcome->message) &&
           TakeActionText(&packed, &outcome->recorded);
}

std::string PackAnswer(const FileAnswer &answer) {
    std::string packed;
    AppendRecord(&packed, answer.failure ? answer.failure->status : kExitDone);
    AppendText(&packed, answer.failure ? answer.failure->sentence : "");
    AppendText(&packed, answer.report.words);
    AppendText(&packed, answer.report.lost);
    return packed;
}

bool UnpackAnswer(std::string_view packed, FileAnswer *answer) {
    Failure failure = {};
    if (!TakeRecord(&packed, &failure.status) || !TakeText(&packed, &failure.sentence) ||
        !TakeText(&packed, &answer->report.words) || !TakeText(&packed, &answer->report.lost)) {
        return false;
    }
    answer->failure = failure.status == kExitDone ? std::nullopt : MaybeFailure(failure);
    return true;
}
