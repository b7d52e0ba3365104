#include "HandTranslation.h"

#include "ViewMotion.h"

#include <cmath>

HandDecision HandTranslation::detect(const HandScene &scene, const HandState &state)
{
    constexpr float kLikely = 0.7F;
    constexpr int kMoments = 10;
    constexpr double kLimit = 20;
    HandDecision decision;
    decision.state = state;
    const FrameHistory &frames = scene.frames;
    const Leap::Hand hand = frames.current().hands()[0];
    if (!scene.oneHandOpen
        || !(hand.translationProbability(frames.previous()) > kLikely
             || hand.rotationProbability(frames.previous()) > kLikely))
        return decision;

    Leap::Vector way;
    for (int age = 0; age < kMoments; ++age)
        way += frames[age].hands()[0].translation(frames[age + 1]);
    HandView &view = decision.state.view;
    ViewMotion::moveYaw(view, scene.options, double(way.x) / kMoments, kLimit);
    ViewMotion::movePitch(view, scene.options, double(way.y) / kMoments, kLimit);
    decision.acted = true;
    return decision;
}

HandDecision HandTranslation::detectRoll(const HandScene &scene, const HandState &state)
{
    HandDecision decision;
    decision.state = state;
    if (!scene.oneHandOpen)
        return decision;
    const Leap::Vector normal = scene.frames.current().hands()[0].palmNormal();
    decision.state.view.setRoll(std::atan2(double(normal.x), -double(normal.y)));
    decision.acted = true;
    return decision;
}
