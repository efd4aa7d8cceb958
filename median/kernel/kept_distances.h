// Computes and keeps distances. A distance depends only on its two pixels, and every set of samples meets the
// same displacements in many places, so each displacement's distances are computed once per line and kept as
// long as any set needs them.
#pragma once

#include "distance.h"
#include "tile.h"

namespace HYBRID_VARIANT {

template <int R>
struct BinColumns {
    int at[kMaxDisplacements];
};

template <int R>
constexpr BinColumns<R> MakeBinColumns() {
    BinColumns<R> columns{};
    for (int bin = 0; bin < kPlan<R>.bins; ++bin) {
        columns.at[bin] = kPlan<R>.BinColumn(bin, kMaxRun<R>);
    }
    return columns;
}

template <int R>
constexpr BinColumns<R> kBinColumns = MakeBinColumns<R>();

// Computes a line of distances for each displacement whose distances are kept for more than `ahead` lines.
template <class Format, int R>
void ComputeDistances(const Rings<Format, R> &rings, int ahead) {
    constexpr const Plan<R> &plan = kPlan<R>;
    for (int i = 0; i < plan.count; ++i) {
        const Displacement &d = plan.displacements[i];
        if (d.Lines() <= ahead) {
            continue;
        }
        const int line = R + d.lastLine;
        const int column = R + d.firstColumn;
        const auto &anchors = *rings.points[line];
        const auto &others = *rings.points[line - d.offset.dy];
        Float *distances = rings.distances[plan.RingLine(d, d.lastLine)] + kBinColumns<R>.at[d.bin];
        float beyond[kTailPixels<R>];
        for (int x = 0; x < d.Margin(); x += kLanes) {
            const auto anchor = LoadTail<Format>(*rings.tails[line], column + x);
            const auto other = LoadTail<Format>(*rings.tails[line - d.offset.dy], column - d.offset.dx + x);
            Store(beyond + x, DoubledDistance(Format::SquaredDistance(anchor, other)));
        }
        for (int x = 0; x < rings.run; ++x) {
            const auto anchor = LoadPoint<Format>(anchors, column + x);
            const auto other = LoadPoint<Format>(others, column - d.offset.dx + x);
            distances[x] = DoubledDistance(Format::SquaredDistance(anchor, other));
        }
        for (int x = 0; x < d.Margin(); ++x) {
            distances[rings.run + x] = NextLane(distances[x], beyond[x]);
        }
    }
}

}  // namespace HYBRID_VARIANT
