// Any datagram, in either form: a packet that is read holds finite angles and survives its own way.
#include "SyncPacket.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

void check(const std::optional<SyncPacket> &packet)
{
    if (!packet)
        return;
    if (!std::isfinite(packet->yaw) || !std::isfinite(packet->pitch)
        || !std::isfinite(packet->roll))
        std::abort();
    for (const auto &again :
         {SyncPacket::fromText(packet->toText()), SyncPacket::fromBinary(packet->toBinary())}) {
        if (!again || again->yaw != packet->yaw || again->pitch != packet->pitch
            || again->roll != packet->roll || again->state != packet->state
            || again->position != packet->position)
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    check(SyncPacket::fromText(bytes));
    check(SyncPacket::fromBinary(bytes));
    return 0;
}
