#include "BinaryJson.h"

#include <QJsonDocument>
#include <QJsonValue>
#include <QtEndian>

namespace BinaryJson {

namespace {

constexpr quint64 kWord = 4;
constexpr quint64 kHeaderSize = 2 * kWord;
constexpr quint64 kObjectSize = 3 * kWord;

/// The data of an object, whose places are all below `end`. What is asked for its size is 0 bytes
/// large if it does not lie inside.
struct Data
{
    const char *begin;
    quint64 end;

    quint32 word(quint64 place) const { return qFromLittleEndian<quint32>(begin + place); }

    quint64 sizeOf(quint64 place, quint64 size) const
    {
        return place % kWord == 0 && place + size <= end ? size : 0;
    }

    /// Of a text with the count of its letters before them.
    quint64 sizeOfText(quint64 place, bool isLatin) const
    {
        const quint64 countSize = isLatin ? sizeof(quint16) : sizeof(quint32);
        if (sizeOf(place, countSize) == 0)
            return 0;
        const quint64 letters = isLatin ? qFromLittleEndian<quint16>(begin + place)
                                        : word(place) * sizeof(QChar);
        return sizeOf(place, countSize + letters);
    }

    /// Of a member with its name and value.
    quint64 sizeOfMember(quint64 place) const
    {
        if (sizeOf(place, kWord) == 0)
            return 0;
        const quint32 member = word(place);
        const bool isInWord = ((member >> 3U) & 1U) != 0;
        const bool isLatinName = ((member >> 4U) & 1U) != 0;
        const quint64 value = member >> 5U;
        const quint64 nameSize = sizeOfText(place + kWord, isLatinName);
        const quint64 bareSize = nameSize == 0 ? 0 : kWord + nameSize;
        quint64 valueSize = 0;
        switch (member & 7U) {
        case QJsonValue::Null:
        case QJsonValue::Bool:
            return bareSize;
        case QJsonValue::Double:
            if (isInWord)
                return bareSize;
            valueSize = sizeOf(value, sizeof(double));
            break;
        case QJsonValue::String:
            valueSize = sizeOfText(value, isInWord);
            break;
        default: // holds members of its own
            break;
        }
        return bareSize == 0 || valueSize == 0 ? 0 : bareSize + valueSize;
    }
};

} // namespace

bool isFlatObject(const QByteArray &bytes)
{
    const auto available = static_cast<quint64>(bytes.size());
    if (available < kHeaderSize + kObjectSize)
        return false;
    const Data header{bytes.constData(), kHeaderSize};
    if (header.word(0) != QJsonDocument::BinaryFormatTag || header.word(kWord) != 1)
        return false;

    const Data object{bytes.constData() + kHeaderSize, available - kHeaderSize};
    const quint64 size = object.word(0);
    const bool isObject = (object.word(kWord) & 1U) != 0;
    const quint64 count = object.word(kWord) >> 1U;
    const quint64 table = object.word(2 * kWord);
    if (!isObject || size > object.end || table < kObjectSize || table % kWord != 0
        || table + count * kWord > size)
        return false;

    const Data data{object.begin, table};
    quint64 told = 0; // by the members, each of which has bytes of its own
    for (quint64 i = 0; i < count; ++i) {
        const quint64 memberSize = data.sizeOfMember(object.word(table + i * kWord));
        told += memberSize;
        if (memberSize == 0 || told > table - kObjectSize)
            return false;
    }
    return true;
}

} // namespace BinaryJson
