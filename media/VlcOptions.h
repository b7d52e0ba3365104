#pragma once

class OrbSettingsManager;

/// The choices of the video player that users make by editing the settings. Read before the scene
/// is made, saved after the event loop. Main thread.
struct VlcOptions
{
    /// The one record that the process plays by.
    static VlcOptions &process();

    bool hardwareDecoding = false; ///< mirrors the choice of the backend
    bool disableAudio = false;
    int textureTransfer = 0; ///< 0 automatic, 1 map texture, 2 pixel buffer object, 3 CPU

    /// Reads the three keys; what is not stored keeps its value.
    void load(const OrbSettingsManager &settings);

    void save(OrbSettingsManager &settings) const;
};
