#pragma once

#include "OrbGlobalObject.h"

#include <QObject>
#include <QUrl>
#include <QVariant>
#include <QVector>

/// Stands in for the scene's item that opens sources.
class FakeMediaLoader : public QObject
{
    Q_OBJECT

public:
    struct Call
    {
        QUrl source;
        bool checkFile;
        bool clearPlayList;
        QString error;
        float yaw;
    };

    explicit FakeMediaLoader(OrbGlobalObject *object)
        : m_object(object)
    {
        object->setMediaLoader(this);
    }

    Q_INVOKABLE void processFileSource(const QVariant &source, const QVariant &checkFile,
                                       const QVariant &clearPlayList, const QVariant &error)
    {
        calls.append({source.toUrl(), checkFile.toBool(), clearPlayList.toBool(), error.toString(),
                      m_object->yaw()});
    }

    QVector<Call> calls;

private:
    OrbGlobalObject *m_object;
};
