#include "GlEntryPoints.h"

#include <QOpenGLContext>

namespace {

template <typename Function>
void resolve(const QOpenGLContext &context, Function &function, const char *name)
{
    function = reinterpret_cast<Function>(context.getProcAddress(name));
}

} // namespace

GlEntryPoints GlEntryPoints::of(const QOpenGLContext &context)
{
    GlEntryPoints gl{};
    resolve(context, gl.genTextures, "glGenTextures");
    resolve(context, gl.deleteTextures, "glDeleteTextures");
    resolve(context, gl.bindTexture, "glBindTexture");
    resolve(context, gl.texParameteri, "glTexParameteri");
    resolve(context, gl.texParameterf, "glTexParameterf");
    resolve(context, gl.texImage2D, "glTexImage2D");
    resolve(context, gl.texSubImage2D, "glTexSubImage2D");
    resolve(context, gl.activeTexture, "glActiveTexture");
    resolve(context, gl.getIntegerv, "glGetIntegerv");
    resolve(context, gl.genBuffers, "glGenBuffers");
    resolve(context, gl.deleteBuffers, "glDeleteBuffers");
    resolve(context, gl.bindBuffer, "glBindBuffer");
    resolve(context, gl.bufferData, "glBufferData");
    resolve(context, gl.mapBuffer, "glMapBuffer");
    resolve(context, gl.unmapBuffer, "glUnmapBuffer");
    if (context.hasExtension("GL_INTEL_map_texture")) {
        resolve(context, gl.syncTexture, "glSyncTextureINTEL");
        resolve(context, gl.unmapTexture2D, "glUnmapTexture2DINTEL");
        resolve(context, gl.mapTexture2D, "glMapTexture2DINTEL");
    }
    return gl;
}
