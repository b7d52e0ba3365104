import QtQuick 2.0

// Stands for the player's scene: keeps the keys that it is told of.
Rectangle {
    property var pressed: []

    function onKeyPressed(event) {
        pressed = pressed.concat([event.type, event.key, event.modifiers])
    }

    width: 64
    height: 64
}
