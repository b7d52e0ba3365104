#include "OrbShaderCodeBuilder.h"
#include "WarningsFail.h"

#include <QCryptographicHash>
#include <QFile>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr int kRowsOfTheTable = 169;

enum Column {
    OculusMode,
    Projection,
    Effect,
    StereoMode,
    ProjectionSource,
    RotationSource,
    InvertedColors,
    Bytes,
    Sha256,
    ColumnCount
};

/// The lines of the published table that are not comments, each split into its columns.
QList<QList<QByteArray>> tableRows()
{
    QList<QList<QByteArray>> rows;
    QFile file(QStringLiteral(TEST_DATA_DIR "/shader-text.tsv"));
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (!line.isEmpty() && !line.startsWith('#'))
            rows.append(line.split('\t'));
    }
    return rows;
}

} // namespace

class tst_ShaderText : public WarningsFail
{
    Q_OBJECT

private slots:
    void theTextIsTheTablesToTheByte_data();
    void theTextIsTheTablesToTheByte();
    void aPropertyTellsOfChangesOnlyAndTouchesNoOther();
};

void tst_ShaderText::theTextIsTheTablesToTheByte_data()
{
    QTest::addColumn<QList<QByteArray>>("row");
    const auto rows = tableRows();
    QVERIFY2(rows.size() >= kRowsOfTheTable, qPrintable(QString::number(rows.size())));
    for (const QList<QByteArray> &row : rows)
        QTest::newRow(row.mid(0, Bytes).join(' ').constData()) << row;
}

void tst_ShaderText::theTextIsTheTablesToTheByte()
{
    QFETCH(QList<QByteArray>, row);
    QCOMPARE(row.size(), int(ColumnCount));
    OrbShaderCodeBuilder builder;
    builder.setProjection(row.at(Projection).toInt());
    builder.setEffect(row.at(Effect).toInt());
    builder.setStereoMode(row.at(StereoMode).toInt());
    builder.setProjectionSource(row.at(ProjectionSource).toInt());
    builder.setRotationSource(row.at(RotationSource).toInt());
    builder.setInvertedColors(row.at(InvertedColors).toInt() == 1);

    const QByteArray text = builder.build(row.at(OculusMode).toInt() == 1).toUtf8();
    QCOMPARE(text.size(), row.at(Bytes).toInt());
    QCOMPARE(QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex(), row.at(Sha256));
}

void tst_ShaderText::aPropertyTellsOfChangesOnlyAndTouchesNoOther()
{
    OrbShaderCodeBuilder builder;
    const QMetaObject *type = builder.metaObject();
    const auto values = [&] {
        QVariantMap all;
        for (int i = type->propertyOffset(); i < type->propertyCount(); ++i)
            all.insert(QLatin1String(type->property(i).name()), type->property(i).read(&builder));
        return all;
    };
    QCOMPARE(values().size(), 7);
    for (int i = type->propertyOffset(); i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        QSignalSpy told(&builder, property.notifySignal());
        QVariantMap expected = values();
        QVariant &value = expected[QLatin1String(property.name())];
        value = value.type() == QVariant::Bool ? QVariant(!value.toBool())
                                               : QVariant(value.toInt() + 2);
        const QVariant changed = value;
        QVERIFY(property.write(&builder, changed));
        QVERIFY(property.write(&builder, changed));
        QCOMPARE(told.count(), 1);
        QCOMPARE(values(), expected);
    }
}

QTEST_GUILESS_MAIN(tst_ShaderText)
#include "tst_ShaderText.moc"
