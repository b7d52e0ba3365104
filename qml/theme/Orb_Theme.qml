pragma Singleton
import QtQuick 2.0

// Colours, sizes and durations that several files of the scene share.
QtObject {
    readonly property color accent: Qt.rgba(1, 0.25, 0.07, 1)
    readonly property color veil: Qt.rgba(0, 0, 0, 0.7)
    readonly property color bar: Qt.rgba(0, 0, 0, 0.8)
    readonly property color separator: Qt.rgba(1, 1, 1, 0.5)
    readonly property color text: "white"
    readonly property color listTitle: Qt.rgba(0.75, 0.75, 0.75, 1)
    readonly property color fieldBorder: "#a0a0a0"
    readonly property color iconTile: "#222222" // behind a white image on a light panel

    readonly property int barHeight: 40
    readonly property int barTextSize: 12
    readonly property int menuTextSize: 14

    readonly property int panelRadius: 10
    readonly property int panelMargin: 10

    readonly property int slideMs: 200
    readonly property int popupMs: 500
}
