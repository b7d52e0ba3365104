import QtQuick 2.0

// Lets a value of the camera fall to its end like a ball.
NumberAnimation {
    target: orbGlobalObject
    duration: 1000
    easing.type: Easing.OutBounce
}
