#include "VideosListModel.h"

#include "WarningsFail.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QtTest>

namespace {

QVariantList videos(const char *json)
{
    return QJsonDocument::fromJson(json).array().toVariantList();
}

} // namespace

/// Qt's own model test watches in all of them.
class tst_VideosListModel : public WarningsFail
{
    Q_OBJECT

private slots:
    void aVideoIsReadByItsRoles();
    void whatIsNoVideoGivesEmptyTexts();
    void clearingAnEmptyModelTellsNothing();

private:
    static void watch(VideosListModel *model)
    {
        new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     model);
    }
};

void tst_VideosListModel::aVideoIsReadByItsRoles()
{
    VideosListModel model;
    watch(&model);
    QSignalSpy inserted(&model, &VideosListModel::rowsInserted);
    model.add(videos(R"([{"title":"first"},
        {"username":"ann", "copyright":"2024", "title":"A walk", "description":"Long.",
         "creation_date":"2024-05-01", "thumb_link":"https://h/t.jpg", "key":"k7",
         "presets":[{"url":"https://h/1"},{"url":"https://h/2"}], "source":"https://h/s"}])"));
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(model.rowCount(), 2);
    const QModelIndex index = model.index(1);
    const QHash<int, QByteArray> names = model.roleNames();
    QMap<int, QPair<QByteArray, QVariant>> byRole;
    for (auto name = names.cbegin(); name != names.cend(); ++name)
        byRole.insert(name.key(), {*name, index.data(name.key())});
    const auto url = [](const char *text) {
        return QVariantMap{{QStringLiteral("url"), QString::fromLatin1(text)}};
    };
    const QMap<int, QPair<QByteArray, QVariant>>
        expected{{257, {"userName", QStringLiteral("ann")}},
                 {258, {"copyright", QStringLiteral("2024")}},
                 {259, {"title", QStringLiteral("A walk")}},
                 {260, {"description", QStringLiteral("Long.")}},
                 {261, {"creationDate", QStringLiteral("2024-05-01")}},
                 {262, {"thumbLink", QStringLiteral("https://h/t.jpg")}},
                 {263, {"presets", QVariantList{url("https://h/1"), url("https://h/2")}}},
                 {264, {"sourceUrl", QStringLiteral("https://h/s")}},
                 {265, {"key", QStringLiteral("k7")}}};
    QCOMPARE(byRole, expected);
    QCOMPARE(model.data(model.index(0), VideosListModel::SourceUrlRole), QVariant(QString()));
    QVERIFY(!index.data(266).isValid());
    QVERIFY(!index.data(Qt::DisplayRole).isValid());
    QVERIFY(!model.data(model.index(2), VideosListModel::TitleRole).isValid());
}

void tst_VideosListModel::whatIsNoVideoGivesEmptyTexts()
{
    VideosListModel model;
    watch(&model);
    model.add(videos(R"([7, null, ["title"], {"title":{"a":1},"presets":"none"}])"));
    QCOMPARE(model.rowCount(), 4);
    for (int row = 0; row < model.rowCount(); ++row) {
        QCOMPARE(model.index(row).data(VideosListModel::TitleRole), QVariant(QString()));
        QCOMPARE(model.index(row).data(VideosListModel::PresetsRole), QVariant(QVariantList()));
    }
}

void tst_VideosListModel::clearingAnEmptyModelTellsNothing()
{
    VideosListModel model;
    watch(&model);
    QSignalSpy inserted(&model, &VideosListModel::rowsInserted);
    QSignalSpy removed(&model, &VideosListModel::rowsRemoved);
    model.clear();
    model.add({});
    QCOMPARE(inserted.count() + removed.count(), 0);
    model.add(videos("[{},{}]"));
    const QModelIndex gone = model.index(0);
    model.clear();
    QCOMPARE(model.rowCount(), 0);
    QVERIFY(!model.data(gone, VideosListModel::TitleRole).isValid());
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.first().mid(1), (QVariantList{0, 1}));
}

QTEST_GUILESS_MAIN(tst_VideosListModel)
#include "tst_VideosListModel.moc"
