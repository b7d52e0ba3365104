import QtQuick 2.0
import QtQuick.Controls 1.1
import QtMultimedia 5.0
import OrbixSight 1.0
import "theme"
import "fieldOfView.js" as FieldOfView
import "lib.js" as Lib

// The layer under all controls: the panorama, what stands in for it while nothing plays, and the
// pointing input that steers the view.
Item {
    id: orb_videoArea

    property variant mediaPlayer: null
    property real moveSpeed: 0.005 // radians of camera per pixel of drag
    property real __moveX: 0
    property real __moveY: 0
    property bool __moving: false
    readonly property bool __shown: mediaPlayer.playerStatus === MediaPlayer.Buffered

    signal changeRootState(string newState)
    signal showVideoPlugins()

    function move(newMoveX, newMoveY) {
        root.onMouseMoved()
        var turn = orbGlobalObject.touchMode ? -moveSpeed : moveSpeed
        var deltaX = newMoveX - __moveX
        var deltaY = newMoveY - __moveY
        if (orbOculus.activated) {
            orbOculus.shiftYaw -= deltaX * turn
        } else {
            orbGlobalObject.yaw += deltaX * turn
            orbGlobalObject.pitch += deltaY * turn
        }
        __moveX = newMoveX
        __moveY = newMoveY
    }

    // A negative direction zooms out; the factor is in degrees.
    function zoom(direction, zoomFactor) {
        checkFovValue(orbGlobalObject.fov + (direction < 0 ? zoomFactor : -zoomFactor), false)
    }

    function checkFovValue(fov, resetFov) {
        orbGlobalObject.fov = FieldOfView.allowed(fov, orbShaderCodeBuilder.projection,
                                                  OrbShaderCodeBuilder, resetFov)
    }

    function onProjectionChanged() {
        checkFovValue(orbGlobalObject.fov, true)
    }

    anchors.rightMargin: dynamicLogo.width

    Component.onCompleted: orbShaderCodeBuilder.projectionChanged.connect(onProjectionChanged)

    // Behind the logo as well, where the player's own item would show.
    Rectangle {
        anchors.fill: parent
        anchors.rightMargin: -dynamicLogo.width
        color: "black"
    }

    Rectangle {
        id: background

        anchors.fill: parent
        color: "grey"
        opacity: __shown ? 0 : 1

        Rectangle {
            id: backgroundForText

            anchors.centerIn: parent
            width: 300
            height: 200
            radius: 20
            color: Qt.rgba(0, 0, 0, 0.5)

            Text {
                anchors.centerIn: parent
                visible: !progressBar.visible
                text: qsTr("Drop your file(s) here")
                font.pixelSize: 20
                font.bold: true
                color: Orb_Theme.text
            }

            Text {
                id: errorMessage

                anchors.bottom: parent.bottom
                anchors.bottomMargin: 30
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.margins: 10
                height: 50
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                wrapMode: Text.WordWrap
                elide: Text.ElideRight
                text: Lib.withoutPasswords(mediaPlayer.errorString)
                font.pixelSize: 16
                color: "red"
            }

            ProgressBar {
                id: progressBar

                anchors.centerIn: parent
                indeterminate: true
                visible: mediaPlayer.playerStatus === MediaPlayer.Loading
                         && mediaPlayer.errorString === ""
            }
        }
    }

    OrbixSightView {
        id: orbixSightView

        anchors.fill: parent
        opacity: __shown ? 1 : 0

        onFpsChanged: orb_help.fps = fps

        Component.onCompleted: {
            init(orbShaderCodeBuilder, orbGlobalObject, orbTextureProvider)
            // A live feed needs no loading.
            if (orbTextureProvider.isSharedMemory())
                mediaPlayer.playerStatus = MediaPlayer.Buffered
        }
    }

    Loader {
        id: interactionArea

        property bool pinching: false

        anchors.fill: parent
        sourceComponent: orbGlobalObject.platformOS() === "Q_OS_MACX" ? c_MouseArea
                                                                      : c_PinchAndMouseArea
    }

    Button {
        anchors.horizontalCenter: parent.horizontalCenter
        y: parent.height / 2 + backgroundForText.height / 2 + 10
        text: qsTr("change video plugin")
        visible: errorMessage.text !== "" && orbVideoPlugin.pluginsList().length > 1

        onClicked: showVideoPlugins()
    }

    Image {
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.margins: 20
        source: "qrc:/images/help_24.png"
        visible: !__shown

        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Help")
        Accessible.onPressAction: orb_help.visible = !orb_help.visible

        MouseArea {
            anchors.fill: parent

            onClicked: orb_help.visible = !orb_help.visible
        }
    }

    Image {
        id: dynamicLogo

        anchors.left: parent.right
        anchors.top: parent.top
        source: {
            // An entry without a logo names the folder of its playlist.
            var logo = orbGlobalObject.getDynamicLogo(mediaPlayer.mediaSource)
            return orbGlobalObject.isImageFile(logo) ? logo : ""
        }
    }

    Component {
        id: c_MouseArea

        MouseArea {
            id: mouseArea

            cursorShape: Qt.ArrowCursor
            hoverEnabled: true

            onPressed: {
                if (!interactionArea.pinching) {
                    __moveX = mouse.x
                    __moveY = mouse.y
                }
            }
            onPositionChanged: {
                if (!pressed)
                    return
                if (interactionArea.pinching) {
                    __moveX = mouse.x
                    __moveY = mouse.y
                    return
                }
                // A touch screen reports changes with the finger at rest.
                if (Math.abs(mouse.x - __moveX) > 3 || Math.abs(mouse.y - __moveY) > 3)
                    __moving = true
                if (__moving)
                    move(mouse.x, mouse.y)
            }
            onClicked: {
                if (__moving || interactionArea.pinching)
                    return
                if (orb_videoArea.activeFocus) {
                    changeRootState("ControlsPanel")
                    timerHideControls.restart()
                } else {
                    changeRootState("Video")
                }
            }
            onDoubleClicked: {
                if (!orbView.demoMode)
                    fullscreenTimer.restart()
            }
            onWheel: {
                if (wheel.pixelDelta.y !== 0)
                    zoom(wheel.pixelDelta.y, 2)
                else if (wheel.angleDelta.y !== 0)
                    zoom(wheel.angleDelta.y, 5)
            }
            onExited: __moving = false

            // Later than the double click, whose exit would else not arrive.
            Timer {
                id: fullscreenTimer

                interval: 500

                onTriggered: orbView.fullScreenMode(!orbView.fullScreen)
            }
        }
    }

    Component {
        id: c_PinchAndMouseArea

        PinchArea {
            property int iterator: 1

            onPinchStarted: {
                interactionArea.pinching = true
                iterator = 1
            }
            onPinchUpdated: {
                if (iterator % 2 === 0) {
                    zoom(pinch.scale > pinch.previousScale ? 1 : -1, 3)
                    iterator = 1
                } else {
                    ++iterator
                }
            }
            onPinchFinished: interactionArea.pinching = false

            Loader {
                anchors.fill: parent
                sourceComponent: c_MouseArea
            }
        }
    }

    states: [
        State {
            name: "On"
            PropertyChanges { target: orb_videoArea; focus: true }
            StateChangeScript {
                script: {
                    if (!messageDialog.visible)
                        orbGlobalObject.hideCursor()
                }
            }
        },
        State {
            name: "Off"
            StateChangeScript { script: orbGlobalObject.restoreCursor() }
        }
    ]
}
