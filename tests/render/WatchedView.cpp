#include "WatchedView.h"

#include <QTest>

bool WatchedView::waitForPaint()
{
    const int next = paintsBegun();
    return QTest::qWaitFor([this, next] { return m_done > next; });
}

void WatchedView::paint(QPainter *painter) noexcept
{
    const int number = m_begun++;
    OrbixSightView::paint(painter);
    if (onPainted)
        onPainted(number);
    ++m_done;
}
