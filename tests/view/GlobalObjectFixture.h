#pragma once

#include "OrbGlobalObject.h"
#include "OrbSettingsManager.h"
#include "OrbVideoPlugin.h"

#include <QList>
#include <QSettings>
#include <QUrl>
#include <QVariantMap>

#include <initializer_list>

inline QList<QUrl> urls(std::initializer_list<const char *> names)
{
    QList<QUrl> result;
    for (const char *name : names)
        result += QUrl(QString::fromUtf8(name));
    return result;
}

/// An OrbGlobalObject on a settings store of its own, which holds `stored` and nothing else.
class GlobalObjectFixture
{
public:
    explicit GlobalObjectFixture(const QVariantMap &stored = {})
        : settings(store(stored), kApplication)
    {}

    /// All that the store holds now.
    static QVariantMap storedValues()
    {
        const QSettings native(QSettings::UserScope, kOrganisation, kApplication);
        QVariantMap values;
        const QStringList keys = native.allKeys();
        for (const QString &key : keys)
            values.insert(key, native.value(key));
        return values;
    }

    OrbSettingsManager settings;
    OrbVideoPlugin videoPlugin{&settings};
    OrbGlobalObject object{&settings, &videoPlugin};

private:
    static inline const QString kOrganisation = QStringLiteral("OrbixTests");
    static inline const QString kApplication = QStringLiteral("view");

    static QString store(const QVariantMap &values)
    {
        QSettings native(QSettings::UserScope, kOrganisation, kApplication);
        native.setFallbacksEnabled(false);
        native.clear();
        for (auto value = values.begin(); value != values.end(); ++value)
            native.setValue(value.key(), value.value());
        return kOrganisation;
    }
};
