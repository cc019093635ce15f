// SPDX-License-Identifier: MIT
#include "WaveField.h"
#include "ig/math/vec.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace ig {
namespace {

constexpr double TURN = 2 * std::numbers::pi;

/// Places up to 400 km from the anchor, the same in every run and under every library.
class Places {
public:
    double next() { return (m_random() * 0x1p-32 - 0.5) * 8e5; }

private:
    std::mt19937 m_random{42};
};

double altitude(const WaveField& sea, double x, double y) {
    return sea.getSurface().find(x, y).altitude;
}

TEST(WaveField, HasTheSignificantHeightOfItsBeaufortNumberAroundALevelMean) {
    for (const auto& [beaufort, height] : {std::pair{3.0, 0.6}, {5, 2.0}, {8, 5.5}, {12, 14.0}}) {
        WaveField sea({beaufort, 0, 230});
        Places places;
        double sum = 0, squares = 0;
        constexpr int TIMES = 4, COUNT = 8000;
        for (int t = 0; t < TIMES; t++) {
            sea.evolve(1000.0 * t);
            for (int i = 0; i < COUNT; i++) {
                const double x = places.next(), h = altitude(sea, x, places.next());
                sum += h;
                squares += h * h;
                ASSERT_LE(std::abs(h), sea.getFrame().highest_crest);
            }
        }
        const double mean = sum / (TIMES * COUNT);
        const double deviation = std::sqrt(squares / (TIMES * COUNT) - mean * mean);
        EXPECT_NEAR(4 * deviation / height, 1, 0.05) << "Beaufort " << beaufort;
        EXPECT_NEAR(sea.getFrame().significant_height, height, 1e-3 * height);
        // The average's own error is the deviation over the root of the number of waves seen.
        EXPECT_NEAR(mean, 0, std::max(0.02, 4 * deviation / std::sqrt(TIMES * COUNT)))
            << "Beaufort " << beaufort;
    }
}

// The period weighted by energy is 0.857 of the peak period for the spectrum of Pierson and
// Moskowitz (a quotient of its moments), and little more for the steeper peak of younger seas.
TEST(WaveField, HasThePeakPeriodOfItsBeaufortNumberAndComesFromItsAngle) {
    for (const auto& [beaufort, period, angle] : {std::tuple{5.0, 7.1, 75.0}, {8, 11.1, 230}}) {
        WaveField sea({beaufort, 0, angle});
        sea.evolve(0);
        double energy = 0, weighted = 0, east = 0, north = 0;
        for (const Cascade& cascade : sea.getCascades()) {
            // The first one counts once as it is and once turned.
            const bool turned = &cascade == &sea.getCascades()[0];
            const double c = turned ? OceanFrame::SECOND_COSINE : 1;
            const double s = turned ? OceanFrame::SECOND_SINE : 0;
            for (const Wave& w : cascade.listWaves()) {
                energy += w.energy;
                weighted += w.energy / w.frequency;
                east += w.energy * (w.kx + c * w.kx + s * w.ky);
                north += w.energy * (w.ky + c * w.ky - s * w.kx);
            }
        }
        EXPECT_NEAR(weighted / energy / period, 0.86, 0.02) << "Beaufort " << beaufort;
        const double from = std::atan2(-east, -north) * 360 / TURN;
        EXPECT_NEAR(std::remainder(from - angle, 360), 0, 2) << angle;
    }
}

/// What the waves of a tile add up to at a place.
struct Water {
    dvec3 moved; ///< displacement east and north, height
    double divergence = 0, slope_x = 0, slope_y = 0;
};

/// The waves of one sampling of a tile, at one moment, added up one by one in double precision;
/// `raised` against bilinear damping, as in the arrays, or as they are.
class DirectTile {
public:
    DirectTile(const Cascade& cascade, double time, bool raised = false)
        : m_unit(TURN / cascade.getTile()) {
        const double spacing = cascade.getTile() / cascade.getResolution();
        for (const Wave& w : cascade.listWaves()) {
            const double k = std::hypot(w.kx, w.ky);
            const double turns = std::fmod(std::sqrt(GRAVITY * k) / TURN * time, 1.0);
            const double kept =
                (2 + std::cos(w.kx * spacing)) / 3 * (2 + std::cos(w.ky * spacing)) / 3;
            const double amplitude = std::sqrt(2 * w.energy) / (raised ? std::pow(kept, 0.45) : 1);
            m_waves.push_back({static_cast<int>(std::lround(w.kx / m_unit)),
                               static_cast<int>(std::lround(w.ky / m_unit)), w.kx / k, w.ky / k, k,
                               std::polar(amplitude, TURN * (w.phase - turns))});
        }
    }

    Water at(double x, double y) const {
        // exp(i k·q) is the product of two of these powers.
        std::complex<double> east[2 * BAND + 1], north[2 * BAND + 1];
        for (int m = -BAND; m <= BAND; m++) {
            east[BAND + m] = std::polar(1.0, m * m_unit * x);
            north[BAND + m] = std::polar(1.0, m * m_unit * y);
        }
        Water sum;
        for (const Mode& w : m_waves) {
            const std::complex<double> h = w.amplitude * east[BAND + w.m] * north[BAND + w.n];
            const dvec3 moved(-w.east * h.imag(), -w.north * h.imag(), h.real());
            sum.moved = sum.moved + moved;
            sum.slope_x += w.k * moved.x;
            sum.slope_y += w.k * moved.y;
            sum.divergence -= w.k * moved.z;
        }
        return sum;
    }

private:
    static constexpr int BAND = Lattice::BAND;

    struct Mode {
        int m, n;
        double east, north; ///< direction
        double k;           ///< rad/m
        std::complex<double> amplitude;
    };
    double m_unit; ///< rad/m
    std::vector<Mode> m_waves;
};

TEST(WaveField, TexelsAreTheDirectSumOfTheWavesEvenAfterDays) {
    WaveField sea({8, 0, 230});
    std::mt19937 random(3);
    for (double time : {0.0, 90000.25, 30 * 86400.0}) {
        sea.evolve(time);
        sea.evolveSlopes();
        for (int i = 0; i < OceanFrame::TILES; i++) {
            const DirectTile direct(sea.getCascades()[static_cast<std::size_t>(i)], time, true);
            for (int sample = 0; sample < 5; sample++) {
                const OceanTile& tile = sea.getFrame().tiles[i];
                const unsigned N = static_cast<unsigned>(tile.resolution);
                const unsigned u = random() % N, v = random() % N;
                const Water sum = direct.at(u * tile.tile / N, v * tile.tile / N);
                const float* slope = tile.slope + 2 * (v * N + u);
                EXPECT_NEAR(static_cast<double>(slope[0]), sum.slope_x, 2e-5);
                EXPECT_NEAR(static_cast<double>(slope[1]), sum.slope_y, 2e-5);
                if (!tile.displacement) continue;
                const float* texel = tile.displacement + 4 * (v * N + u);
                EXPECT_NEAR(static_cast<double>(texel[0]), sum.moved.x, 1e-4);
                EXPECT_NEAR(static_cast<double>(texel[1]), sum.moved.y, 1e-4);
                EXPECT_NEAR(static_cast<double>(texel[2]), sum.moved.z, 1e-4);
                EXPECT_NEAR(static_cast<double>(texel[3]), sum.divergence, 2e-5);
            }
        }
    }
}

/// The sea without texels: what queries would answer if tiles were infinitely fine.
class DirectSea {
public:
    explicit DirectSea(const WaveField& sea)
        : m_mean_level(sea.getFrame().mean_level), m_tiles{
                                                       {sea.getCascades()[0], sea.getFrame().time},
                                                       {sea.getCascades()[1], sea.getFrame().time},
                                                       {sea.getCascades()[2],
                                                        sea.getFrame().time}} {}

    double altitude(double x, double y) const {
        dvec3 water, last(1, 0, 0);
        for (int step = 0; step < 50 && std::hypot(water.x - last.x, water.y - last.y) > 1e-4;
             step++) {
            last = water;
            water = displace(x - last.x, y - last.y);
        }
        return water.z + m_mean_level;
    }

private:
    dvec3 displace(double x, double y) const {
        const double c = OceanFrame::SECOND_COSINE, s = OceanFrame::SECOND_SINE;
        const dvec3 second = m_tiles[0]
                                 .at(c * x - s * y + OceanFrame::SECOND_OFFSET_X,
                                     s * x + c * y + OceanFrame::SECOND_OFFSET_Y)
                                 .moved;
        const dvec3 back(c * second.x + s * second.y, c * second.y - s * second.x, second.z);
        return (m_tiles[0].at(x, y).moved + back) * std::sqrt(0.5) + m_tiles[1].at(x, y).moved +
               m_tiles[2].at(x, y).moved;
    }

    double m_mean_level;
    DirectTile m_tiles[3];
};

TEST(WaveField, QueriesAreWithinTwoCentimetresOfTheDirectSum) {
    // Not just on average: a hoist or a deck meets single places. A storm may differ by 1 % of its
    // significant height.
    for (const auto& [beaufort, tolerance] : {std::pair{3.0, 0.02}, {5, 0.02}, {8, 0.055}}) {
        WaveField sea({beaufort, 0, 230});
        Places places;
        double worst = 0;
        for (double time : {777.25, 86400.0}) {
            sea.evolve(time);
            const DirectSea direct(sea);
            for (int i = 0; i < 250; i++) {
                const double x = places.next(), y = places.next();
                worst = std::max(worst, std::abs(altitude(sea, x, y) - direct.altitude(x, y)));
            }
        }
        EXPECT_LT(worst, tolerance) << "Beaufort " << beaufort;
    }
}

TEST(WaveField, WaterFoundAtAPlaceIsThere) {
    for (double beaufort : {5.0, 12.0}) {
        WaveField sea({beaufort, 0, 230});
        Places places;
        for (double time : {10.0, 5000.0}) {
            sea.evolve(time);
            for (int i = 0; i < 20000; i++) {
                const double x = places.next(), y = places.next();
                const SurfaceSampler::Point water = sea.getSurface().find(x, y);
                double now[3];
                sea.getSurface().displace(water.x, water.y, now);
                ASSERT_LT(std::hypot(water.x + now[0] - x, water.y + now[1] - y), 0.002);
                ASSERT_NEAR(water.altitude, now[2], 1e-3); // other roundings of the same place
                ASSERT_LT(water.residual, 0.002);
            }
        }
    }
}

TEST(WaveField, StaysContinuousAndArrivesWhenEverythingChangesEveryFrame) {
    WaveField sea({6, 0, 230});
    constexpr double DT = 1.0 / 60;
    constexpr int PLACES = 60, FRAMES = 200;
    std::mt19937 random(1);
    std::vector<double> before;
    double worst = 0;
    for (int frame = 0; frame < FRAMES; frame++) {
        sea.set({random() % 13 * 1.0, random() % 76 * 1.0, random() % 360 * 1.0});
        sea.evolve(frame * DT);
        Places places;
        std::vector<double> now;
        for (int i = 0; i < PLACES; i++) {
            const double x = places.next();
            double water[3]; // at rest places: crests that pass by don't count as jumps
            sea.getSurface().displace(x, places.next(), water);
            now.insert(now.end(), water, water + 3);
        }
        for (std::size_t i = 0; i < before.size(); i++)
            worst = std::max(worst, std::abs(now[i] - before[i]));
        before = now;
    }
    // The highest wave of a hurricane sea, 25 m in 14 s, moves water at π · 25 / 14 = 5.6 m/s, the
    // short waves on it at some more.
    EXPECT_LT(worst, 8 * DT);
    EXPECT_GT(worst, 0.5 * DT);

    sea.set({4, 8, 10});
    sea.evolve(FRAMES * DT + 0.1);
    sea.evolve(FRAMES * DT + 5.1);
    EXPECT_GT(sea.getFrame().significant_height, 1.1); // still on its way
    sea.evolve(FRAMES * DT + 20.2);
    EXPECT_NEAR(sea.getFrame().significant_height, 1, 1e-6);
    EXPECT_EQ(sea.getFrame().wind, 8);
}

TEST(WaveField, MovesTowardsSettingsThatNeverRest) {
    WaveField sea({0, 0, 230});
    for (int frame = 0; frame < 150; frame++) {
        sea.set({5, 0, 100.0 + frame % 2}); // a host that dithers
        sea.evolve(frame / 5.0);
    }
    EXPECT_NEAR(sea.getFrame().significant_height, 2, 0.1); // 30 s: three time constants
}

TEST(WaveField, IsTheSameSeaForTheSameHistory) {
    // FNV-1a over altitudes in tenths of a millimetre. The value belongs to the spectrum, the tiles
    // and the phases: it changes when these are changed on purpose, and never between compilers,
    // optimisation levels or libraries.
    WaveField sea({5, 0, 230}), other({5, 0, 230});
    std::uint64_t hash = 0xcbf29ce484222325;
    for (int step = 0; step < 8; step++) {
        if (step == 3) sea.set({7, 12, 300}), other.set({7, 12, 300});
        const double time = 60 + 1.75 * step;
        sea.evolve(time);
        other.evolve(time);
        Places places;
        for (int i = 0; i < 250; i++) {
            const double x = places.next(), y = places.next(), h = altitude(sea, x, y);
            ASSERT_EQ(h, altitude(other, x, y));
            hash = (hash ^ static_cast<std::uint64_t>(std::llround(h * 1e4))) * 0x100000001b3;
        }
    }
    EXPECT_EQ(hash, 7249327858287996263u);
}

TEST(WaveField, IgnoresTimesThatAreNoneAndGoesBack) {
    WaveField sea({5, 0, 230});
    sea.evolve(50);
    const double h = altitude(sea, 100, 200);
    sea.evolve(std::numeric_limits<double>::quiet_NaN());
    sea.evolve(std::numeric_limits<double>::infinity());
    EXPECT_EQ(altitude(sea, 100, 200), h);
    sea.set({0, 0, 0});
    sea.evolve(60);
    sea.evolve(0); // a restarted clock: the change goes on from here
    sea.evolve(20);
    EXPECT_EQ(altitude(sea, 100, 200), 0);
}

TEST(WaveField, FoamStaysBehindTheCrestsAndFades) {
    WaveField sea({6, 0, 230});
    sea.evolve(0);
    double most = 0;
    for (int step = 1; step <= 40; step++) {
        sea.evolve(step * 0.1);
        for (const OceanTile& tile : sea.getFrame().tiles) {
            if (!tile.foam) continue;
            for (int i = 0; i < tile.resolution * tile.resolution; i++) {
                ASSERT_GE(tile.foam[i], -tile.displacement[4 * i + 3]);
                ASSERT_GE(tile.foam[i], 0);
                most = std::max(most, static_cast<double>(tile.foam[i]));
            }
        }
    }
    EXPECT_GT(most, 0.2);
    sea.set({0, 0, 0});
    sea.evolve(5);
    sea.evolve(60);
    for (const OceanTile& tile : sea.getFrame().tiles)
        if (tile.foam) {
            EXPECT_LT(*std::max_element(tile.foam, tile.foam + tile.resolution * tile.resolution),
                      1e-3);
        }
}

} // namespace
} // namespace ig
