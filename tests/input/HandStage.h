#pragma once

#include "HandPose.h"
#include "HandScene.h"

#include <QMetaType>

#include <functional>
#include <optional>

/// The last moments of synthetic hands, for tests of gestures: hands are posed by age, then a test
/// adds gestures or changes the moments' data as it likes, and takes the scene.
/// What moves how likely comes from the hands' motion; a test that needs certain figures gives two
/// neighbouring moments `setMotion`.
class HandStage
{
public:
    using Hands = std::vector<HandPose>;
    using Change = std::function<void(HandStage &)>; ///< a column of a table of cases

    static constexpr qint64 kNow = 10'000'000;  ///< time of the newest moment, µs
    static constexpr qint64 kInterval = 10'000; ///< between two moments, µs
    static constexpr qint64 kNewestId = 1000;   ///< of moments

    /// Moments of age 0 to `count` - 1.
    explicit HandStage(const std::function<Hands(int age)> &handsAt, int count = 40);

    HandStage(const HandStage &) = delete;
    HandStage &operator=(const HandStage &) = delete;

    HandOptions options; ///< with a window of 1000 by 500 pixels

    /// For changes before `scene`.
    Leap::FrameData &moment(int age) { return m_moments.at(std::size_t(age)); }
    void addGesture(const Leap::GestureData &gesture, int age = 0);

    /// The service's own count from the moment before the newest to the newest, of the frame and
    /// of each of its hands: a turn about the y axis in radians, a way in mm, and the logarithm of
    /// a factor. Each counts by the way of a surface 50 mm off, sharpened by the sixth power.
    void setMotion(float turn, const Leap::Vector &way, float logScale);

    /// What detectors see, until the next call.
    const HandScene &scene();

private:
    std::vector<Leap::FrameData> m_moments;
    FrameHistory m_frames;
    std::optional<HandScene> m_scene;
};

Q_DECLARE_METATYPE(HandStage::Change)
Q_DECLARE_METATYPE(Leap::Vector)
