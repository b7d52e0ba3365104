#include "Driver.h"

#include <QGenericPlugin>

/// Makes the driver for a program that is started with QT_QPA_GENERIC_PLUGINS=orbixdriver.
class DriverPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "driver.json")

public:
    QObject *create(const QString &, const QString &) override { return new Driver; }
};

#include "Plugin.moc"
