#pragma once

#include "Controller.h"

#include <QObject>

/// Tells of the hand tracker by signals, all on the tracker's own thread, and keeps back frames
/// that are not worth a look.
class LeapListener : public QObject, public Leap::Listener
{
    Q_OBJECT

public:
    using QObject::QObject;

    void onConnect(const Leap::Controller &controller) override;
    void onDisconnect(const Leap::Controller &controller) override;
    void onFrame(const Leap::Controller &controller) override;

    /// Whether the newest frame is to be analysed: not the first one, not while its first hand is
    /// doubtful, and not while a hand is new, which is less than 34 frames.
    static bool isWorthALook(const Leap::Controller &controller);

signals:
    void frameArrive();
    void leapConnected(bool connected);
};
