// Any text as a table: cells without separators, comments and line ends, no empty row, finite
// numbers.
#include "TableRows.h"

#include <QTextStream>

#include <cmath>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QTextStream text(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    const auto rows = TableRows::parse(text);
    for (const QStringList &cells : rows) {
        if (cells.isEmpty() || (cells.size() == 1 && cells.first().isEmpty()))
            std::abort();
        for (const QString &cell : cells) {
            for (const char sign : {';', '#', '\n'}) {
                if (cell.contains(QLatin1Char(sign)))
                    std::abort();
            }
            if (!std::isfinite(TableRows::number(cell).value_or(0)))
                std::abort();
        }
    }
    return 0;
}
