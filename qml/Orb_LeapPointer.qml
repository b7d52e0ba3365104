import QtQuick 2.0

// What hands bring into the picture.
Item {
    id: orb_leapPointer

    // Lets the view bounce to its rest; with a field of view of -1 only the pitch.
    function pitchBounce(pitch_end, fov_end, roll_end) {
        onlyPitchLittlePlanetAnim.to = pitch_end
        pitchAnimation.to = pitch_end
        fovAnimation.to = fov_end
        rollAnimation.to = roll_end
        if (fov_end === -1)
            onlyPitchLittlePlanetAnim.restart()
        else
            pitchFovLittlePlanetAnim.restart()
    }

    anchors.fill: parent

    Component.onCompleted: {
        orbLeap.pitchBounce.connect(pitchBounce)
        onlyPitchLittlePlanetAnim.stopped.connect(orbLeap.animationFinished)
        pitchFovLittlePlanetAnim.stopped.connect(orbLeap.animationFinished)
    }

    Orb_BounceAnimation {
        id: onlyPitchLittlePlanetAnim

        property: "pitch"
    }

    ParallelAnimation {
        id: pitchFovLittlePlanetAnim

        Orb_BounceAnimation {
            id: pitchAnimation

            property: "pitch"
        }
        Orb_BounceAnimation {
            id: fovAnimation

            property: "fov"
        }
        Orb_BounceAnimation {
            id: rollAnimation

            property: "roll"
        }
    }
}
