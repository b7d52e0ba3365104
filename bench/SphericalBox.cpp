#include "SphericalBox.h"

#include <QList>
#include <QtEndian>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

constexpr char kUuid[] = "\xff\xcc\x82\x63\xf8\x55\x4a\x93\x88\x14\x58\x7a\x02\x52\x1f\xdd";
constexpr qint64 kUuidLength = 16;
constexpr char kMetadata[] =
    "<?xml version=\"1.0\"?><rdf:SphericalVideo"
    " xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\""
    " xmlns:GSpherical=\"http://ns.google.com/videos/1.0/spherical/\">"
    "<GSpherical:Spherical>true</GSpherical:Spherical>"
    "<GSpherical:Stitched>true</GSpherical:Stitched>"
    "<GSpherical:StitchingSoftware>bench-play</GSpherical:StitchingSoftware>"
    "<GSpherical:ProjectionType>equirectangular</GSpherical:ProjectionType>"
    "</rdf:SphericalVideo>";

/// A place in the file; the content lies between `content` and `end`.
struct Box
{
    QByteArray type;
    qint64 begin = 0;
    qint64 content = 0;
    qint64 end = 0;
};

template <typename T>
T number(const QByteArray &file, qint64 at)
{
    return qFromBigEndian<T>(file.constData() + at);
}

/// Writes a number that may be too large for its field.
template <typename T>
bool setNumber(QByteArray &file, qint64 at, quint64 value)
{
    if (value > std::numeric_limits<T>::max())
        return false;
    qToBigEndian(static_cast<T>(value), file.data() + at);
    return true;
}

/// The boxes that fill `parent`; empty if one does not fit.
std::vector<Box> boxesIn(const QByteArray &file, const Box &parent)
{
    std::vector<Box> boxes;
    for (qint64 at = parent.content; at < parent.end; at = boxes.back().end) {
        const qint64 room = parent.end - at;
        if (room < 8)
            return {};
        quint64 size = number<quint32>(file, at);
        qint64 header = 8;
        if (size == 1 && room >= 16) { // the size is too large for 32 bits
            size = number<quint64>(file, at + 8);
            header = 16;
        } else if (size == 0) { // up to the end
            size = quint64(room);
        }
        if (size < quint64(header) || size > quint64(room))
            return {};
        boxes.push_back({file.mid(int(at) + 4, 4), at, at + header, at + qint64(size)});
    }
    return boxes;
}

/// The first box at the end of a path of types, such as "mdia/hdlr".
std::optional<Box> find(const QByteArray &file, Box parent, const QByteArray &path)
{
    const QList<QByteArray> types = path.split('/');
    for (const QByteArray &type : types) {
        const std::vector<Box> boxes = boxesIn(file, parent);
        const auto found = std::find_if(boxes.begin(), boxes.end(),
                                        [&type](const Box &box) { return box.type == type; });
        if (found == boxes.end())
            return {};
        parent = *found;
    }
    return parent;
}

bool isVideo(const QByteArray &file, const Box &track)
{
    const auto handler = find(file, track, "mdia/hdlr");
    return handler && handler->end - handler->content >= 12
        && file.mid(int(handler->content) + 8, 4) == "vide";
}

/// Writes the new size of a box with a plain header, as all but the frames' own have.
bool grow(QByteArray &file, const Box &box, quint64 bytes)
{
    return box.content - box.begin == 8 && number<quint32>(file, box.begin) != 0
        && setNumber<quint32>(file, box.begin, quint64(box.end - box.begin) + bytes);
}

/// Adds `shift` to the chunk offsets of `track` that point behind `place`.
template <typename T>
bool shiftOffsets(QByteArray &file, const Box &track, const char *table, qint64 place,
                  quint64 shift)
{
    const auto box = find(file, track, QByteArray("mdia/minf/stbl/") + table);
    if (!box)
        return true;
    if (box->end - box->content < 8)
        return false;
    const qint64 count = number<quint32>(file, box->content + 4);
    if (count > (box->end - box->content - 8) / qint64(sizeof(T)))
        return false;
    for (qint64 i = 0; i < count; ++i) {
        const qint64 at = box->content + 8 + i * qint64(sizeof(T));
        const quint64 offset = number<T>(file, at);
        if (offset >= quint64(place)
            && (offset > std::numeric_limits<quint64>::max() - shift
                || !setNumber<T>(file, at, offset + shift)))
            return false;
    }
    return true;
}

} // namespace

std::optional<QByteArray> withSphericalBox(const QByteArray &mp4)
{
    const qint64 length = 8 + kUuidLength + qint64(sizeof kMetadata) - 1;
    if (mp4.size() > std::numeric_limits<int>::max() - length)
        return {};
    const Box whole{{}, 0, 0, mp4.size()};
    const auto movie = find(mp4, whole, "moov");
    if (!movie)
        return {};
    std::vector<Box> tracks;
    std::optional<Box> video;
    for (const Box &box : boxesIn(mp4, *movie)) {
        if (box.type != "trak")
            continue;
        tracks.push_back(box);
        if (!video && isVideo(mp4, box))
            video = box;
    }
    if (!video)
        return {};

    QByteArray made = mp4;
    for (const Box &track : tracks) {
        if (!shiftOffsets<quint32>(made, track, "stco", video->end, quint64(length))
            || !shiftOffsets<quint64>(made, track, "co64", video->end, quint64(length)))
            return {};
    }
    if (!grow(made, *video, quint64(length)) || !grow(made, *movie, quint64(length)))
        return {};
    QByteArray box(4, '\0');
    setNumber<quint32>(box, 0, quint64(length));
    box += QByteArray("uuid") + QByteArray(kUuid, kUuidLength) + kMetadata;
    made.insert(int(video->end), box);
    return made;
}
