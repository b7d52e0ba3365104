import QtQuick 2.0
import QtMultimedia 5.0
import OrbixSight 1.0
import "theme"
import "widgets/"
import "lib.js" as Lib

// The control bar: it slides out of sight while one looks, and comes back when the mouse moves.
Rectangle {
    id: orb_bar

    property variant mediaPlayer: null
    readonly property bool containsMouse: barMouseArea.containsMouse
    readonly property var __lists: []
    readonly property int __busyWidth: orbixButton.width + playPauseButton.width
                                       + textPosition.width + textDuration.width
                                       + fullscreenButton.width + planarButton.width
                                       + littlePlanetButton.width + previousVideoButton.width
                                       + nextVideoButton.width

    signal changeRootState(string newState)
    signal showPlayerImage(string playerImage)
    signal displayPopup(string qmlFile)

    // Opens a list, or closes it if it is open; the others close.
    function showElement(element) {
        if (element === undefined) {
            console.log("ERROR in Orb_Bar.qml::showElement : element is undefined.")
            return
        }
        var newState = element.state === "Hidden" ? "Shown" : "Hidden"
        hideAllElements()
        element.state = newState
    }

    function hideAllElements() {
        for (var i = 0; i < __lists.length; ++i)
            __lists[i].state = "Hidden"
    }

    function showVideoPluginsList() {
        if (orbVideoPlugin.pluginsList().length <= 1)
            return
        changeRootState("ControlsPanel")
        hideAllElements()
    }

    function playPause() {
        if (mediaPlayer.playbackState === MediaPlayer.PlayingState) {
            mediaPlayer.pause()
            showPlayerImage("qrc:/images/newui/pause_icon.png")
        } else {
            mediaPlayer.play()
            showPlayerImage("qrc:/images/newui/play_icon.png")
        }
    }

    function oculusOnOff() {
        if (!orbOculus.available)
            return
        orbSensor.activated = false
        orbOculus.activated = !orbOculus.activated
        orbLeap.cameraMode = orbLeap.cameraMode === 2 ? 1 : 2
        orbShaderCodeBuilder.oculusMode = orbOculus.activated
        orbRealSense.activated = false
    }

    function leapOnOff() {
        if (!orbLeap.available)
            return
        orbSensor.activated = false
        orbLeap.activated = !orbLeap.activated
        orbRealSense.activated = false
    }

    function gyroOnOff() {
        if (!orbSensor.available)
            return
        orbSensor.activated = !orbSensor.activated
        orbOculus.activated = false
        orbLeap.activated = false
        orbShaderCodeBuilder.oculusMode = false
        orbRealSense.activated = false
    }

    function realSenseOnOff() {
        if (!orbRealSense.available)
            return
        orbSensor.activated = false
        orbOculus.activated = false
        orbLeap.activated = false
        orbShaderCodeBuilder.oculusMode = false
        orbRealSense.activated = !orbRealSense.activated
    }

    width: parent.width
    height: Orb_Theme.barHeight
    anchors.bottom: parent.bottom
    color: Orb_Theme.bar

    Component.onCompleted: orbLeap.setBar(orb_bar)

    Behavior on anchors.bottomMargin {
        NumberAnimation { duration: Orb_Theme.slideMs }
    }

    Orb_MouseArea {
        id: barMouseArea

        anchors.fill: parent
        hoverEnabled: true
    }

    Flow {
        anchors.fill: parent
        spacing: 0
        layoutDirection: Qt.LeftToRight

        Orb_BarButton {
            id: orbixButton

            width: 100
            image: "qrc:/images/logo_orbix_horizontal_small.png"

            onClicked: {
                var address = orbGlobalObject.getEnterpriseWebLink()
                if (address !== "")
                    Qt.openUrlExternally(address)
            }
        }

        Orb_BarButton {
            id: playPauseButton

            image: mediaPlayer.playbackState === MediaPlayer.PlayingState
                   ? "qrc:/images/newui/pause_mini_button.png"
                   : "qrc:/images/newui/play_mini_button.png"

            onPressed: {
                hideAllElements()
                playPause()
            }
        }

        Orb_BarTime {
            id: textPosition

            time: mediaPlayer.position

            onPressed: hideAllElements()
        }

        Item {
            width: Math.max(50, orb_bar.width - __busyWidth)
            height: Orb_Theme.barHeight

            Orb_Slider {
                id: timeline

                anchors.verticalCenter: parent.verticalCenter
                width: parent.width
                height: 8
                buttonSource: "qrc:/images/button_16.png"
                enabled: mediaPlayer.playbackState !== MediaPlayer.StoppedState
                progression: mediaPlayer.duration > 0 && mediaPlayer.position > 0
                             ? Math.min(1, mediaPlayer.position / mediaPlayer.duration) : 0

                onNewProgressionChanged:
                    mediaPlayer.seek(Math.round(timeline.newProgression * mediaPlayer.duration))
            }
        }

        Orb_BarTime {
            id: textDuration

            time: mediaPlayer.duration

            onPressed: hideAllElements()
        }

        Orb_BarButton {
            id: fullscreenButton

            image: orbView.fullScreen ? "qrc:/images/newui/fullscreen_off_mini_button.png"
                                      : "qrc:/images/newui/fullscreen_on_mini_button.png"

            onPressed: {
                hideAllElements()
                orbView.fullScreenMode(!orbView.fullScreen)
            }
        }

        Orb_BarButton {
            id: planarButton

            separator: false
            image: orbShaderCodeBuilder.projection === OrbShaderCodeBuilder.RECTILINEAR
                   ? "qrc:/images/newui/proj_planar_on_mini_button.png"
                   : "qrc:/images/newui/proj_planar_off_mini_button.png"

            onPressed: {
                hideAllElements()
                orbShaderCodeBuilder.projection = OrbShaderCodeBuilder.RECTILINEAR
            }
        }

        Orb_BarButton {
            id: littlePlanetButton

            image: orbShaderCodeBuilder.projection === OrbShaderCodeBuilder.LITTLE_PLANET
                   ? "qrc:/images/newui/proj_littleplanet_on_mini_button.png"
                   : "qrc:/images/newui/proj_littleplanet_off_mini_button.png"

            onPressed: {
                hideAllElements()
                orbShaderCodeBuilder.projection = OrbShaderCodeBuilder.LITTLE_PLANET
            }
        }

        Orb_BarButton {
            id: previousVideoButton

            width: orbGlobalObject.playListIndex === -1 ? 0 : 50
            separator: false
            image: "qrc:/images/newui/arrow_left.png"

            onPressed: orbGlobalObject.playListSetPrevious()
        }

        Orb_BarButton {
            id: nextVideoButton

            width: orbGlobalObject.playListIndex === -1 ? 0 : 50
            image: "qrc:/images/newui/arrow_right.png"

            onPressed: orbGlobalObject.playListSetNext()
        }
    }

    states: [
        State {
            name: "On"
            PropertyChanges { target: orb_bar; anchors.bottomMargin: 0; focus: true }
        },
        State {
            name: "Off"
            PropertyChanges {
                target: orb_bar
                anchors.bottomMargin: orbView.demoMode ? 0 : -orb_bar.height
            }
            StateChangeScript { script: hideAllElements() }
        }
    ]
}
