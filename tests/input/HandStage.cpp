#include "HandStage.h"

#include <cmath>

HandStage::HandStage(const std::function<Hands(int age)> &handsAt, int count)
{
    options.width = 1000;
    options.height = 500;
    m_moments.reserve(std::size_t(count));
    for (int age = 0; age < count; ++age)
        m_moments.push_back(handFrame(kNewestId - age, kNow - age * kInterval, handsAt(age)));
}

void HandStage::addGesture(const Leap::GestureData &gesture, int age)
{
    auto &gestures = moment(age).gestures;
    if (!gestures)
        gestures.emplace();
    gestures->push_back(gesture);
}

void HandStage::setMotion(float turn, const Leap::Vector &way, float logScale)
{
    Leap::MotionData motion;
    motion.rotation = {Leap::Vector(std::cos(turn), 0, std::sin(turn)), Leap::Vector::yAxis(),
                       Leap::Vector(-std::sin(turn), 0, std::cos(turn))};
    motion.translation = way;
    motion.scale = logScale;
    moment(0).motion = motion;
    moment(1).motion = Leap::MotionData();
    for (Leap::HandData &hand : moment(0).hands)
        hand.motion = motion;
    for (Leap::HandData &hand : moment(1).hands)
        hand.motion = Leap::MotionData();
}

const HandScene &HandStage::scene()
{
    std::vector<Leap::Frame> frames;
    frames.reserve(m_moments.size());
    for (const Leap::FrameData &moment : m_moments)
        frames.emplace_back(std::make_shared<const Leap::FrameData>(moment));
    m_scene.reset();
    m_frames = FrameHistory(std::move(frames));
    return m_scene.emplace(m_frames, Leap::Device(), options);
}
