#pragma once

#include <QObject>

/// The live feed: frames that another program writes into shared memory.
class SharedMemoryManager : public QObject
{
    Q_OBJECT

public:
    /// OpenGL name of the texture that holds the feed's newest frame, 0 while no program feeds.
    /// Render thread.
    int textureId() const { return 0; }
};
