import QtQuick 2.0
import QtMultimedia 5.0
import OrbixSight 1.0
import "theme"
import "widgets/"
import "menu/"

// The control bar: it slides out of sight while one looks, and comes back when the mouse moves.
Rectangle {
    id: orb_bar

    property variant mediaPlayer: null
    readonly property bool containsMouse: barMouseArea.containsMouse || menuList.containsMouse
                                          || projectionsList.containsMouse
                                          || effectsList.containsMouse
                                          || videoPluginsList.containsMouse
                                          || widiList.containsMouse || oculusList.containsMouse
    readonly property int __busyWidth: orbixButton.width + playPauseButton.width
                                       + textPosition.width + textDuration.width
                                       + soundButton.width + gyroButton.width
                                       + oculusButton.width + leapButton.width
                                       + realSenseButton.width + fullscreenButton.width
                                       + planarButton.width + littlePlanetButton.width
                                       + previousVideoButton.width + nextVideoButton.width
                                       + effectsButton.width + menuButton.width
    readonly property int __menuWidth: soundButton.width + fullscreenButton.width
                                       + planarButton.width + littlePlanetButton.width
                                       + effectsButton.width + menuButton.width
    readonly property int __menuItemHeight: Orb_Theme.barHeight
    readonly property bool __playing: mediaPlayer.playbackState === MediaPlayer.PlayingState

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
        var lists = [soundSlider, menuList, projectionsList, effectsList, videoPluginsList, widiList,
                     oculusList]
        for (var i = 0; i < lists.length; ++i)
            lists[i].state = "Hidden"
    }

    function showVideoPluginsList() {
        if (orbVideoPlugin.pluginsList().length <= 1)
            return
        changeRootState("ControlsPanel")
        hideAllElements()
        videoPluginsList.state = "Shown"
    }

    function playPause() {
        if (__playing) {
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

            shownWidth: 100
            name: qsTr("Website")
            image: "qrc:/images/logo_orbix_horizontal_small.png"

            onPressed: hideAllElements()
            onClicked: root.openAddress(orbGlobalObject.getEnterpriseWebLink())
        }

        Orb_BarButton {
            id: playPauseButton

            name: __playing ? qsTr("Pause") : qsTr("Play")
            image: __playing ? "qrc:/images/newui/pause_mini_button.png"
                             : "qrc:/images/newui/play_mini_button.png"

            onPressed: {
                hideAllElements()
                playPause()
            }
        }

        Orb_BarTime {
            id: textPosition

            name: qsTr("Position")
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
                name: qsTr("Timeline")
                buttonSource: "qrc:/images/button_16.png"
                enabled: mediaPlayer.playbackState !== MediaPlayer.StoppedState
                progression: mediaPlayer.duration > 0 && mediaPlayer.position > 0
                             ? Math.min(1, mediaPlayer.position / mediaPlayer.duration) : 0

                onNewProgressionChanged:
                    mediaPlayer.seek(Math.round(timeline.newProgression * mediaPlayer.duration))
            }

            Orb_MouseArea {
                anchors.fill: parent

                onPressed: {
                    hideAllElements()
                    mouse.accepted = false
                }
            }
        }

        Orb_BarTime {
            id: textDuration

            name: qsTr("Duration")
            time: mediaPlayer.duration

            onPressed: hideAllElements()
        }

        Orb_BarButton {
            id: soundButton

            readonly property int level: mediaPlayer.volume === 0 ? 0 : mediaPlayer.volume < 0.5 ? 1
                                         : mediaPlayer.volume < 1 ? 2 : 3

            name: qsTr("Volume")
            image: "qrc:/images/newui/sound_" + level + "_mini_button.png"

            onPressed: showElement(soundSlider)

            Orb_BarSeparator {
                anchors.left: parent.left
            }

            Orb_VolumePanel {
                id: soundSlider

                anchors.bottom: parent.top
                width: parent.width
                volume: mediaPlayer.volume

                onVolumeWanted: mediaPlayer.volume = wanted
            }
        }

        Orb_BarButton {
            id: fullscreenButton

            name: orbView.fullScreen ? qsTr("Leave full screen") : qsTr("Full screen")
            image: orbView.fullScreen ? "qrc:/images/newui/fullscreen_off_mini_button.png"
                                      : "qrc:/images/newui/fullscreen_on_mini_button.png"

            onPressed: {
                hideAllElements()
                orbView.fullScreenMode(!orbView.fullScreen)
            }
        }

        Item {
            width: devices.width
            height: Orb_Theme.barHeight

            Row {
                id: devices

                Orb_BarButton {
                    id: gyroButton

                    shown: orbSensor.available
                    separator: false
                    name: qsTr("Orientation sensor")
                    image: orbSensor.activated ? "qrc:/images/newui/gyro_on_mini_button.png"
                                               : "qrc:/images/newui/gyro_off_mini_button.png"

                    onPressed: {
                        hideAllElements()
                        gyroOnOff()
                    }
                }

                Orb_BarButton {
                    id: oculusButton

                    shown: orbOculus.available
                    separator: false
                    name: qsTr("Headset")
                    image: orbOculus.activated ? "qrc:/images/newui/oculus_on_mini_button.png"
                                               : "qrc:/images/newui/oculus_off_mini_button.png"

                    onPressed: {
                        hideAllElements()
                        oculusOnOff()
                    }
                }

                Orb_BarButton {
                    id: leapButton

                    shown: orbLeap.available
                    separator: false
                    name: qsTr("Hand tracker")
                    image: orbLeap.activated ? "qrc:/images/newui/leap_on_mini_button.png"
                                             : "qrc:/images/newui/leap_off_mini_button.png"

                    onPressed: {
                        hideAllElements()
                        leapOnOff()
                    }
                }

                Orb_BarButton {
                    id: realSenseButton

                    shown: orbRealSense.available
                    separator: false
                    name: qsTr("Depth camera")
                    image: orbRealSense.activated ? "qrc:/images/newui/intelRealSense_mini_button.png"
                                                  : "qrc:/images/newui/intelRealSense_off_mini_button.png"

                    onPressed: {
                        hideAllElements()
                        realSenseOnOff()
                    }
                }
            }

            Orb_BarSeparator {
                anchors.right: parent.right
                visible: orbSensor.available || orbOculus.available || orbLeap.available
            }
        }

        Orb_BarButton {
            id: planarButton

            separator: false
            name: qsTr("Rectilinear projection")
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

            name: qsTr("Little planet projection")
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

            shown: orbGlobalObject.playListIndex !== -1
            separator: false
            name: qsTr("Previous")
            image: "qrc:/images/newui/arrow_left.png"
            imageOffset: -3

            onPressed: orbGlobalObject.playListSetPrevious()
        }

        Orb_BarButton {
            id: nextVideoButton

            shown: orbGlobalObject.playListIndex !== -1
            name: qsTr("Next")
            image: "qrc:/images/newui/arrow_right.png"
            imageOffset: 3

            onPressed: orbGlobalObject.playListSetNext()
        }

        Orb_BarButton {
            id: effectsButton

            shownWidth: 80
            text: "Effect"

            onPressed: showElement(effectsList)
        }

        Orb_BarButton {
            id: menuButton

            shownWidth: 80
            separator: false
            text: "Menu"

            onPressed: showElement(menuList)
        }
    }

    Orb_MainMenu {
        id: menuList

        onProjectionsWanted: showElement(projectionsList)
        onHeadsetWanted: showElement(oculusList)
        onPluginsWanted: showElement(videoPluginsList)
        onDisplayWanted: showElement(widiList)
        onPopupWanted: displayPopup(qmlFile)
    }

    Orb_ChoiceList {
        id: projectionsList

        title: "View Projection"
        choices: [
            { label: "Source", value: OrbShaderCodeBuilder.NO_PROJECTION },
            { label: "Rectilinear", value: OrbShaderCodeBuilder.RECTILINEAR },
            { label: "Little Planet", value: OrbShaderCodeBuilder.LITTLE_PLANET },
            { label: "Mirror Ball", value: OrbShaderCodeBuilder.MIRROR_BALL },
            { label: "Fisheye", value: OrbShaderCodeBuilder.FISHEYE }
        ]
        current: orbShaderCodeBuilder.projection

        onChosen: orbShaderCodeBuilder.projection = value
    }

    Orb_ChoiceList {
        id: effectsList

        title: "Image Effect"
        choices: [
            { label: "None", value: OrbShaderCodeBuilder.NO_EFFECT },
            { label: "Sepia", value: OrbShaderCodeBuilder.SEPIA },
            { label: "Black & White", value: OrbShaderCodeBuilder.BLACK_AND_WHITE },
            { label: "Old TV Screen", value: OrbShaderCodeBuilder.TV },
            { label: "Invert", value: OrbShaderCodeBuilder.INVERT },
            { label: "Red Only", value: OrbShaderCodeBuilder.RED_ONLY },
            { label: "Yellow Only", value: OrbShaderCodeBuilder.YELLOW_ONLY },
            { label: "Blue Only", value: OrbShaderCodeBuilder.BLUE_ONLY }
        ]
        current: orbShaderCodeBuilder.effect

        onChosen: orbShaderCodeBuilder.effect = value
    }

    Orb_ChoiceList {
        id: oculusList

        title: "Oculus Rift"
        choices: [
            { label: "2D", value: OrbShaderCodeBuilder.STEREO_2D },
            { label: "3D Over/Under", value: OrbShaderCodeBuilder.STEREO_3D_OVERUNDER },
            { label: "3D side by side", value: OrbShaderCodeBuilder.STEREO_3D_SIDEBYSIDE }
        ]
        current: orbShaderCodeBuilder.stereoMode

        onChosen: orbShaderCodeBuilder.stereoMode = value
    }

    Orb_PluginList {
        id: videoPluginsList
    }

    Orb_DisplayList {
        id: widiList
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
