// SPDX-License-Identifier: MIT
#include "ig/math/jMath.h"
#include "ig/math/quat.h"

#include <gtest/gtest.h>

namespace ig {
namespace {

void expectNear(const dvec3& a, const dvec3& b, double tolerance = 1e-12) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}
void expectNear(const dmat3& a, const dmat3& b, double tolerance = 1e-12) {
    for (int i = 0; i < 3; i++)
        expectNear(a.columns[i], b.columns[i], tolerance);
}
dmat3 about(const dvec3& axis, double angle) { return dquat(axis, angle).getMat3(); }
const dvec3 X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1};

TEST(Rotation, AxisAngleIsRightHandedInDegrees) {
    expectNear(dquat(Z, 90) * X, Y);
    expectNear(about(X, 90) * Y, Z);
    expectNear(about(Y, 90) * Z, X);
    expectNear(dquat(dvec3(0, 0, 5), 90) * X, Y); // the axis need not be of unit length
}

TEST(Rotation, EulerOrdersMeanWhatTheirNamesSay) {
    const dvec3 a{11, -23, 57};
    expectNear(dquat(a.x, a.y, a.z).getMat3(), about(X, a.x) * about(Y, a.y) * about(Z, a.z));
    expectNear(composeRotationXYZ(a), about(X, a.x) * about(Y, a.y) * about(Z, a.z));
    expectNear(dquat::fromEulerZXY(a).getMat3(), about(Z, a.z) * about(X, a.x) * about(Y, a.y));
    expectNear(dquat::fromEulerZYX(a).getMat3(), about(Z, a.x) * about(Y, a.y) * about(X, a.z));
}

TEST(Rotation, DecompositionsInvertTheirCompositionsAlsoAtTheGimbal) {
    for (double x : {-170.0, -90.0, -20.0, 0.0, 45.0, 90.0, 179.0})
        for (double y : {-90.0, -89.99, -30.0, 0.0, 60.0, 90.0})
            for (double z : {-120.0, 0.0, 33.0, 180.0}) {
                const dmat3 r = composeRotationXYZ({x, y, z});
                expectNear(composeRotationXYZ(decomposeRotationXYZ(r)), r, 1e-8);
                const dquat q = dquat::fromEulerZXY({y, x, z});
                expectNear(dquat::fromEulerZXY(q.toEulerZXY()).getMat3(), q.getMat3(), 1e-8);
                const dmat3 hpr = composeHPR({z, y, x});
                expectNear(composeHPR(decomposeHPR(hpr)), hpr, 1e-8);
            }
}

TEST(Rotation, HeadingPitchRollTurnTheBodyAsAPilotExpects) {
    expectNear(composeHPR({90, 0, 0}) * Y, X);    // heading east: forward is east
    EXPECT_GT((composeHPR({0, 10, 0}) * Y).z, 0); // nose up
    EXPECT_LT((composeHPR({0, 0, 10}) * X).z, 0); // right side down
    expectNear(decomposeHPR(composeHPR({350, -5, 12})), {350, -5, 12}, 1e-10);
    EXPECT_EQ(decomposeHPR(composeHPR({-1e-15, 0, 0})).x, 0); // never 360
    const quat q = rotateHPR({30, 5, -7});
    expectNear(dquat(q).getMat3(), composeHPR({30, 5, -7}), 1e-6);
}

TEST(Rotation, ZUpConversionPointsFromTheTargetToTheCamera) {
    const dquat q(dvec3(0.3, 0.5, 0.8), 77); // any camera attitude
    const dmat3 camera = q.getMat3(), z_up = convertFromZUpCoordinateSystem(q).getMat3();
    expectNear(z_up.getX(), camera.getZ());
    expectNear(z_up.getY(), camera.getX());
    expectNear(z_up.getZ(), camera.getY());
    expectNear(convertToZUpCoordinateSystem(convertFromZUpCoordinateSystem(q)).getMat3(), camera);
}

TEST(Rotation, MatrixToQuaternionIsStableForEveryHalfTurn) {
    for (const dvec3& axis : {X, Y, Z, normalize(dvec3(1, 1, 0)), normalize(dvec3(-1, 2, 3))})
        for (double angle : {0.0, 1e-7, 90.0, 179.9999, 180.0, 270.0})
            expectNear(about(axis, angle).getQuat().getMat3(), about(axis, angle), 1e-12);
}

TEST(Rotation, SlerpTakesTheShorterArc) {
    const dquat a(Z, 10), b(Z, 50);
    expectNear(slerp(a, b, 0.25).getMat3(), about(Z, 20));
    const dquat minus_b{-b.x, -b.y, -b.z, -b.w};
    expectNear(slerp(a, minus_b, 0.25).getMat3(), about(Z, 20));
    expectNear(slerp(a, dquat(Z, 10 + 1e-6), 0.5).getMat3(), about(Z, 10 + 5e-7), 1e-12);
}

TEST(Rotation, DecomposeTransformSeparatesScale) {
    const dmat3 r = about({1, 2, 3}, 40);
    const dmat4 m(dmat3(r.getX() * 2.0, r.getY() * 3.0, r.getZ() * 0.5), {6.4e6, 1, 2});
    dvec3 position, scale;
    dquat rotation;
    decomposeTransform(m, position, rotation, scale);
    expectNear(scale, {2, 3, 0.5});
    expectNear(rotation.getMat3(), r);
    EXPECT_EQ(position, dvec3(6.4e6, 1, 2));
    decomposeTransform(dmat4(dmat3({}, Y, Z), {}), position, rotation, scale);
    EXPECT_TRUE(isFinite(rotation));
}

TEST(Matrix, InverseAndProductOrder) {
    const dmat4 a(about(Z, 90), {1, 2, 3}), b(about(X, 30), {4, 5, 6});
    expectNear((a * b) * X, a * (b * X));
    expectNear((inverse(a) * a).getMat3(), dmat3());
    expectNear(inverse(a) * (a * dvec3(7, 8, 9)), {7, 8, 9});
}

TEST(Matrix, FrustumMapsItsCornersToTheUnitSquareAndShearsThePicture) {
    const auto project = [](const dmat4& m, dvec3 p) {
        const double w = -p.z;
        const auto& c = m.columns;
        return dvec3((c[0].x * p.x + c[2].x * p.z) / w, (c[1].y * p.y + c[2].y * p.z) / w,
                     (c[2].z * p.z + c[3].z) / w);
    };
    const dmat4 m = frustum(-1, 3, -2, 1, 2, 100, 0, 0);
    expectNear(project(m, {3, 1, -2}), {1, 1, -1});
    expectNear(project(m, {-50, -100, -100}), {-1, -1, 1});
    const dmat4 sheared = frustum(-1, 3, -2, 1, 2, 100, 0.25, -0.5);
    expectNear(project(sheared, {3, 1, -2}), {1 - 0.25, 1 + 0.5, -1});
}

TEST(JMath, FadeOutAndSwing) {
    EXPECT_EQ(jMath::getFadeOut(15, 25, 15), 1);
    EXPECT_EQ(jMath::getFadeOut(25, 25, 15), 0);
    EXPECT_FLOAT_EQ(jMath::getFadeOut(17.5f, 25, 15), 0.75f);
    EXPECT_EQ(jMath::getFadeOut(12, 12, 12), 1); // a step that still holds at its own value
    EXPECT_EQ(jMath::getFadeOut(12.1f, 12, 12), 0);
    EXPECT_EQ(jMath::linearToShock(0), 1);
    EXPECT_NEAR(jMath::linearToShock(0.8f), 0, 1e-6);
    EXPECT_NEAR(jMath::linearToShock(0.4f), 0.5, 1e-6);
    EXPECT_NEAR(jMath::linearToShock(1600.4f), 0.5, 1e-3); // the period is 1.6 s
    for (int i = 0; i < 1000; i++) {
        const double r = jRandReal();
        ASSERT_TRUE(r >= 0 && r < 1);
    }
}

} // namespace
} // namespace ig
