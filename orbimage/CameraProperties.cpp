#include "CameraProperties.h"

#include "TableRows.h"

CameraProperties::CameraProperties(const QString &fileName, QObject *parent)
    : QObject(parent)
    , m_fileName(fileName)
{}

CameraProperties &CameraProperties::instance()
{
    static CameraProperties table(QStringLiteral("Data:cameras.txt"));
    return table;
}

void CameraProperties::load()
{
    if (m_loaded)
        return;
    const QMutexLocker locker(&m_mutex);
    if (m_loaded) // by a thread that was first
        return;

    const auto rows = TableRows::read(m_fileName);
    for (const QStringList &cells : rows) {
        if (cells.size() != 3)
            continue;
        if (const auto scale = TableRows::number(cells[2]))
            m_cameras.append({cells[0], cells[1], *scale});
    }
    m_loaded = true;
}

float CameraProperties::scale(const QString &maker, const QString &model)
{
    load();
    const QStringRef makerText = maker.leftRef(TableRows::kLongestText);
    const QStringRef modelText = model.leftRef(TableRows::kLongestText);
    const QString *brand = nullptr; // of the row before: a brand's rows stand together
    bool isMakers = false;
    for (const Camera &camera : qAsConst(m_cameras)) {
        if (!brand || camera.brand != *brand) {
            brand = &camera.brand;
            isMakers = makerText.contains(*brand, Qt::CaseInsensitive);
        }
        if (isMakers && modelText.contains(camera.name, Qt::CaseInsensitive))
            return camera.scale;
    }
    return -1;
}
