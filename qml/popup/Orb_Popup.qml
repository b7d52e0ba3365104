import QtQuick 2.0
import "../theme"

// The host of modal panels: dims the scene, loads a panel, scales it in, and out when it raises close.
FocusScope {
    id: orb_popup

    signal changeRootState(string newState)

    function load(qmlFile, rootState) {
        changeRootState(rootState ? rootState : "Popup")
        closeAnimation.stop()
        popupLoader.source = qmlFile
    }

    function onClose(rootState) {
        closeAnimation.rootState = rootState ? rootState : "Video"
        closeAnimation.start()
    }

    anchors.fill: parent

    Behavior on opacity {
        NumberAnimation { duration: Orb_Theme.slideMs }
    }

    Rectangle {
        anchors.fill: parent
        color: Orb_Theme.veil
    }

    MouseArea {
        anchors.fill: parent

        onWheel: {}
    }

    Loader {
        id: popupLoader

        anchors.fill: parent
        asynchronous: true
        scale: 0
        focus: true

        onStatusChanged: {
            if (status === Loader.Ready) {
                showAnimation.restart()
                item.close.connect(onClose)
            } else if (status === Loader.Error) {
                console.log("ERROR in Orb_Popup.qml::onStatusChanged : an error occurs when loading"
                            + " qml file '" + source + "'.")
                closeAnimation.start()
            }
        }
    }

    NumberAnimation {
        id: showAnimation

        target: popupLoader
        property: "scale"
        from: 0
        to: 1
        duration: Orb_Theme.popupMs
        easing.type: Easing.OutBack
        easing.amplitude: 3.0
    }

    SequentialAnimation {
        id: closeAnimation

        property string rootState: "Video"

        NumberAnimation {
            target: popupLoader
            property: "scale"
            to: 0
            duration: Orb_Theme.popupMs
            easing.type: Easing.InBack
            easing.amplitude: 3.0
        }
        PropertyAction { target: popupLoader; property: "source"; value: "" }
        ScriptAction { script: changeRootState(closeAnimation.rootState) }
    }

    states: [
        State {
            name: "On"
            PropertyChanges { target: orb_popup; focus: true; opacity: 1; enabled: true }
        },
        State {
            name: "Off"
            PropertyChanges { target: orb_popup; opacity: 0; enabled: false }
        }
    ]
}
