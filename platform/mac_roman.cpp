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

}  // namespace

std::string MacRomanToUTF8(std::string_view text) {
    std::string utf8;
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        AppendUTF8(byte < 0x80 ? byte : kUpperHalf[byte - 0x80], &utf8);
    }
    return utf8;
}
