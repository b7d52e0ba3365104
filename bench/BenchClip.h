#pragma once

#include <QSize>
#include <QString>

/// A video that costs what real 360-degree video costs: H.264 of about 12 Mbit/s at 1920x960 and
/// 40 Mbit/s at 3840x1920, with fine detail, grain and a slow turn, 20 seconds at 30 frames a
/// second with a keyframe each second. Each frame has its number in the middle, from 0 on, as
/// FrameCode::read finds it, and the file says that it is spherical.
namespace BenchClip {

constexpr int kFramesPerSecond = 30;
constexpr int kSeconds = 20;
constexpr int kFrames = kFramesPerSecond * kSeconds;

/// The clip of this size in `folder`, made of the picture `panorama` by ffmpeg if it is not there
/// yet. Blocks. Empty if it cannot be made; `failure` then says why.
QString path(const QString &folder, const QSize &size, const QString &panorama, QString *failure);

} // namespace BenchClip
