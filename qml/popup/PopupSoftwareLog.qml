import QtQuick 2.0

// What the parts of the program have to say of themselves: for a user who looks for a cause.
Orb_PopupPanel {
    id: popupSoftwareLog

    title: qsTr("Software log")

    Orb_PanelScroll {
        SoftwareLogItem {
            title: qsTr("Oculus Rift")
            imageSource: "qrc:/images/newui/oculus_off_mini_button.png"
            log: orbOculus.logMessage
            visible: orbOculus.isSupported()
        }

        SoftwareLogItem {
            title: qsTr("Intel Real Sense")
            imageSource: "qrc:/images/newui/leap_off_mini_button.png"
            log: orbRealSense.logMessage
            visible: orbRealSense.isSupported()
        }

        SoftwareLogItem {
            title: qsTr("Sensor")
            imageSource: "qrc:/images/newui/gyro_off_mini_button.png"
            log: orbSensor.logMessage
        }

        SoftwareLogItem {
            title: qsTr("Leap Motion")
            imageSource: "qrc:/images/newui/leap_off_mini_button.png"
            log: orbLeap.logMessage
            link: orbLeap.logLink
            visible: orbLeap.isSupported()
        }

        SoftwareLogItem {
            readonly property string transfer: orb_mediaLoader.mediaPlayer.textureTransfer

            title: qsTr("GPU")
            imageSource: "qrc:/images/newui/arrow_right.png"
            log: orbView.gpuInfo
                 + (transfer === "" ? "" : qsTr("Texture transfer mode : ") + transfer)
        }

        SoftwareLogItem {
            title: qsTr("Video")
            imageSource: "qrc:/images/newui/play_mini_button.png"
            log: orbGlobalObject.videoLogMessage
        }
    }

    Orb_CloseButton {
        onClicked: popupSoftwareLog.close()
    }
}
