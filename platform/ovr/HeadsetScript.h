#pragma once

#include "HeadsetModel.h"
#include "OrientationPath.h"

#include <QByteArray>
#include <QString>

#include <limits>
#include <optional>
#include <string>

/// A headset that is simulated, and how it moves. As a file it is a JSON object; every key may be
/// missing:
///
///     "type"              "DK1" or "DK2" (the default), for all figures that are not given here
///     "productName"       text
///     "resolution"        [width, height] of the panel in pixels
///     "extendDesktop"     true for a panel that is a screen of the desktop
///     "windowsPos"        [x, y] of that screen
///     "eyeFov"            [[up, down, left, right], the same of the right eye], tangents
///     "position"          true for tracking of the position
///     "overdrive"         true for what a display can do against smearing
///     "hqDistortion"      true for a finer distortion mesh
///     "notice"            true to show the notice on health and safety until it is dismissed
///     "unusable"          why the headset cannot be opened, for one that cannot
///     "unpluggedAtSeconds"  when its orientation stops to change
///     "repeat"            true to move anew from the start after the last pose
///     "poses"             up to 100000 of {"atSeconds": 1.5, "yawDeg": 90, "pitchDeg": 0,
///                         "rollDeg": 0} or {"atSeconds": 1.5, "quaternion": [x, y, z, w]}, with
///                         rising times from the first question for the pose; angles to the left,
///                         up, and to the left, as in `orientationOf`
///
/// A null among the numbers of "eyeFov" or "quaternion" stands for what is not a number, as a
/// broken device would give.
struct HeadsetScript
{
    HeadsetModel model;      ///< less the product's name
    std::string productName; ///< UTF-8
    OrientationPath path;
    std::string unusable;
    double unpluggedAtSeconds = std::numeric_limits<double>::infinity();
    bool showsNotice = false;
};

/// None if the text is no script; `error` then says why.
std::optional<HeadsetScript> parseHeadsetScript(const QByteArray &json, QString *error);

/// A headset that looks slowly around, for ever.
HeadsetScript defaultHeadsetScript();
