#include "log/number_text.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

#include "platform/files.h"

namespace {

constexpr int kDigits = 6;

void Append(Str255 out, std::string_view text) {
    std::memcpy(out + 1 + out[0], text.data(), text.size());
    out[0] = static_cast<uint8_t>(out[0] + text.size());
}

void AppendInteger(Str255 out, int32_t value) {
    char digits[12];
    const char *end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    Append(out, {digits, static_cast<size_t>(end - digits)});
}

// Writes six digits, with a point after the first `whole`. Each digit is the truncated remainder; a digit
// that comes out as 10 is written as "10".
void AppendDigits(Str255 out, double rest, int whole) {
    for (int i = 0; i < kDigits; ++i) {
        const auto digit = static_cast<int32_t>(rest);
        AppendInteger(out, digit);
        if (i + 1 == whole) {
            Append(out, ".");
        }
        rest = (rest - digit) * 10;
    }
}

OSErr WriteBytes(int16_t file, const void *bytes, int64_t count, Boolean tab, Boolean lineEnd) {
    const struct {
        const void *bytes;
        int64_t count;
    } pieces[] = {{bytes, count}, {"\t", tab ? 1 : 0}, {"\r", lineEnd ? 1 : 0}};
    for (const auto &piece : pieces) {
        int64_t written = piece.count;
        const OSErr err = written == 0 ? noErr : FSWrite(file, &written, piece.bytes);
        if (err != noErr) {
            return err;
        }
    }
    return noErr;
}

}  // namespace

void RealToString(float value, Str255 out) {
    out[0] = 0;
    if (!(value < 0) && !(value > 0)) {
        Append(out, "0.0");
        return;
    }
    double x = value;
    if (value < 0) {
        Append(out, "-");
        x = -x;
    }
    if (std::isinf(x)) {
        Append(out, "inf");
        return;
    }
    // Truncated towards zero, so numbers below 1 get a mantissa below 1.
    const double e = std::trunc(std::log(x) / std::log(10.0));
    const double mantissa = (x + 5 * std::pow(10.0, e - kDigits)) * std::pow(10.0, -e);
    if (e < -2 || e > 3) {
        AppendDigits(out, mantissa, 1);
        Append(out, e < 0 ? "e-" : "e+");
        AppendInteger(out, static_cast<int32_t>(std::abs(e)));
    } else if (e < 0) {
        AppendDigits(out, mantissa * std::pow(10.0, e), 1);
    } else {
        AppendDigits(out, mantissa, static_cast<int>(e) + 1);
    }
}

OSErr WriteStr(int16_t file, ConstStringPtr text, Boolean tab, Boolean lineEnd) {
    return WriteBytes(file, text + 1, text[0], tab, lineEnd);
}

OSErr WriteCString(int16_t file, const char *text, Boolean tab, Boolean lineEnd) {
    return WriteBytes(file, text, static_cast<int64_t>(std::strlen(text)), tab, lineEnd);
}

OSErr WriteVal(int16_t file, int32_t value, Boolean tab, Boolean lineEnd) {
    Str255 text = {};
    AppendInteger(text, value);
    return WriteStr(file, text, tab, lineEnd);
}

OSErr WriteReal(int16_t file, float value, Boolean tab, Boolean lineEnd) {
    Str255 text;
    RealToString(value, text);
    return WriteStr(file, text, tab, lineEnd);
}

OSType CStringToOSType(const char *text) {
    OSType code = 0;
    for (int i = 0; i < 4; ++i) {
        code = (code << 8) | static_cast<uint8_t>(text[i]);
    }
    return code;
}

OSType PStringToOSType(ConstStringPtr text) {
    return CStringToOSType(reinterpret_cast<const char *>(text + 1));
}
