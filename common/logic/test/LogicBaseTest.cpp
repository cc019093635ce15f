// SPDX-License-Identifier: MIT
#include "common/logic/LogicBase.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

struct Logic : LogicBase {
    using LogicBase::LogicBase;
    void level() { adjust_geo_rotation_forward(); }
};

struct Levelling : testing::Test {
    Camera camera;
    CameraControl control{&camera};
    Logic logic{nullptr, &control};
    const dvec3 position = EllipsoidModel().toWorld({-155, 19.7, 300});
    const dvec3 up = normalize(position);

    /// Levels a camera that looks along `-z`, with `x` to its right.
    dmat3 level(const dvec3& x, const dvec3& z) {
        camera.setTransform(dmat4(dmat3(x, cross(z, x), z), position));
        control.m_position = position;
        logic.level();
        return control.m_rotation.getMat3();
    }
};

TEST_F(Levelling, KeepsTheHeadingAndTheGeocentricVertical) {
    const dvec3 east = normalize(cross(dvec3(0, 0, 1), up)), north = cross(up, east);
    // Looking north-east, pitched down by 30 degrees and banked: the horizontal part of −Z stays.
    const dquat bank(north, 20);
    const dvec3 back = normalize(-(north + east) + up * 0.8), right = normalize(cross(up, back));
    const dmat3 r = level(dquat(back, 20) * right, back);
    EXPECT_LT(length(r.getY() - up), 1e-12);
    EXPECT_LT(length(r.getZ() + normalize(north + east)), 1e-9);
    EXPECT_LT(length(camera.getPosition() - position), 1e-9);
    EXPECT_LT(length(camera.getTransform().getY() - up), 1e-12); // pushed to the camera
}

TEST_F(Levelling, StraightUpAndDownUseTheXAxis) {
    const dvec3 east = normalize(cross(dvec3(0, 0, 1), up));
    for (double sign : {1.0, -1.0}) {
        const dmat3 r = level(east, up * sign);
        EXPECT_LT(length(r.getY() - up), 1e-12);
        EXPECT_NEAR(std::abs(dot(r.getX(), east)), 1, 1e-9);
        EXPECT_NEAR(dot(cross(r.getX(), r.getY()), r.getZ()), 1, 1e-12);
    }
}

TEST_F(Levelling, WithoutCameraNothingHappens) {
    CameraControl blind(nullptr);
    Logic without(nullptr, &blind);
    without.level();
    EXPECT_EQ(blind.m_rotation, dquat_identity);
    Logic alone(nullptr, nullptr);
    alone.level();
}

TEST(LogicBase, CopiesShareTheirListeners) {
    Logic logic(nullptr, nullptr);
    int heard = 0;
    const int key = 0;
    logic.m_sig_sea.append({&key, [&](int code) { heard += code; }});
    Logic copy(logic);
    emit(copy.m_sig_sea, -3);
    EXPECT_EQ(heard, -3);
}

} // namespace
