import QtQuick 2.0
import QtMultimedia 5.0
import VLCQt 1.0

// The backend of libVLC.
VlcVideoPlayer {
    id: vlcPlayer

    property Item orb_mediaPlayer: parent

    function show(playbackState, playerStatus) {
        orb_mediaPlayer.playbackState = playbackState
        orb_mediaPlayer.playerStatus = playerStatus
    }

    nativeSize: orb_mediaPlayer.nativeSize
    source: orb_mediaPlayer.mediaSource
    volume: orb_mediaPlayer.volume
    yaw: orb_mediaPlayer.yaw
    pitch: orb_mediaPlayer.pitch
    roll: orb_mediaPlayer.roll

    onTextureTransferChanged: orb_mediaPlayer.textureTransfer = textureTransfer
    onFpsChanged: orb_mediaPlayer.fps = fps
    onTextureIdChanged: {
        orb_mediaPlayer.textureId = textureId
        orb_mediaPlayer.frameArrived()
    }
    onDurationChanged: orb_mediaPlayer.duration = duration
    onPositionChanged: orb_mediaPlayer.position = position
    // libVLC often fails without a word.
    onErrorStringChanged: orb_mediaPlayer.errorString =
        errorString !== "" ? errorString
                           : qsTr("Cannot play the media") + " '" + orb_mediaPlayer.mediaSource + "'"
    onVlcStateChanged: {
        switch (vlcState) {
        case VlcVideoPlayer.Idle:
            return show(MediaPlayer.StoppedState, MediaPlayer.NoMedia)
        case VlcVideoPlayer.Opening:
            return show(MediaPlayer.StoppedState, MediaPlayer.Loading)
        case VlcVideoPlayer.Buffering:
            return show(MediaPlayer.StoppedState, MediaPlayer.Buffering)
        case VlcVideoPlayer.Playing:
            return show(MediaPlayer.PlayingState, MediaPlayer.Buffered)
        case VlcVideoPlayer.Paused:
            return show(MediaPlayer.PausedState, MediaPlayer.Buffered)
        case VlcVideoPlayer.Stopped:
            return show(MediaPlayer.StoppedState, MediaPlayer.NoMedia)
        case VlcVideoPlayer.Ended:
            return show(MediaPlayer.StoppedState, MediaPlayer.EndOfMedia)
        case VlcVideoPlayer.Error:
            return show(MediaPlayer.StoppedState, MediaPlayer.InvalidMedia)
        }
    }
}
