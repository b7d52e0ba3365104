#include "PacketCatcher.h"

#include <exiv2/iptc.hpp>
#include <exiv2/xmp_exiv2.hpp>

namespace {

thread_local PacketCatcher *t_catcher = nullptr;

} // namespace

PacketCatcher::PacketCatcher()
{
    t_catcher = this;
}

PacketCatcher::~PacketCatcher()
{
    t_catcher = nullptr;
}

// The program's own parsers: the shared library comes here too, as it does for `new`.
int Exiv2::XmpParser::decode(XmpData &, const std::string &packet)
{
    if (t_catcher)
        t_catcher->xmp = packet;
    return 0;
}

int Exiv2::IptcParser::decode(IptcData &, const byte *pData, uint32_t size)
{
    if (t_catcher)
        t_catcher->iptc.assign(pData, pData + size);
    return 0;
}
