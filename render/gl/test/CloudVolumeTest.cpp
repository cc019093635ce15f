// SPDX-License-Identifier: MIT

// Clouds as a volume, whatever the device.

#include "PictureScene.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>

using namespace ig;

namespace {

class VolumeOf : public PictureScene {
public:
    static constexpr int SMALL_WIDTH = 96, SMALL_HEIGHT = 54;

    static void TearDownTestSuite() {
        s_renderer.reset();
        unsetenv(VARIABLE);
    }
    static void SetUpTestSuite() {}
    /// Clouds drawn that way, from the beginning.
    void begin(const char* way) {
        setenv(VARIABLE, way, 1);
        s_renderer.reset(); // one at a time
        s_renderer = std::make_unique<RendererGL>(RendererGL::Surface::none);
        s_drawable = s_renderer->init(SMALL_WIDTH, SMALL_HEIGHT);
    }
    void SetUp() override {
        begin("volume");
        PictureScene::SetUp();
    }
    Picture shoot() {
        draw();
        Picture picture;
        s_renderer->readPicture(picture);
        return picture;
    }
    /// Share of the picture's middle, where sides hardly show, that is more cloud than blue.
    static double getCovered(const Picture& picture) {
        int covered = 0, all = 0;
        for (int y = SMALL_HEIGHT / 3; y < SMALL_HEIGHT * 2 / 3; y++)
            for (int x = SMALL_WIDTH / 3; x < SMALL_WIDTH * 2 / 3; x++, all++)
                covered += picture.at(x, y)[2] < 1.35 * picture.at(x, y)[0];
        return covered / static_cast<double>(all);
    }
    static double meanDifference(const Picture& a, const Picture& b) {
        double sum = 0;
        for (std::size_t i = 0; i < a.rgb.size(); i++)
            sum += std::abs(a.rgb[i] - b.rgb[i]);
        return sum / static_cast<double>(a.rgb.size());
    }

    static constexpr const char* VARIABLE = "VISUAL_CHANNEL_CLOUDS";
};

} // namespace

TEST_F(VolumeOf, TheCoverSeenIsThatOfTheSheets) {
    look(0, 0, -90);
    m_frame.cloud_base = 7000; // so that a picture shows many
    m_frame.wind = {24576 / 7.37f, 24576 / 8.13f};
    constexpr std::array COVERS{0.25f, 0.5f, 0.75f};
    constexpr int PICTURES = 30;
    std::array<std::array<double, COVERS.size()>, 2> seen{};
    for (const bool volume : {true, false}) {
        if (!volume) begin("layers");
        for (std::size_t k = 0; k < COVERS.size(); k++) {
            m_frame.cloud_cover = COVERS[k];
            for (int i = 0; i < PICTURES; i++) { // the field drifts past, too fast for a history
                m_frame.time = i;
                seen[volume][k] += getCovered(shoot()) / PICTURES;
            }
        }
    }
    for (std::size_t k = 0; k < COVERS.size(); k++)
        EXPECT_NEAR(seen[true][k], seen[false][k], 0.06) << COVERS[k];
}

TEST_F(VolumeOf, PicturesSettleAndNothingTrailsBehindAnEyeThatFlies) {
    m_frame.cloud_cover = 0.5f;
    look(1050, 30, -5);
    Picture last = shoot();
    double first = 0, later = 0; // from one picture to the next
    for (int i = 1; i <= 24; i++) {
        Picture now = shoot();
        if (i <= 2) first += meanDifference(now, last);
        if (i > 22) later += meanDifference(now, last);
        last = std::move(now);
    }
    EXPECT_LT(later, 0.25 * first);

    constexpr double SPEED = 4; // m north, from one picture to the next
    double north = 0;
    for (; north < 24 * SPEED; north += SPEED) {
        look(1050, 30, -5, north);
        last = shoot();
    }
    for (int i = 0; i < 24; i++)
        shoot();
    const Picture settled = shoot();
    EXPECT_LT(meanDifference(settled, last), 2);
}
