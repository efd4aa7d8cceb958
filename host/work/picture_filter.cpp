#include "host/work/picture_filter.h"

#include "host/filter/filter_result.h"
#include "host/filter/tiles.h"

MaybeFailure FilterPicture(const PictureRequest &request, Picture *picture, Action *recorded) {
    Document *document = &picture->document;
    const std::vector<Tile> tiles = CutIntoTiles(SelectedRect(*document), {});
    if (request.orders.user == DialogUser::person && tiles.size() > 1) {
        return FileFailure(picture->file, "the picture is too large to be shown in the dialog whole");
    }
    if (MaybeFailure failure = ReadPixels(picture, PartOf(request.watcher, 0, kReadingShare))) {
        return failure;
    }
    const FilterOutcome outcome = RunTiles(
        {request.module, document, request.orders, true, PartOf(request.watcher, kReadingShare, 1)}, tiles);
    *recorded = outcome.recorded;
    return FailureOfFilter(outcome, picture->file);
}
