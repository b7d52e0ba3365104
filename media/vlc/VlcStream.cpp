#include "VlcStream.h"

#include <vlc/vlc.h>

namespace {

/// Codecs work in blocks of up to 64 pixels, and decoders add a few lines.
constexpr int kMaxPadding = 96;

bool isPadding(int offered, int told)
{
    return told > 0 && told <= offered && offered - told <= kMaxPadding;
}

bool isPadded(const QSize &offered, const QSize &told)
{
    return isPadding(offered.width(), told.width()) && isPadding(offered.height(), told.height());
}

} // namespace

QSize sizeWithoutPadding(const QSize &offered, const QSize &told)
{
    return isPadded(offered, told) ? told : offered;
}

QSize toldVideoSize(libvlc_media_player_t *player, const QSize &offered)
{
    libvlc_media_t *media = libvlc_media_player_get_media(player);
    if (!media)
        return {};
    libvlc_media_track_t **tracks = nullptr;
    const unsigned count = libvlc_media_tracks_get(media, &tracks);
    QSize size;
    for (unsigned i = 0; i < count && !size.isValid(); ++i) {
        if (tracks[i]->i_type != libvlc_track_video)
            continue;
        const QSize told(static_cast<int>(tracks[i]->video->i_width),
                         static_cast<int>(tracks[i]->video->i_height));
        if (isPadded(offered, told))
            size = told;
    }
    libvlc_media_tracks_release(tracks, count);
    libvlc_media_release(media);
    return size;
}
