#include "tests/support/file_facts.h"

std::string TypeAndCreator(const std::filesystem::path &) {
    return {};
}
