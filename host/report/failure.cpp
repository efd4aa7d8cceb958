#include "host/report/failure.h"

#include <cstdio>

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
