#include "DistortionMesh.h"
#include "TestHeadset.h"
#include "WarningsFail.h"

#include <QtTest>

class tst_DistortionMesh : public WarningsFail
{
    Q_OBJECT

private slots:
    void thePictureIsInPlaceAllOverTheEyesHalf_data();
    void thePictureIsInPlaceAllOverTheEyesHalf();
};

void tst_DistortionMesh::thePictureIsInPlaceAllOverTheEyesHalf_data()
{
    QTest::addColumn<int>("eye");
    QTest::addColumn<bool>("chromatic");
    QTest::addColumn<bool>("bends");
    QTest::addColumn<int>("cells");
    QTest::addColumn<double>("texels");
    QTest::newRow("usual mesh") << 0 << true << true << kMeshCells << 0.39;
    QTest::newRow("fine mesh, colours together") << 1 << false << true << kFineMeshCells << 0.10;
    QTest::newRow("a lens that bends nothing") << 1 << false << false << 3 << 0.001;
}

void tst_DistortionMesh::thePictureIsInPlaceAllOverTheEyesHalf()
{
    QFETCH(int, eye);
    QFETCH(bool, chromatic);
    QFETCH(bool, bends);
    QFETCH(int, cells);
    QFETCH(double, texels);
    TestHeadset headset;
    if (!bends)
        headset.lens.polynomial = {1, 0, 0, 0, 0};
    const DistortionMesh mesh = distortionMesh(headset.lens, ovrEyeType(eye),
                                               headset.desc.DefaultEyeFov[eye], chromatic, cells);
    constexpr double kWeights[][3] = {{1, 0, 0}, {0.5, 0.5, 0}, {0, 0.5, 0.5}, {0.3, 0.3, 0.4}};
    double farthest = 0;
    double area = 0;
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        const DistortionVertex &a = mesh.vertices.at(mesh.indices.at(i));
        const DistortionVertex &b = mesh.vertices.at(mesh.indices.at(i + 1));
        const DistortionVertex &c = mesh.vertices.at(mesh.indices.at(i + 2));
        const double twice = double((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y));
        QVERIFY(twice > 0 && (eye == 0 ? std::max({a.x, b.x, c.x}) <= 0 : a.x >= 0));
        area += twice / 2;
        for (const auto &weights : kWeights) {
            const auto between = [&weights](float ofA, float ofB, float ofC) {
                return weights[0] * double(ofA) + weights[1] * double(ofB)
                    + weights[2] * double(ofC);
            };
            for (std::size_t colour = 0; colour < 3; ++colour) {
                const auto exact = headset.seenAt(eye, (between(a.x, b.x, c.x) + 1) / 2,
                                                  (between(a.y, b.y, c.y) + 1) / 2,
                                                  chromatic ? colour : 1);
                const auto &[u1, v1] = a.colours.at(colour);
                const auto &[u2, v2] = b.colours.at(colour);
                const auto &[u3, v3] = c.colours.at(colour);
                if (std::min(exact[0], exact[1]) >= 0 && std::max(exact[0], exact[1]) <= 1)
                    farthest = std::max(farthest,
                                        std::hypot((between(u1, u2, u3) - exact[0]) * 1099,
                                                   (between(v1, v2, v3) - exact[1]) * 1358));
            }
        }
    }
    QVERIFY2(farthest < texels, qPrintable(QString::number(farthest)));
    QVERIFY(std::abs(area - 2) < 1e-4); // of the half in device coordinates, each point once
}

QTEST_GUILESS_MAIN(tst_DistortionMesh)
#include "tst_DistortionMesh.moc"
