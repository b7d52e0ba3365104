#pragma once

class OrbSettingsManager;

/// The process-wide choices of the video player that users make by editing the settings. Made
/// before the scene, saved after the event loop. Main thread.
struct VlcOptions
{
    bool hardwareDecoding = false; ///< mirrors the choice of the backend
    bool disableAudio = false;
    int textureTransfer = 0; ///< 0 automatic, 1 map texture, 2 pixel buffer object, 3 CPU

    /// Reads the three keys; what is not stored keeps its value.
    void load(const OrbSettingsManager &settings);

    void save(OrbSettingsManager &settings) const;
};
