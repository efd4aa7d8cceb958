#include "platform/mac_roman.h"

#include <algorithm>
#include <iterator>

namespace {

// The characters of the bytes 0x80 to 0xFF.
constexpr char16_t kUpperHalf[] =
    u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü"
    u"†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
    u"¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
    u"‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
static_assert(std::size(kUpperHalf) == 128 + 1);

void AppendUTF8(char16_t character, std::string *out) {
    const unsigned code = character;
    if (code < 0x80) {
        *out += static_cast<char>(code);
    } else if (code < 0x800) {
        *out += static_cast<char>(0xC0 | (code >> 6));
        *out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        *out += static_cast<char>(0xE0 | (code >> 12));
        *out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        *out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// Removes one character from the front; each malformed byte yields U+FFFD. Overlong encodings are malformed:
// otherwise a name could hide a separator.
char32_t TakeCharacter(std::string_view *text) {
    const auto first = static_cast<uint8_t>(text->front());
    const size_t length = first < 0x80       ? 1
                          : first >> 5 == 6  ? 2
                          : first >> 4 == 14 ? 3
                          : first >> 3 == 30 ? 4
                                             : 0;
    char32_t character = length == 1 ? first : first & (0x7Fu >> length);
    bool sound = length > 0 && length <= text->size();
    for (size_t i = 1; sound && i < length; ++i) {
        const auto byte = static_cast<uint8_t>((*text)[i]);
        sound = byte >> 6 == 2;
        character = (character << 6) | (byte & 0x3F);
    }
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    sound = sound && character >= kSmallest[length];
    text->remove_prefix(sound ? length : 1);
    return sound ? character : 0xFFFD;
}

}  // namespace

std::string MacRomanToUTF8(std::string_view text) {
    std::string utf8;
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        AppendUTF8(byte < 0x80 ? byte : kUpperHalf[byte - 0x80], &utf8);
    }
    return utf8;
}

std::string UTF8ToMacRoman(std::string_view text) {
    std::string macRoman;
    while (!text.empty()) {
        const char32_t character = TakeCharacter(&text);
        const auto *found = std::find(std::begin(kUpperHalf), std::end(kUpperHalf) - 1, character);
        const auto upper = static_cast<char>(0x80 + (found - kUpperHalf));
        macRoman += character < 0x80                    ? static_cast<char>(character)
                    : found != std::end(kUpperHalf) - 1 ? upper
                                                        : '?';
    }
    return macRoman;
}
