#include "host/report/failure.h"

#include <cstdio>

Failure Renamed(Failure failure, const std::string &file, const std::string &name) {
    if (failure.sentence.starts_with(file)) {
        failure.sentence.replace(0, file.size(), name);
    }
    return failure;
}

int Tell(Failure failure) {
    // File names may contain control characters, which would break the line.
    for (char &character : failure.sentence) {
        character = static_cast<unsigned char>(character) < ' ' || character == 0x7F ? '?' : character;
    }
    if (!failure.sentence.empty()) {
        std::fprintf(stderr, "hymedian: %s\n", failure.sentence.c_str());
    }
    return failure.status;
}
