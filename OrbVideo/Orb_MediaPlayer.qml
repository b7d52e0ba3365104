import QtQuick 2.0
import QtMultimedia 5.0

// The video player of the scene, whatever the backend: the backend is loaded once and writes its state
// into these properties.
Loader {
    id: orb_mediaPlayer

    property string backend: orbVideoPlugin.currentPlugin
    property int duration: 0 // milliseconds
    property string errorString: ""
    property string logMessage: ""
    property variant metaData: null
    // True shows frames at their own size, and no size may be set here; false fits them to the size.
    property bool nativeSize: true
    property int playbackState: MediaPlayer.StoppedState
    property int position: 0 // milliseconds; changed through seek
    property url mediaSource: ""
    property int playerStatus: MediaPlayer.NoMedia
    property real volume: 0.5 // 0 silent, 1 full
    property real yaw: 0.0 // radians, as are pitch and roll
    property real pitch: 0.0
    property real roll: 0.0
    property int textureId: 0 // OpenGL name of the current frame
    property Item shaderEffectSource: null
    property int fps: 0
    property string textureTransfer: ""

    // A new frame stands in the texture.
    signal frameArrived()

    function pause() { item.pause() }
    function play() { item.play() }
    function seek(offset) { item.seek(offset) }
    function stop() { item.stop() }
    function restart() { item.restart() }

    // A jump beyond either end goes to the start.
    function seekJump(delta) {
        var target = position + delta
        if (target < 0 || target > duration)
            target = 0
        seek(target)
    }

    function buildLogMessage() {
        var message = errorString === "" ? "" : qsTr("Error : ") + errorString + ".\n"
        message += qsTr("Media : ") + mediaSource + "\n"
        if (metaData)
            message += describeMetaData()
        logMessage = message
    }

    function describeMetaData() {
        function plain(value) { return value }
        var rows = [
            ["audioBitRate", qsTr("Audio bitrate : "), plain],
            ["audioCodec", qsTr("Audio codec : "), plain],
            ["pixelAspectRatio", qsTr("Pixel aspect ratio : "),
             function(size) { return size.width + "/" + size.height }],
            ["resolution", qsTr("Resolution : "),
             function(size) { return size.width + "*" + size.height }],
            ["size", qsTr("Size : "), plain],
            ["videoBitRate", qsTr("Video bitrate : "), plain],
            ["videoCodec", qsTr("Video codec : "), plain],
            ["videoFrameRate", qsTr("Video framerate : "), plain]
        ]
        var text = ""
        for (var i = 0; i < rows.length; ++i) {
            var value = metaData[rows[i][0]]
            if (value !== undefined && value !== null && value !== "")
                text += rows[i][1] + rows[i][2](value) + "\n"
        }
        return text
    }

    onErrorStringChanged: buildLogMessage()
    onMediaSourceChanged: buildLogMessage()
    onStatusChanged: buildLogMessage()

    Component.onCompleted: source = backend === "vlc" || backend === "vlc_hw"
                                    ? "Orb_MediaPlayer_VLC.qml" : "Orb_MediaPlayer_Qt.qml"
}
