import QtQuick 2.0

// A mouse area whose presses count as mouse activity, so that the bar stays awake.
MouseArea {
    cursorShape: Qt.PointingHandCursor

    onPressed: root.onMouseMoved()
}
