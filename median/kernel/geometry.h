// Compile-time geometry of the filter: which samples each median uses, which displacements lie between them,
// and where the distances of each displacement are kept.
#pragma once

#include <utility>

namespace HYBRID_VARIANT {

constexpr int kMaxRadius = 6;
// The number of different displacements at radius 6, the most of any radius; bins are no more numerous.
constexpr int kMaxDisplacements = 188;

struct Offset {
    int dy, dx;
};

template <int R>
constexpr int kSets = R == 1 ? 2 : 4;
template <int R>
constexpr int kSamples = 4 * R + 1;
template <int R>
constexpr int kPairs = kSamples<R> *(kSamples<R> - 1) / 2;

// The number of lines that one output line depends on, and thus the length of every ring of lines.
template <int R>
constexpr int kRingLines = 2 * R + 1;

template <int R>
struct SampleSet {
    Offset at[kSamples<R>];
};

// The order of the samples breaks ties and must not change.
template <int R>
constexpr SampleSet<R> MakeSampleSet(int set) {
    SampleSet<R> samples{};
    int n = 0;
    auto add = [&](int dy, int dx) { samples.at[n++] = {dy, dx}; };
    auto half = [](int k) { return (k + 1) / 2; };
    if (set == 0) {
        for (int k = 1; k <= R; ++k) {
            add(k, -k), add(k, k), add(-k, -k), add(-k, k);
        }
        add(0, 0);
    } else if (set == 1) {
        for (int k = 1; k <= R; ++k) {
            add(k, 0), add(-k, 0);
        }
        for (int k = -R; k <= R; ++k) {
            add(0, k);
        }
    } else {
        const int side = set == 2 ? 1 : -1;
        for (int k = 1; k <= R; ++k) {
            add(k, side * half(k)), add(-k, -side * half(k));
        }
        for (int k = 1; k <= R; ++k) {
            add(half(k), -side * k), add(-half(k), side * k);
        }
        add(0, 0);
    }
    return samples;
}

template <int R, int Set>
constexpr SampleSet<R> kSampleSet = MakeSampleSet<R>(Set);

// A pair of samples as seen from its anchor, the later of the two in raster order: the other sample is at
// anchor - displacement.
struct Pair {
    Offset anchor;
    Offset displacement;
};

constexpr Pair MakePair(Offset a, Offset b) {
    const bool aIsLater = a.dy > b.dy || (a.dy == b.dy && a.dx > b.dx);
    const Offset anchor = aIsLater ? a : b;
    const Offset other = aIsLater ? b : a;
    return {anchor, {anchor.dy - other.dy, anchor.dx - other.dx}};
}

// The distances of one displacement. The anchors still needed lie on lines firstLine..lastLine relative to
// the output line, in columns firstColumn..lastColumn relative to the output column. They take that many
// lines of one bin, which is a ring of lines; the distances of anchor line dy are on ring line dy + shift
// (modulo the ring's length).
struct Displacement {
    Offset offset;
    int firstLine, lastLine;
    int firstColumn, lastColumn;
    int bin;
    int shift;

    constexpr int Lines() const { return lastLine - firstLine + 1; }

    // The number of columns kept in addition to one per output pixel.
    constexpr int Margin() const { return lastColumn - firstColumn; }

    constexpr void Include(Offset anchor) {
        firstLine = anchor.dy < firstLine ? anchor.dy : firstLine;
        lastLine = anchor.dy > lastLine ? anchor.dy : lastLine;
        firstColumn = anchor.dx < firstColumn ? anchor.dx : firstColumn;
        lastColumn = anchor.dx > lastColumn ? anchor.dx : lastColumn;
    }
};

template <int R>
struct Plan {
    Displacement displacements[kMaxDisplacements];
    int count;
    int bins;
    // The widest margin of each bin's displacements.
    int margins[kMaxDisplacements];

    constexpr int Find(Offset offset) const {
        int i = 0;
        while (i < count &&
               (displacements[i].offset.dy != offset.dy || displacements[i].offset.dx != offset.dx)) {
            ++i;
        }
        return i;
    }

    constexpr int RingLine(const Displacement &d, int anchorLine) const {
        return (anchorLine + d.shift + kRingLines<R>) % kRingLines<R>;
    }

    // Where a bin starts in its line, given the number of output columns; bins follow each other.
    constexpr int BinColumn(int bin, int outputColumns) const {
        int column = bin * outputColumns;
        for (int i = 0; i < bin; ++i) {
            column += margins[i];
        }
        return column;
    }
};

template <int R>
constexpr void CollectDisplacements(Plan<R> &plan) {
    for (int set = 0; set < kSets<R>; ++set) {
        const SampleSet<R> samples = MakeSampleSet<R>(set);
        for (int i = 0; i < kSamples<R>; ++i) {
            for (int j = i + 1; j < kSamples<R>; ++j) {
                const Pair pair = MakePair(samples.at[i], samples.at[j]);
                const int found = plan.Find(pair.displacement);
                if (found == plan.count) {
                    const Offset anchor = pair.anchor;
                    plan.displacements[plan.count++] = {pair.displacement, anchor.dy, anchor.dy, anchor.dx,
                                                        anchor.dx,         0,         0};
                }
                plan.displacements[found].Include(pair.anchor);
            }
        }
    }
}

// Several displacements share a bin: those that take the most lines are placed first, each in the first bin
// with room.
template <int R>
constexpr void PackBins(Plan<R> &plan) {
    int used[kMaxDisplacements] = {};
    for (int lines = kRingLines<R>; lines > 0; --lines) {
        for (int i = 0; i < plan.count; ++i) {
            Displacement &d = plan.displacements[i];
            if (d.Lines() != lines) {
                continue;
            }
            while (used[d.bin] + lines > kRingLines<R>) {
                ++d.bin;
            }
            d.shift = used[d.bin] - d.firstLine;
            used[d.bin] += lines;
            if (d.bin >= plan.bins) {
                plan.bins = d.bin + 1;
            }
            if (d.Margin() > plan.margins[d.bin]) {
                plan.margins[d.bin] = d.Margin();
            }
        }
    }
}

template <int R>
constexpr Plan<R> MakePlan() {
    Plan<R> plan{};
    CollectDisplacements(plan);
    PackBins(plan);
    return plan;
}

template <int R>
constexpr Plan<R> kPlan = MakePlan<R>();

// One distance used by a set's median: between samples i and j, kept on line `ringLine` of the rings,
// `column` columns to the right of the output pixel's.
struct Term {
    int i, j;
    int ringLine;
    int column;
};

template <int R>
struct TermList {
    Term at[kPairs<R>];
};

// Ordered by i + j, so that every sample still meets its partners in ascending order, while neighbouring
// terms go to different sums and their additions need not wait for each other.
template <int R, int Set, int OutputColumns>
constexpr TermList<R> MakeTerms() {
    TermList<R> terms{};
    int n = 0;
    for (int total = 1; total < 2 * kSamples<R>; ++total) {
        for (int i = 0; i < kSamples<R>; ++i) {
            const int j = total - i;
            if (j <= i || j >= kSamples<R>) {
                continue;
            }
            const Pair pair = MakePair(kSampleSet<R, Set>.at[i], kSampleSet<R, Set>.at[j]);
            const Displacement &d = kPlan<R>.displacements[kPlan<R>.Find(pair.displacement)];
            terms.at[n++] = {i, j, kPlan<R>.RingLine(d, pair.anchor.dy),
                             kPlan<R>.BinColumn(d.bin, OutputColumns) + pair.anchor.dx - d.firstColumn};
        }
    }
    return terms;
}

template <int R, int Set, int OutputColumns>
constexpr TermList<R> kTerms = MakeTerms<R, Set, OutputColumns>();

}  // namespace HYBRID_VARIANT
