#include "OrbShaderCodeBuilder.h"
#include "WarningsFail.h"

#include <QCryptographicHash>
#include <QFile>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QtTest>

#include <memory>
#include <vector>

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

/// The properties that the builder adds to QObject's.
std::vector<QMetaProperty> builderProperties()
{
    const QMetaObject &type = OrbShaderCodeBuilder::staticMetaObject;
    std::vector<QMetaProperty> properties;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i)
        properties.push_back(type.property(i));
    return properties;
}

} // namespace

class tst_ShaderText : public WarningsFail
{
    Q_OBJECT

private slots:
    void theTableIsComplete();
    void theTextIsTheTablesToTheByte_data();
    void theTextIsTheTablesToTheByte();
    void aPropertyTellsOfChangesOnlyAndTouchesNoOther_data();
    void aPropertyTellsOfChangesOnlyAndTouchesNoOther();
    void nextStepsThroughAllAndWrapsToTheFirst_data();
    void nextStepsThroughAllAndWrapsToTheFirst();
};

void tst_ShaderText::theTableIsComplete()
{
    const QList<QList<QByteArray>> rows = tableRows();
    QVERIFY2(rows.size() >= kRowsOfTheTable, qPrintable(QString::number(rows.size())));
    for (const QList<QByteArray> &row : rows)
        QCOMPARE(row.size(), int(ColumnCount));
}

void tst_ShaderText::theTextIsTheTablesToTheByte_data()
{
    QTest::addColumn<QList<QByteArray>>("row");
    const auto rows = tableRows();
    for (const QList<QByteArray> &row : rows)
        QTest::newRow(row.mid(0, Bytes).join(' ').constData()) << row;
}

void tst_ShaderText::theTextIsTheTablesToTheByte()
{
    QFETCH(QList<QByteArray>, row);
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

void tst_ShaderText::aPropertyTellsOfChangesOnlyAndTouchesNoOther_data()
{
    QTest::addColumn<int>("changed");
    const std::vector<QMetaProperty> properties = builderProperties();
    QCOMPARE(int(properties.size()), 7);
    for (int i = 0; i < int(properties.size()); ++i)
        QTest::newRow(properties[std::size_t(i)].name()) << i;
}

void tst_ShaderText::aPropertyTellsOfChangesOnlyAndTouchesNoOther()
{
    QFETCH(int, changed);
    const std::vector<QMetaProperty> properties = builderProperties();
    OrbShaderCodeBuilder builder;
    std::vector<std::unique_ptr<QSignalSpy>> spies;
    std::vector<QVariant> expected;
    for (const QMetaProperty &property : properties) {
        spies.push_back(std::make_unique<QSignalSpy>(&builder, property.notifySignal()));
        expected.push_back(property.read(&builder));
    }

    const QMetaProperty &property = properties[std::size_t(changed)];
    QVariant &value = expected[std::size_t(changed)];
    value = value.type() == QVariant::Bool ? QVariant(!value.toBool())
                                           : QVariant(value.toInt() + 2);
    QVERIFY(property.write(&builder, value));
    QVERIFY(property.write(&builder, value));

    for (int i = 0; i < int(properties.size()); ++i) {
        const auto at = std::size_t(i);
        QCOMPARE(properties[at].read(&builder), expected[at]);
        QCOMPARE(spies[at]->count(), i == changed ? 1 : 0);
    }
}

void tst_ShaderText::nextStepsThroughAllAndWrapsToTheFirst_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QByteArray>("step");
    QTest::addColumn<QList<int>>("values");
    QTest::newRow("effect") << QByteArray("effect") << QByteArray("setNextEffect")
                            << QList<int>{1, 2, 3, 4, 5, 6, 7, 0, 1};
    QTest::newRow("projection") << QByteArray("projection") << QByteArray("setNextProjection")
                                << QList<int>{2, 3, 4, 0, 1};
}

void tst_ShaderText::nextStepsThroughAllAndWrapsToTheFirst()
{
    QFETCH(QByteArray, property);
    QFETCH(QByteArray, step);
    QFETCH(QList<int>, values);
    OrbShaderCodeBuilder builder;
    const QMetaObject *type = builder.metaObject();
    QSignalSpy spy(&builder, type->property(type->indexOfProperty(property)).notifySignal());
    for (int i = 0; i < values.size(); ++i) {
        QVERIFY(QMetaObject::invokeMethod(&builder, step));
        QCOMPARE(builder.property(property).toInt(), values.at(i));
        QCOMPARE(spy.count(), i + 1);
    }
}

QTEST_GUILESS_MAIN(tst_ShaderText)
#include "tst_ShaderText.moc"
