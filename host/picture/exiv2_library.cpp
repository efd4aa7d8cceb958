#include "host/picture/exiv2_library.h"

#include <exiv2/exiv2.hpp>

#include "host/container/byte_order.h"

namespace {

constexpr char kResource[] = "8BIM";
constexpr char kExtensionNote[] = "Xmp.xmpNote.HasExtendedXMP";

// Calls, and returns false if that threw.
template <typename Call>
bool Guarded(const Call &call) {
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    try {
        return call();
    } catch (const std::exception &) {
        return false;
    }
}

}  // namespace

bool TakeIptcOutOf(std::string *photoshop, std::string *iptc) {
    const auto *bytes = reinterpret_cast<const Exiv2::byte *>(photoshop->data());
    const auto size = static_cast<long>(photoshop->size());
    return Guarded([&] {
        if (!Exiv2::Photoshop::valid(bytes, size)) {
            return false;
        }
        const Exiv2::byte *record = nullptr;
        uint32_t headBytes = 0;
        uint32_t dataBytes = 0;
        if (Exiv2::Photoshop::locateIptcIrb(bytes, size, &record, &headBytes, &dataBytes) == 0) {
            const auto place = static_cast<size_t>(record - bytes);
            *iptc = photoshop->substr(place + headBytes, dataBytes);
            photoshop->erase(place, headBytes + dataBytes + dataBytes % 2);
        }
        return true;
    });
}

std::string WithIptc(const std::string &photoshop, const std::string &iptc) {
    if (iptc.empty()) {
        return photoshop;
    }
    // The resource's number and an empty name come before the length.
    return photoshop + kResource + NumberBytes(Exiv2::Photoshop::iptc_, 2, true) + std::string(2, '\0') +
           NumberBytes(iptc.size(), 4, true) + iptc + std::string(iptc.size() % 2, '\0');
}

std::string MergedXmp(const std::string &main, const std::string &extended) {
    std::string packet;
    const bool merged = Guarded([&] {
        Exiv2::XmpData all;
        Exiv2::XmpData further;
        if (Exiv2::XmpParser::decode(all, main) != 0 || Exiv2::XmpParser::decode(further, extended) != 0) {
            return false;
        }
        if (const auto note = all.findKey(Exiv2::XmpKey(kExtensionNote)); note != all.end()) {
            all.erase(note);
        }
        for (const Exiv2::Xmpdatum &datum : further) {
            all.add(datum);
        }
        return Exiv2::XmpParser::encode(packet, all) == 0;
    });
    return merged ? packet : "";
}
