// Putting the shader's text together, against the least that a new text of that length can cost: a
// block of memory and a copy of the bytes.

#include "OrbShaderCodeBuilder.h"
#include "RatioTable.h"

#include <benchmark/benchmark.h>

#include <string>

using Builder = OrbShaderCodeBuilder;

namespace {

struct Case
{
    const char *name;
    ShaderSettings settings;
    bool headset;
};

ShaderSettings settings(int projection, int effect, int stereoMode, int projectionSource)
{
    ShaderSettings made;
    made.projection = projection;
    made.effect = effect;
    made.stereoMode = stereoMode;
    made.projectionSource = projectionSource;
    return made;
}

void buildText(benchmark::State &state, const Case &shader, const std::string &peer)
{
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(fragmentShaderText(shader.settings, shader.headset).constData());
    state.SetLabel(peer);
}

void copyText(benchmark::State &state, const Case &shader)
{
    const QString text = fragmentShaderText(shader.settings, shader.headset);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(QString(text.constData(), text.size()).constData());
}

} // namespace

int main(int argc, char **argv)
{
    const Case cases[] = {
        {"first-start", {}, false},
        {"flat", settings(Builder::NO_PROJECTION, Builder::NO_EFFECT, Builder::STEREO_2D, 0),
         false},
        {"fisheye-tv-stereo",
         settings(Builder::FISHEYE, Builder::TV, Builder::STEREO_3D_SIDEBYSIDE, 4), false},
        {"headset", settings(Builder::RECTILINEAR, Builder::SEPIA, Builder::STEREO_3D_OVERUNDER, 1),
         true},
    };
    for (const Case &shader : cases) {
        const std::string copy = std::string("copy/") + shader.name;
        const std::string build = std::string("build/") + shader.name;
        benchmark::RegisterBenchmark(build.c_str(), [shader, copy](benchmark::State &state) {
            buildText(state, shader, copy);
        });
        benchmark::RegisterBenchmark(copy.c_str(), [shader](benchmark::State &state) {
            copyText(state, shader);
        });
    }
    return runBenchmarks(argc, argv);
}
