#include "host/filter/filter_result.h"

#include <algorithm>
#include <iterator>

namespace {

struct ResultWords {
    OSErr result;
    const char *words;
};

constexpr ResultWords kWords[] = {
    {memFullErr, "there is not enough memory to filter it"},
    {dskFulErr, "the disk is too full for the filter's work files"},
    {ioErr, "the filter could not read or write its work files"},
    {eofErr, "the filter could not read or write its work files"},
    {wPrErr, "the filter's work files cannot be written"},
    {permErr, "the filter's work files cannot be written"},
    {fnfErr, "the folder of the filter's work files is missing"},
    {dirNFErr, "the folder of the filter's work files is missing"},
    {tmfoErr, "too many files are open"},
    {filterBadMode, "the filter does not work in this colour mode"},
    {filterBadParameters, "the filter did not understand what it was given"},
    {errPlugInHostInsufficient, "the filter needs more than this program offers"},
};

std::string WordsOf(OSErr result) {
    const auto *found = std::find_if(std::begin(kWords), std::end(kWords),
                                     [=](const ResultWords &entry) { return entry.result == result; });
    return found == std::end(kWords) ? "the filter ended with error " + std::to_string(result) : found->words;
}

}  // namespace

MaybeFailure FailureOfFilter(const FilterOutcome &outcome, const std::string &file) {
    if (outcome.result == noErr) {
        return std::nullopt;
    }
    if (outcome.result == userCanceledErr) {
        return Interruption(file);
    }
    // The filter has already told the user.
    if (outcome.result > 0) {
        return Failure{kExitFailed, ""};
    }
    return FileFailure(file, outcome.message.empty() ? WordsOf(outcome.result) : outcome.message);
}
