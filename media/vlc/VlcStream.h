#pragma once

#include <QSize>

struct libvlc_media_player_t;

/// The size that the media of a player gives for its video, nearest to `offered`; empty if it gives
/// none, as in streams that are not looked through beforehand. Any thread.
QSize toldVideoSize(libvlc_media_player_t *player, const QSize &offered);

/// The size of the decoder's picture itself. `offered` is what libVLC proposes: the picture rounded
/// up to whole blocks of its codec, and padded. `told` counts if it can be the same picture without
/// its padding, else `offered`.
QSize sizeWithoutPadding(const QSize &offered, const QSize &told);
