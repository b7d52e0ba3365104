#include "Wall.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

#include <algorithm>
#include <cstdlib>

namespace {
constexpr QRect kSeen(0, 60, 640, 156); // of a window
} // namespace

Player &Wall::add(const QVariantMap &communication)
{
    m_players.push_back(std::make_unique<Player>());
    Player &player = *m_players.back();
    for (auto value = communication.begin(); value != communication.end(); ++value)
        player.setSetting(QStringLiteral("application/communication/") + value.key(),
                          value.value());
    return player;
}

QRect Wall::place(int number) const
{
    return {QPoint(number % 2 * kWindow.width(), number / 2 * kWindow.height()), kWindow};
}

bool Wall::start(int number, const QStringList &arguments)
{
    Player &copy = player(number);
    copy.start(QStringList(QStringLiteral("--demo")) + arguments); // without the panel of the start
    const QRect to = place(number);
    const auto isShown = [](const QJsonObject &state) {
        return state.value(QLatin1String("frames")).toInt() > 0;
    };
    if (!copy.waitForState(isShown))
        return false;
    copy.order(QStringLiteral("place %1 %2 %3 %4")
                   .arg(to.x())
                   .arg(to.y())
                   .arg(to.width())
                   .arg(to.height())
                   .toUtf8());
    return true;
}

std::vector<QImage> Wall::pictures() const
{
    const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(
        QImage::Format_RGB32);
    std::vector<QImage> pictures;
    pictures.reserve(m_players.size());
    for (int number = 0; number < count(); ++number)
        pictures.push_back(screen.copy(kSeen.translated(place(number).topLeft())));
    return pictures;
}

bool Wall::writePanorama(const QString &path)
{
    QImage picture(1024, 512, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, qRgb(x / 4, y / 2, 255 * ((x / 64 + y / 64) % 2)));
    }
    return picture.save(path);
}

bool Wall::areAlike(const QImage &left, const QImage &right)
{
    return left.size() == right.size()
        && std::equal(left.constBits(), left.constBits() + left.sizeInBytes(), right.constBits(),
                      [](uchar a, uchar b) { return std::abs(a - b) <= 2; });
}

QString Wall::end()
{
    QStringList faults;
    for (auto player = m_players.rbegin(); player != m_players.rend(); ++player) {
        (*player)->exit(0);
        const QString ending = (*player)->ending();
        if (ending != QLatin1String("0"))
            faults += ending;
    }
    m_players.clear();
    return faults.join(QLatin1Char('\n'));
}
