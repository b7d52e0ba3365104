#include "OrbLeapFingerOGL.h"

OrbLeapFingerOGL::OrbLeapFingerOGL(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setRenderTarget(QQuickPaintedItem::FramebufferObject);
    setMipmap(false);
}

void OrbLeapFingerOGL::paint(QPainter *) {}
