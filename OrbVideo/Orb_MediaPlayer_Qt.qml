import QtQuick 2.0
import QtMultimedia 5.13

// The backend of the platform's own media service.
VideoOutput {
    id: videoOutput

    property Item orb_mediaPlayer: parent

    function pause() { player.pause() }
    function play() { player.play() }
    function seek(offset) { player.seek(offset) }
    function stop() { player.stop() }

    function restart() {
        if (orb_mediaPlayer.backend === "avf" || orb_mediaPlayer.backend === "qt7")
            stop()
        else
            seek(0)
        play()
    }

    // A media service announces its end in the middle of its own work and takes no new orders then.
    function reportEnd() {
        if (player.status === MediaPlayer.EndOfMedia)
            orb_mediaPlayer.playerStatus = MediaPlayer.EndOfMedia
    }

    // A video that starts again shows no gap.
    flushMode: VideoOutput.LastFrame
    fillMode: orb_mediaPlayer.nativeSize ? VideoOutput.PreserveAspectFit : VideoOutput.Stretch

    source: MediaPlayer {
        id: player

        autoPlay: true
        notifyInterval: 100
        volume: orb_mediaPlayer.volume
        source: orb_mediaPlayer.mediaSource

        onDurationChanged: orb_mediaPlayer.duration = duration
        onErrorStringChanged: orb_mediaPlayer.errorString = errorString
        onPositionChanged: orb_mediaPlayer.position = position
        onPlaybackStateChanged: orb_mediaPlayer.playbackState = playbackState
        onStatusChanged: {
            if (status === MediaPlayer.EndOfMedia)
                Qt.callLater(reportEnd)
            else
                orb_mediaPlayer.playerStatus = status
        }
        onSourceChanged: orb_mediaPlayer.metaData = metaData
    }

    ShaderEffectSource {
        x: -1
        width: 1
        height: 1
        sourceItem: orb_mediaPlayer
        hideSource: false
        opacity: 1
        wrapMode: ShaderEffectSource.ClampToEdge

        Component.onCompleted: orb_mediaPlayer.shaderEffectSource = this
    }
}
