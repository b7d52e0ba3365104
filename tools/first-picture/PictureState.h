#pragma once

class QImage;

/// What a grab of the screen shows of a player that is starting.
enum class PictureState {
    Empty,       ///< nothing yet, or hardly more than one colour
    Placeholder, ///< the player's grey ground, which stands in while no media is shown
    Picture,
};

/// Judges one grab of the whole screen. The placeholder is told by its exact colour, over 30 % of
/// the pixels; a picture by at least 64 distinct colours of which none covers over 90 %.
PictureState judge(const QImage &grab);
