#pragma once

#include <QMutex>
#include <QObject>
#include <QVector>

#include <atomic>

/// Table of the sensor sizes of cameras.
///
/// All functions may be called from any thread. The mutex guards the table while it is loaded; once
/// m_loaded is set the table no longer changes, and look-ups take no lock.
class CameraProperties : public QObject
{
    Q_OBJECT

public:
    /// The table in a file of the form that TableRows describes, with the cells brand, name and
    /// scale.
    explicit CameraProperties(const QString &fileName, QObject *parent = nullptr);

    /// The process's table, "Data:cameras.txt".
    static CameraProperties &instance();

    /// Reads the file, at the first call only. A file that cannot be read leaves the table empty.
    void load();

    /// The diagonal of a frame of 36 by 24 mm over that of the camera's sensor. The camera is the
    /// first whose brand is contained in `maker` and whose name in `model`, regardless of case; -1
    /// if none is. Of both the first TableRows::kLongestText characters count.
    float scale(const QString &maker, const QString &model);

private:
    struct Camera
    {
        QString brand;
        QString name;
        float scale = 0;
    };

    std::atomic<bool> m_loaded = false;
    QMutex m_mutex;
    QVector<Camera> m_cameras;
    const QString m_fileName;
};
