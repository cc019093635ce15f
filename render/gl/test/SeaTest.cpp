// SPDX-License-Identifier: MIT
#include "PictureScene.h"
#include "ig/app/Engine.h"
#include "plugins/ocean/ObjectOcean.h"

#include <algorithm>
#include <cmath>

using namespace ig;

/// Nothing but water, from a low helicopter.
class SeaOf : public PictureScene {
public:
    void SetUp() override {
        PictureScene::SetUp();
        if (IsSkipped()) return;
        look(40, 0, 25);
    }
    /// The brightness of all pixels, in order, of a sea that has never been another.
    std::vector<int> blow(float beaufort, float wind) {
        m_world.clear();
        auto* sea = new ObjectOcean();
        m_world.addNode(sea);
        sea->setBeaufort(beaufort);
        sea->setSpeed(wind);
        draw();
        s_renderer->readPicture(m_picture);
        std::vector<int> sums;
        for (int y = 0; y < HEIGHT; y++)
            for (int x = 0; x < WIDTH; x++) {
                const std::uint8_t* p = m_picture.at(x, y);
                sums.push_back(p[0] + p[1] + p[2]);
            }
        return sums;
    }
};

TEST_F(SeaOf, AGaleBeginsWithoutAStep) {
    const std::vector<int> breeze = blow(5, 14), gale = blow(5, 14.01f);
    int most = 0;
    for (std::size_t i = 0; i < breeze.size(); i++)
        most = std::max(most, std::abs(gale[i] - breeze[i]));
    EXPECT_LE(most, 20);
}

// Fresh crests are thick, and there are few of them; what they leave is blown thin and far.
TEST_F(SeaOf, MostFoamOfAStormLetsTheWaterThrough) {
    m_frame.overcast = 1; // no glitter
    std::vector<int> shades = blow(10, 26.5f);
    std::sort(shades.begin(), shades.end());
    const int water = shades[shades.size() / 20], white = shades[shades.size() * 995 / 1000];
    ASSERT_GT(white, water + 150);
    const auto above = [&](double share) {
        const int least = water + static_cast<int>(share * (white - water));
        return shades.end() - std::lower_bound(shades.begin(), shades.end(), least);
    };
    EXPECT_GT(above(0.8), 500);
    EXPECT_GT(above(0.15), 3 * above(0.5));
}
