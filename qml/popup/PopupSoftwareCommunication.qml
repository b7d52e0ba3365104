import QtQuick 2.0
import QtQuick.Controls 1.1
import OrbixSight 1.0
import "settingValues.js" as SettingValues

// How copies of the program keep in step over the network, from the next start on.
Orb_PopupPanel {
    id: popupSoftwareCommunication

    function stored(name, initial) {
        return orbGlobalObject.getSetting("application/communication/" + name, initial)
    }

    function store(name, value) {
        orbGlobalObject.setSetting("application/communication/" + name, value)
    }

    function save() {
        var fields = []
        for (var i = 0; i < addressFields.count; ++i)
            fields.push(addressFields.itemAt(i).text)
        store("state", mode.choice)
        store("ipMode", receiver.choice)
        store("ipCustom", SettingValues.address(fields))
        store("port", port.value | 0) // a spin box holds a real number
        store("rate", rate.value | 0)
        store("urlMode", urlMode.choice)
        store("orientation", orientation.choice)
        store("format", format.choice)
        close()
        root.onDisplayMessage(qsTr("You must restart to apply modifications on UDP communication."))
    }

    title: qsTr("UDP Communication")
    boxHeight: Math.min(480, height)

    ScrollView {
        id: scrollView

        y: 30
        width: parent.width
        height: parent.height - 70

        Column {
            width: scrollView.viewport.width
            spacing: 10

            Orb_RadioGroup {
                id: mode

                title: qsTr("Communication Mode")
                choices: [
                    { text: qsTr("Off"), value: "off" },
                    { text: qsTr("Master"), value: "master" },
                    { text: qsTr("Slave"), value: "slave" }
                ]
                choice: named(stored("state", "off"), "off")
            }

            GroupBox {
                width: parent.width
                title: qsTr("Configuration")
                enabled: mode.choice !== "off"

                Column {
                    width: parent.width
                    spacing: 10

                    Orb_RadioGroup {
                        id: receiver

                        title: qsTr("IP Address")
                        enabled: mode.choice === "master"
                        choices: [
                            { text: qsTr("Broadcast"), value: "broadcast" },
                            { text: qsTr("LocalHost"), value: "localhost" },
                            { text: qsTr("Custom"), value: "custom" }
                        ]
                        choice: named(stored("ipMode", "localhost"), "custom")

                        Repeater {
                            id: addressFields

                            model: SettingValues.addressFields(stored("ipCustom", "192.168.1.1"))

                            TextField {
                                width: 40
                                text: modelData
                                enabled: receiver.choice === "custom"
                                inputMethodHints: Qt.ImhDigitsOnly
                                validator: RegExpValidator {
                                    regExp: /([0-9]|[1-9][0-9]|1[0-9]{2}|2[0-4][0-9]|25[0-5])?/
                                }

                                Accessible.name: qsTr("Address part %1").arg(index + 1)
                            }
                        }
                    }

                    Row {
                        spacing: 10

                        Label {
                            anchors.verticalCenter: port.verticalCenter
                            text: qsTr("Port :")
                        }

                        SpinBox {
                            id: port

                            maximumValue: 999999
                            value: SettingValues.wholeNumber(stored("port", 7755), maximumValue,
                                                             7755)

                            Accessible.name: qsTr("Port")
                        }

                        Label {
                            anchors.verticalCenter: rate.verticalCenter
                            text: qsTr("Refresh rate (ms) :")
                            enabled: rate.enabled
                        }

                        SpinBox {
                            id: rate

                            maximumValue: 1000
                            value: SettingValues.wholeNumber(stored("rate", 20), maximumValue, 20)
                            enabled: mode.choice === "master"

                            Accessible.name: qsTr("Refresh rate in milliseconds")
                        }
                    }

                    Orb_RadioGroup {
                        id: urlMode

                        title: qsTr("URL decoding")
                        enabled: mode.choice === "slave"
                        choices: [
                            { text: qsTr("Absolute"), value: OrbUdpSocket.Absolute },
                            { text: qsTr("Movies"), value: OrbUdpSocket.Movies },
                            { text: qsTr("Desktop"), value: OrbUdpSocket.Desktop },
                            { text: qsTr("Off"), value: OrbUdpSocket.Off }
                        ]
                        choice: named(stored("urlMode", OrbUdpSocket.Absolute),
                                      OrbUdpSocket.Absolute)
                    }

                    Orb_RadioGroup {
                        id: orientation

                        title: qsTr("Camera orientation")
                        enabled: mode.choice === "slave"
                        choices: [
                            { text: qsTr("On"), value: true },
                            { text: qsTr("Off"), value: false }
                        ]
                        choice: SettingValues.isOn(stored("orientation", true))
                    }

                    Orb_RadioGroup {
                        id: format

                        title: qsTr("Packet format")
                        choices: [
                            { text: qsTr("JSON"), value: OrbUdpSocket.JSON },
                            { text: qsTr("Qt"), value: OrbUdpSocket.QtBinary }
                        ]
                        choice: named(stored("format", OrbUdpSocket.JSON), OrbUdpSocket.JSON)
                    }
                }
            }
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        spacing: 10

        Button {
            text: qsTr("Save")

            onClicked: save()
        }

        Button {
            text: qsTr("Close")
            isDefault: true

            onClicked: popupSoftwareCommunication.close()
        }
    }
}
