#pragma once

#include "VideosListModel.h"

#include <QObject>

class KernelSettingsWriter;

/// The client of the hosting service, "orbHostingManager" in the scene. Main thread.
class OrbHostingManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(HostingState hostingState READ hostingState NOTIFY hostingStateChanged)
    Q_PROPERTY(RequestType requestType READ requestType NOTIFY requestTypeChanged)

public:
    enum RequestType { None, Content, Connection, TestAccess };
    Q_ENUM(RequestType)

    enum ContentCategory { PublicVideos, MyVideos, UserVideos };
    Q_ENUM(ContentCategory)

    enum HostingState { Disconnected, Connecting, Connected };
    Q_ENUM(HostingState)

    /// `settings` is not owned.
    explicit OrbHostingManager(KernelSettingsWriter *settings, QObject *parent = nullptr);

    HostingState hostingState() const { return Disconnected; }
    RequestType requestType() const { return None; }
    VideosListModel *videosListModel() { return &m_videos; }

signals:
    /// `icon` is a value of the scene's StandardIcon.
    void displayMessage(const QString &message, int icon);
    void requestResponse(bool success, const QString &errorMessage);
    void hostingStateChanged();
    void requestTypeChanged();

private:
    VideosListModel m_videos;
};
