#pragma once

#include "gfl.h"

/// Keeps the packets of XMP and IPTC that Exiv2 comes across on this thread while this lives. They
/// are kept as they stand in the file and not parsed: nobody asks for their contents, and Exiv2's
/// parsers take a time that grows with the square of a packet's length and memory beyond any
/// bound. Not nested.
class PacketCatcher
{
public:
    PacketCatcher();
    ~PacketCatcher();
    PacketCatcher(const PacketCatcher &) = delete;
    PacketCatcher &operator=(const PacketCatcher &) = delete;

    std::string xmp;
    GflBytes iptc;
};
