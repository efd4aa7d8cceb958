#include "host/work/picture_filter.h"

#include "host/filter/filter_result.h"
#include "host/filter/tiles.h"

MaybeFailure FilterPicture(const PictureRequest &request, Picture *picture, Action *recorded) {
    if (MaybeFailure failure = ReadPixels(picture, PartOf(request.watcher, 0, kReadingShare))) {
        return failure;
    }
    Document *document = &picture->document;
    const FilterOutcome outcome = FilterTiles({request.module, document, request.action, true,
                                               PartOf(request.watcher, kReadingShare, 1), request.dialog},
                                              CutIntoTiles(SelectedRect(*document), {}));
    *recorded = outcome.recorded;
    return FailureOfFilter(outcome, picture->file);
}
