#pragma once

#include "OrbixSightView.h"

#include <atomic>
#include <functional>

/// The panorama item, with a count of its paints. The counts and the wait belong to the main
/// thread; the paints happen on the render thread.
class WatchedView : public OrbixSightView
{
    Q_OBJECT

public:
    using OrbixSightView::OrbixSightView;

    /// Runs on the render thread right after each paint, with the item's picture bound. Set it
    /// before the item is shown.
    std::function<void(int paint)> onPainted;

    /// The number of paints begun so far, which is also the number of the next one.
    int paintsBegun() const { return m_begun; }
    int paintsDone() const { return m_done; }

    /// Waits until a paint is done that began after this call; false after five seconds without.
    bool waitForPaint();

    void paint(QPainter *painter) noexcept override;

private:
    std::atomic<int> m_begun{0};
    std::atomic<int> m_done{0};
};
