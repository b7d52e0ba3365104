#pragma once

#include "Player.h"

#include <QImage>
#include <QRect>

#include <memory>
#include <vector>

/// Copies of the program side by side on the screen of the test, each in a window of 640x360.
class Wall
{
public:
    static constexpr QSize kWindow{640, 360};

    /// Adds a copy with settings below "application/communication/" of its own. It comes to its
    /// place with start().
    Player &add(const QVariantMap &communication);

    /// Starts a copy, by its number, and has its window put at its place. False if it shows none.
    bool start(int number, const QStringList &arguments);

    Player &player(int number) { return *m_players[size_t(number)]; }
    int count() const { return int(m_players.size()); }

    /// What the screen shows of each copy now, without the help button above and the bar below,
    /// which come and go.
    std::vector<QImage> pictures() const;

    /// A panorama with another colour everywhere. False if it cannot be written.
    static bool writePanorama(const QString &path);

    /// Whether two pictures are the same but for 2 of 255 in a pixel.
    static bool areAlike(const QImage &left, const QImage &right);

    /// Ends all copies, the last one first, and tells how those ended that did not end well.
    QString end();

private:
    QRect place(int number) const;

    std::vector<std::unique_ptr<Player>> m_players;
};
