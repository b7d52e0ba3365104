import QtQuick 2.0
import OrbixSight 1.0

// The panorama's uniforms in declarative form, for scenes that draw it by a shader effect.
ShaderEffect {
    id: orb_shaderOrbixSight

    property variant uSampler
    property real step_x: 0.0015625
    property real step_y: height === 0 ? 0 : step_x * width / height
    property real uTime: 0.0
    property real uFov: orbGlobalObject.fov
    property variant uMatViewInverse: orbGlobalObject.rotationMatrix
    property real uCameraYaw: orbGlobalObject.yaw
    property real uCameraPitch: orbGlobalObject.pitch
    property real uYawMin: orbGlobalObject.yawMin
    property real uYawMax: orbGlobalObject.yawMax
    property real uPitchMin: orbGlobalObject.pitchMin
    property real uPitchMax: orbGlobalObject.pitchMax
    property real uBrightness: 0.0
    property real uContrast: 0.0
    property real uHue: 0.0
    property real uSaturation: 0.0
    property real uVibrance: 0.0
    property real uVignettingRadius: 0.0
    property real uVignettingAmount: 0.0
    property variant uColorMatrix: Qt.matrix4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)
    property size uViewportSize: Qt.size(width, height)
    property size uViewportSizeMin: Qt.size(Math.min(width, height), Math.min(width, height))
    property size uViewportSizeRatio: Qt.size(Math.max(width, height) / height,
                                              height / Math.min(width, height))
    property real uViewportWidth: width
    property point uLensCenterLeft: orbOculus.lensCenterLeft
    property point uLensCenterRight: orbOculus.lensCenterRight
    property point uScreenCenterLeft: orbOculus.screenCenterLeft
    property point uScreenCenterRight: orbOculus.screenCenterRight
    property point uScale: orbOculus.scale
    property point uScaleIn: orbOculus.scaleIn
    property variant uHmdWarpParam: orbOculus.hmdWarpParam
    property real uScaleCorrector: orbOculus.scaleCorrector
    property bool oculusMode: orbShaderCodeBuilder.oculusMode

    onOculusModeChanged: orbGlobalObject.fov = oculusMode ? orbOculus.getFov() : 90.0

    fragmentShader: "void main() {}"

    Timer {
        interval: 100
        repeat: true
        running: orbShaderCodeBuilder.effect === OrbShaderCodeBuilder.TV

        onTriggered: uTime = uTime + 0.05 >= 1.0 ? 0.0 : uTime + 0.05
    }
}
