#include "LensIDProperties.h"

#include "TableRows.h"

namespace {

constexpr int kUnknown = -1;

/// The number in a cell, cut to an integer; 0 where there is none or none that an int holds.
int typeIn(const QString &cell)
{
    const float number = TableRows::number(cell).value_or(0);
    return qAbs(number) < 1e9F ? int(number) : 0;
}

} // namespace

LensIDProperties::LensIDProperties(const QString &fileName, QObject *parent)
    : QObject(parent)
    , m_fileName(fileName)
{}

LensIDProperties &LensIDProperties::instance()
{
    static LensIDProperties table(QStringLiteral("Data:lensid.txt"));
    return table;
}

void LensIDProperties::load()
{
    if (m_loaded)
        return;
    const QMutexLocker locker(&m_mutex);
    if (m_loaded) // by a thread that was first
        return;

    const auto rows = TableRows::read(m_fileName);
    for (const QStringList &cells : rows) {
        if (cells.size() == 3 || cells.size() == 4)
            m_lenses.append({cells[0], cells[1], cells[2], typeIn(cells.value(3))});
    }
    m_loaded = true;
}

int LensIDProperties::type(const QString &maker, const QString &lensId)
{
    load();
    const QStringRef makerText = maker.leftRef(TableRows::kLongestText);
    const Lens *found = nullptr;
    for (const Lens &lens : qAsConst(m_lenses)) {
        if (!lens.id.contains(lensId, Qt::CaseInsensitive)
            || !makerText.contains(lens.brand, Qt::CaseInsensitive))
            continue;
        if (found)
            return kUnknown;
        found = &lens;
    }
    return found ? found->type : kUnknown;
}
