#include "SamplePanorama.h"

#include <QBuffer>
#include <QFile>
#include <QFontDatabase>
#include <QGuiApplication>

#include <cstdio>

namespace {

constexpr QSize kSize(4096, 2048);
constexpr int kJpegQuality = 92;
constexpr int kWriteFailed = 1;
constexpr int kUsageError = 2;

void complain(const QString &sentence)
{
    std::fprintf(stderr, "orbix-sample-panorama: %s\n", qUtf8Printable(sentence));
}

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);

    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2) {
        complain(QStringLiteral("Give one argument, the JPEG file to write."));
        return kUsageError;
    }
    if (!QFontDatabase().hasFamily(panoramaFontFamily())) {
        complain(QStringLiteral("The font \"%1\" is not installed (Debian: fonts-dejavu-core).")
                     .arg(panoramaFontFamily()));
        return kWriteFailed;
    }

    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    if (!drawSamplePanorama(kSize).save(&buffer, "jpg", kJpegQuality)) {
        complain(QStringLiteral("Cannot encode the panorama as JPEG."));
        return kWriteFailed;
    }
    QFile file(arguments.at(1));
    if (!file.open(QIODevice::WriteOnly) || file.write(jpeg) != jpeg.size() || !file.flush()) {
        complain(
            QStringLiteral("Cannot write \"%1\": %2.").arg(file.fileName(), file.errorString()));
        return kWriteFailed;
    }
    return 0;
}
