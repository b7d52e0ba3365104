#pragma once

#include <QMutex>
#include <QObject>
#include <QVector>

#include <atomic>

/// Table of the kinds of lenses.
///
/// All functions may be called from any thread. The mutex guards the table while it is loaded; once
/// m_loaded is set the table no longer changes, and look-ups take no lock.
class LensIDProperties : public QObject
{
    Q_OBJECT

public:
    /// The table in a file of the form that TableRows describes, with the cells lens id, brand,
    /// name and type, of which the last may be missing.
    explicit LensIDProperties(const QString &fileName, QObject *parent = nullptr);

    /// The process's table, "Data:lensid.txt".
    static LensIDProperties &instance();

    /// Reads the file, at the first call only. A file that cannot be read leaves the table empty.
    void load();

    /// 0 for a standard lens, 1 for a fisheye, 2 for a tilt/shift lens. The lens is the only one
    /// whose brand is contained in `maker` and whose id contains `lensId`, regardless of case; -1
    /// if there is none or more than one. Of `maker` the first TableRows::kLongestText characters
    /// count.
    int type(const QString &maker, const QString &lensId);

private:
    struct Lens
    {
        QString id;
        QString brand;
        QString name;
        int type = 0;
    };

    std::atomic<bool> m_loaded = false;
    QMutex m_mutex;
    QVector<Lens> m_lenses;
    const QString m_fileName;
};
