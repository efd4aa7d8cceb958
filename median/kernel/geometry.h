// Compile-time geometry of the filter: which samples each median takes, which displacements lie between
// them, and where the distances of each displacement are kept.
#pragma once

#include <utility>

namespace HYBRID_VARIANT {

constexpr int kMaxRadius = 6;
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

// Lines that one output line depends on, and so the length of every ring of lines.
template <int R>
constexpr int kRingLines = 2 * R + 1;

template <int R>
struct SampleSet {
    Offset at[kSamples<R>];
};

// The order of the samples decides ties and must not change.
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

// A pair of samples seen from its anchor, the later of the two in raster order: the other sample lies at
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

// The distances of one displacement: the anchors for which they are still needed lie on the lines
// firstLine..lastLine around the output line. They take that many lines of one bin of the store, a bin being
// a ring of lines; the distances of anchor line dy are its ring line dy + shift (modulo the ring's length).
struct Displacement {
    Offset offset;
    int firstLine, lastLine;
    int bin;
    int shift;

    constexpr int Lines() const { return lastLine - firstLine + 1; }
};

template <int R>
struct Plan {
    Displacement displacements[kMaxDisplacements];
    int count;
    int bins;

    constexpr int Find(Offset offset) const {
        int i = 0;
        while (i < count &&
               (displacements[i].offset.dy != offset.dy || displacements[i].offset.dx != offset.dx)) {
            ++i;
        }
        return i;
    }

    constexpr int RingLine(int displacement, int anchorLine) const {
        return (anchorLine + displacements[displacement].shift + kRingLines<R>) % kRingLines<R>;
    }
};

template <int R>
constexpr void CollectDisplacements(Plan<R> &plan) {
    for (int set = 0; set < kSets<R>; ++set) {
        const SampleSet<R> samples = MakeSampleSet<R>(set);
        for (int i = 0; i < kSamples<R>; ++i) {
            for (int j = i + 1; j < kSamples<R>; ++j) {
                const Pair pair = MakePair(samples.at[i], samples.at[j]);
                Displacement &found = plan.displacements[plan.Find(pair.displacement)];
                if (&found == plan.displacements + plan.count) {
                    found = {pair.displacement, pair.anchor.dy, pair.anchor.dy, 0, 0};
                    ++plan.count;
                }
                if (pair.anchor.dy < found.firstLine) {
                    found.firstLine = pair.anchor.dy;
                }
                if (pair.anchor.dy > found.lastLine) {
                    found.lastLine = pair.anchor.dy;
                }
            }
        }
    }
}

// By last line, so that the displacements computed from the same line follow each other; and the longest
// kept first, so that the lines before the first output line need a leading part of each such group only.
template <int R>
constexpr void SortDisplacements(Plan<R> &plan) {
    auto before = [](const Displacement &a, const Displacement &b) {
        return a.lastLine != b.lastLine ? a.lastLine > b.lastLine : a.Lines() > b.Lines();
    };
    for (int i = 1; i < plan.count; ++i) {
        const Displacement moved = plan.displacements[i];
        int j = i;
        for (; j > 0 && before(moved, plan.displacements[j - 1]); --j) {
            plan.displacements[j] = plan.displacements[j - 1];
        }
        plan.displacements[j] = moved;
    }
}

// Displacements share the lines of a bin: the longest kept first, each into the first bin with room.
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
        }
    }
}

template <int R>
constexpr Plan<R> MakePlan() {
    Plan<R> plan{};
    CollectDisplacements(plan);
    SortDisplacements(plan);
    PackBins(plan);
    return plan;
}

template <int R>
constexpr Plan<R> kPlan = MakePlan<R>();

// One distance of a set's median: between samples i and j, kept on that line of that bin, dx columns to the
// right of the output pixel.
struct Term {
    int i, j;
    int ringLine;
    int bin;
    int dx;
};

template <int R>
struct TermList {
    Term at[kPairs<R>];
};

// By i + j: every sample then meets its partners in ascending order, and neighbouring terms add to
// different sums, so that the additions do not wait for each other.
template <int R, int Set>
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
            const int d = kPlan<R>.Find(pair.displacement);
            terms.at[n++] = {i, j, kPlan<R>.RingLine(d, pair.anchor.dy), kPlan<R>.displacements[d].bin,
                             pair.anchor.dx};
        }
    }
    return terms;
}

template <int R, int Set>
constexpr TermList<R> kTerms = MakeTerms<R, Set>();

}  // namespace HYBRID_VARIANT
