#include "tests/support/dates.h"

#include <cctype>

std::string WithoutDates(std::string text) {
    const std::string form = "00/00/00 00:00:00";
    for (size_t at = 0; at + form.size() <= text.size(); ++at) {
        bool matches = true;
        for (size_t i = 0; i < form.size(); ++i) {
            const char c = text[at + i];
            matches &= form[i] == '0' ? std::isdigit(static_cast<unsigned char>(c)) != 0 : c == form[i];
        }
        if (matches) {
            text.replace(at, form.size(), "NOW");
        }
    }
    return text;
}
