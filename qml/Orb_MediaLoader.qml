import QtQuick 2.0
import QtQuick.Dialogs 1.1
import QtQuick.Window 2.2
import OrbVideo 1.0
import QtMultimedia 5.0
import OrbixSight 1.0
import "lib.js" as Lib

// Owns the video player and the image player, decides which of them shows a source, and hands the
// texture of the one in use to the panorama.
Item {
    id: orb_mediaLoader

    property variant mediaPlayer: videoPlayer

    // Opens a source. `checkFile` refuses what is neither image nor video by name; `error` is a message
    // that is shown in place of opening anything.
    function processFileSource(fileSource, checkFile, clearPlaylist, error) {
        var url = ""
        mediaPlayer.mediaSource = ""
        orbView.updateTitle(Lib.withoutPasswords(fileSource))
        if (clearPlaylist)
            orbGlobalObject.clearPlayList()

        if (error === "") {
            url = checkFile ? orbGlobalObject.checkFilePath(fileSource) : fileSource
            var isValid = checkFile ? orbGlobalObject.isValidFilePath(url) : true
            if (!isValid)
                error = qsTr("Cannot open the file") + " '" + url + "'."
            else if (orbGlobalObject.isImageFile(url))
                showImagePlayer()
            else if (orbGlobalObject.isVideoFile(url) || !checkFile)
                showVideoPlayer()
            else
                error = qsTr("The file format is not supported.")
            orbView.updateTitle(Lib.withoutPasswords(url))
        }

        orbGlobalObject.readMetaData(url)
        if (error === "")
            mediaPlayer.mediaSource = url
        else
            root.onDisplayMessage(error, StandardIcon.Critical)
    }

    function showImagePlayer() {
        // A backend may ignore an empty source and play on.
        videoPlayer.pause()
        videoPlayer.mediaSource = ""
        mediaPlayer = imagePlayer
        imagePlayer.visible = true
        videoPlayer.visible = false
    }

    function showVideoPlayer() {
        imagePlayer.mediaSource = ""
        mediaPlayer = videoPlayer
        videoPlayer.visible = true
        imagePlayer.visible = false
    }

    // Follows the playback state of another copy of the program.
    function syncPlaybackState(masterState) {
        switch (masterState) {
        case MediaPlayer.StoppedState:
            // A stop would leave a black screen while large video is being read.
            break
        case MediaPlayer.PlayingState:
            mediaPlayer.play()
            orb_bar.showPlayerImage("qrc:/images/newui/play_icon.png")
            break
        case MediaPlayer.PausedState:
            mediaPlayer.pause()
            orb_bar.showPlayerImage("qrc:/images/newui/pause_icon.png")
            break
        default:
            console.log("ERROR in Orb_MediaLoader::syncPlaybackState() : masterState '" + masterState
                        + "' is not supported.")
        }
    }

    // Fits the window to a source that is shown without projection.
    function checkSourceSize() {
        var w = mediaPlayer.width
        var h = mediaPlayer.height
        if (w <= 0 || h <= 0 || orbOculus.activated
                || orbShaderCodeBuilder.projection !== OrbShaderCodeBuilder.NO_PROJECTION)
            return
        var ratio = w / h
        if (w > Screen.width || h > Screen.height) {
            w = Screen.width
            h = w / ratio
            if (h > Screen.height) {
                h = Screen.height
                w = h * ratio
            }
        }
        orbView.width = w
        orbView.height = h
    }

    onMediaPlayerChanged: {
        orbTextureProvider.setShaderEffectSource(mediaPlayer.shaderEffectSource)
        if (typeof mediaPlayer.textureId !== "undefined")
            orbTextureProvider.textureId = mediaPlayer.textureId
        orbShaderCodeBuilder.invertedColors = !orbTextureProvider.isSharedMemory()
                && mediaPlayer === videoPlayer
                && (orbVideoPlugin.currentPlugin === "vlc"
                    || orbVideoPlugin.currentPlugin === "vlc_hw")
    }

    Component.onCompleted: {
        orbGlobalObject.setMediaLoader(orb_mediaLoader)
        orbShaderCodeBuilder.projectionChanged.connect(checkSourceSize)
    }

    Orb_MediaPlayer {
        id: videoPlayer

        yaw: orbGlobalObject.yaw
        pitch: orbGlobalObject.pitch
        roll: orbGlobalObject.roll

        // The last frames of a film may come when a picture is shown already.
        onTextureIdChanged: {
            if (mediaPlayer === videoPlayer)
                orbTextureProvider.textureId = textureId
        }
        onFrameArrived: {
            if (mediaPlayer === videoPlayer)
                orbTextureProvider.frameArrived()
        }
        onShaderEffectSourceChanged:
            orbTextureProvider.setShaderEffectSource(videoPlayer.shaderEffectSource)
        onLogMessageChanged: orbGlobalObject.videoLogMessage = Lib.withoutPasswords(logMessage)
        onHeightChanged: checkSourceSize()
        onWidthChanged: checkSourceSize()
        onMediaSourceChanged: checkSourceSize()
        onPlayerStatusChanged: {
            if (playerStatus !== MediaPlayer.EndOfMedia)
                return
            if (orbGlobalObject.playListIsEmpty())
                restart()
            else
                orbGlobalObject.playListSetNext()
        }
    }

    Image {
        id: imagePlayer

        property int playbackState: MediaPlayer.PlayingState
        property int playerStatus: MediaPlayer.NoMedia
        property int position: 0
        property int duration: 0
        property real volume: 0
        property string errorString: ""
        property string logMessage: qsTr("Media : ") + mediaSource
        property url mediaSource: ""
        property Item shaderEffectSource: shaderEffectSource
        property int fps: 0
        property string textureTransfer: ""

        function play() {}
        function pause() {}
        function stop() {}
        function seek(offset) {}
        function seekJump(delta) {}

        asynchronous: true
        cache: false
        smooth: false
        visible: false
        // What is opened before the first frame is held to what most graphics processors take.
        sourceSize: orbView.maxTextureSize.width > 0 ? orbView.maxTextureSize
                                                     : Qt.size(8192, 8192)
        source: imagePlayer.mediaSource

        onStatusChanged: {
            switch (status) {
            case Image.Error:
                errorString = qsTr("An error occurred while loading the image")
                playerStatus = MediaPlayer.InvalidMedia
                break
            case Image.Null:
                errorString = ""
                playerStatus = MediaPlayer.NoMedia
                break
            case Image.Loading:
                errorString = ""
                playerStatus = MediaPlayer.Loading
                break
            default:
                errorString = ""
                playerStatus = MediaPlayer.Buffered
            }
        }
        onPlayerStatusChanged: {
            if (playerStatus !== MediaPlayer.Buffered)
                orbTextureProvider.textureId = 0
            else if (!orbGlobalObject.playListIsEmpty())
                orbGlobalObject.startTimerNextImage()
        }
        onLogMessageChanged: orbGlobalObject.videoLogMessage = Lib.withoutPasswords(logMessage)
    }

    ShaderEffectSource {
        id: shaderEffectSource

        x: -1
        width: 1
        height: 1
        sourceItem: imagePlayer
        hideSource: true
        opacity: 1
        wrapMode: ShaderEffectSource.ClampToEdge
    }
}
