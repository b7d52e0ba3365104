#pragma once

#include <QHash>
#include <QStringList>
#include <QTcpServer>

/// The update server that this build asks, on loopback: gives a file for a path, else 404.
class UpdateServer : public QTcpServer
{
    Q_OBJECT

public:
    /// False if its port is not free.
    bool start();

    /// `path` without its query, such as "/updates/oxs/stable/version".
    void give(const QString &path, const QByteArray &content) { m_files.insert(path, content); }
    QStringList asked() const { return m_asked; } ///< paths with their queries

private:
    void answer(QTcpSocket *socket);

    QHash<QString, QByteArray> m_files;
    QStringList m_asked;
};
