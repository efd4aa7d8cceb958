// A picture read and filtered, by this process alone.
#pragma once

#include "host/filter/orders.h"
#include "host/filter/plugin.h"
#include "host/picture/picture.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

// The part of a progress bar that belongs to reading; the filter takes longer by far.
constexpr double kReadingShare = 0.05;

struct PictureRequest {
    Module *module;
    FilterOrders orders;
    Watcher watcher;
};

// Reads the opened picture's pixels and filters them. Fills what the filter recorded.
MaybeFailure FilterPicture(const PictureRequest &request, Picture *picture, Action *recorded);
