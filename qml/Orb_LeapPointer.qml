import QtQuick 2.0

// The layer of the hand pointer over the video area.
Item {
    id: orb_leapPointer

    anchors.fill: parent
}
