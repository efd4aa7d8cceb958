#include "log/html_entities.h"

#include <algorithm>
#include <iterator>

namespace {

struct Entity {
    uint8_t code;
    std::string_view text;
};

// Sorted by code. Deliberate choices of this page: bullet and middle dot look the same, the en dash becomes a
// soft hyphen, and apostrophes, curly quotation marks and the ellipsis pass through unchanged.
constexpr Entity kEntities[] = {
    {0x22, "&quot;"},   {0x26, "&amp;"},    {0x3C, "&lt;"},     {0x3E, "&gt;"},     {0x5C, "&#92;"},
    {0x80, "&Auml;"},   {0x81, "&Aring;"},  {0x82, "&Ccedil;"}, {0x83, "&Eacute;"}, {0x84, "&Ntilde;"},
    {0x85, "&Ouml;"},   {0x86, "&Uuml;"},   {0x87, "&aacute;"}, {0x88, "&agrave;"}, {0x89, "&acirc;"},
    {0x8A, "&auml;"},   {0x8B, "&atilde;"}, {0x8C, "&aring;"},  {0x8D, "&ccedil;"}, {0x8E, "&eacute;"},
    {0x8F, "&egrave;"}, {0x90, "&ecirc;"},  {0x91, "&euml;"},   {0x92, "&iacute;"}, {0x93, "&igrave;"},
    {0x94, "&icirc;"},  {0x95, "&iuml;"},   {0x96, "&ntilde;"}, {0x97, "&oacute;"}, {0x98, "&ograve;"},
    {0x99, "&ocirc;"},  {0x9A, "&ouml;"},   {0x9B, "&otilde;"}, {0x9C, "&uacute;"}, {0x9D, "&ugrave;"},
    {0x9E, "&ucirc;"},  {0x9F, "&uuml;"},   {0xA1, "&deg;"},    {0xA2, "&cent;"},   {0xA3, "&pound;"},
    {0xA4, "&sect;"},   {0xA5, "&middot;"}, {0xA6, "&para;"},   {0xA7, "&szlig;"},  {0xA8, "&reg;"},
    {0xA9, "&copy;"},   {0xAB, "&acute;"},  {0xAC, "&uml;"},    {0xAE, "&AElig;"},  {0xAF, "&Oslash;"},
    {0xB1, "&plusmn;"}, {0xB4, "&yen;"},    {0xB5, "&micro;"},  {0xBB, "&ordf;"},   {0xBC, "&ordm;"},
    {0xBE, "&aelig;"},  {0xBF, "&oslash;"}, {0xC0, "&iquest;"}, {0xC1, "&iexcl;"},  {0xC2, "&not;"},
    {0xC7, "&laquo;"},  {0xC8, "&raquo;"},  {0xCA, "&nbsp;"},   {0xCB, "&Agrave;"}, {0xCC, "&Atilde;"},
    {0xCD, "&Otilde;"}, {0xD0, "&shy;"},    {0xD6, "&divide;"}, {0xD8, "&yuml;"},   {0xE1, "&middot;"},
    {0xE5, "&Acirc;"},  {0xE6, "&Ecirc;"},  {0xE7, "&Aacute;"}, {0xE8, "&Euml;"},   {0xE9, "&Egrave;"},
    {0xEA, "&Iacute;"}, {0xEB, "&Icirc;"},  {0xEC, "&Iuml;"},   {0xED, "&Igrave;"}, {0xEE, "&Oacute;"},
    {0xEF, "&Ocirc;"},  {0xF1, "&Ograve;"}, {0xF2, "&Uacute;"}, {0xF3, "&Ucirc;"},  {0xF4, "&Ugrave;"},
    {0xF8, "&macr;"},   {0xFC, "&cedil;"},
};
static_assert(std::size(kEntities) == 87);

}  // namespace

std::string_view EntityFor(uint8_t character) {
    const auto *found =
        std::lower_bound(std::begin(kEntities), std::end(kEntities), character,
                         [](const Entity &entity, uint8_t code) { return entity.code < code; });
    return found != std::end(kEntities) && found->code == character ? found->text : std::string_view();
}
