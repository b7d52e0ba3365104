import QtQuick 2.0

// A small button in the colours of the scene; it acts when it is released with the mouse still on it.
Rectangle {
    id: orb_button

    property string labelText: "Button"
    property int labelSize: 12
    property color labelColor: "white"
    property color borderColor: "white"
    property color colorDefault: "#222222"
    property color colorToggled: "#e59a10"
    property int colorAnimationDuration: 300
    property bool toggled: false
    readonly property color __plainColor: toggled ? colorToggled : colorDefault

    signal buttonReleased()

    function checkColor() {
        color = mouseArea.containsMouse ? Qt.lighter(__plainColor) : __plainColor
    }

    width: 70
    height: 30
    radius: 5
    border.width: 2
    border.color: borderColor
    color: colorDefault

    Accessible.role: Accessible.Button
    Accessible.name: labelText
    Accessible.onPressAction: buttonReleased()

    onToggledChanged: color = __plainColor

    Behavior on color {
        ColorAnimation { duration: colorAnimationDuration }
    }

    Text {
        anchors.centerIn: parent
        text: labelText
        font.pixelSize: labelSize
        font.bold: true
        color: labelColor
    }

    Orb_MouseArea {
        id: mouseArea

        anchors.fill: parent
        hoverEnabled: true

        onPressed: orb_button.color = Qt.darker(__plainColor)
        onContainsMouseChanged: checkColor()
        onReleased: {
            checkColor()
            if (containsMouse)
                buttonReleased()
        }
    }
}
