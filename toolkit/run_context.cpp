#include "toolkit/run_context.h"

#include <cstring>

float PreferenceFloat(const RunContext *context, int32_t offset) {
    float value;
    std::memcpy(&value, context->preferencesHeader + offset, sizeof value);
    return value;
}

void SetPreferenceFloat(RunContext *context, int32_t offset, float value) {
    std::memcpy(context->preferencesHeader + offset, &value, sizeof value);
}

void DoProgress(const RunContext *context, int32_t done, int32_t total) {
    if (context->filterRecord->progressProc != nullptr) {
        context->filterRecord->progressProc(done, total);
    }
}

Boolean CommandPeriod(const RunContext *context) {
    return context->filterRecord->abortProc != nullptr && context->filterRecord->abortProc() != 0;
}
