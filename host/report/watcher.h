// Whoever watches a long piece of work: is told how far it is, and may stop it.
#pragma once

#include <functional>

struct Watcher {
    std::function<void(double)> progress = [](double) {};  // the part that is done, 0 to 1; may go back
    std::function<bool()> cancelled = [] { return false; };
};

// A watcher for a part of the work, which fills the bar between `from` and `to`.
inline Watcher PartOf(const Watcher &whole, double from, double to) {
    return {[progress = whole.progress, from, to](double done) { progress(from + (to - from) * done); },
            whole.cancelled};
}
