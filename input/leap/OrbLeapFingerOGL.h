#pragma once

#include <QQuickPaintedItem>

/// The viewer's hands over the panorama. With no hands it is transparent.
class OrbLeapFingerOGL : public QQuickPaintedItem
{
    Q_OBJECT

public:
    explicit OrbLeapFingerOGL(QQuickItem *parent = nullptr);

    void paint(QPainter *painter) override;
};
