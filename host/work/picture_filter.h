// Reads and filters a picture in this process alone.
#pragma once

#include "host/filter/orders.h"
#include "host/filter/plugin.h"
#include "host/picture/picture.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

// The part of a progress bar that reading fills. Chosen: the filter takes far longer.
constexpr double kReadingShare = 0.05;

struct PictureRequest {
    Module *module;
    FilterOrders orders;
    Watcher watcher;
};

// Reads the opened picture's pixels and filters them. Fills in what the filter recorded.
MaybeFailure FilterPicture(const PictureRequest &request, Picture *picture, Action *recorded);
