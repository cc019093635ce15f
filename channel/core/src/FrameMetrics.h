// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <prometheus/collectable.h>
#include <string>
#include <utility>
#include <vector>

class LinkMonitor;
class LogicListener;
class PaceMonitor;
struct FrameTiming;
namespace ig {
class ParticleSystem;
class World;
} // namespace ig

/// How the run goes, as numbers that monitoring reads from threads of its own while frames go on.
/// The application's thread stores after every frame, which neither allocates nor waits for
/// anybody; a reader may find some numbers a frame newer than others. Nothing of this is known to
/// the scene.
class FrameMetrics final : public prometheus::Collectable {
public:
    static constexpr double COUNT_EVERY = 1; ///< s between two counts of the scene

    /// `renderer`: its kind's name.
    explicit FrameMetrics(std::string renderer) : m_renderer(std::move(renderer)) { set(AGE, -1); }

    /// After every frame, when both monitors know of it.
    void addFrame(const FrameTiming& timing, const PaceMonitor& pace, const LinkMonitor& link,
                  const LogicListener& listener);
    /// Likewise. Counts what there is at times only, since all nodes are walked for it.
    void addScene(double now, ig::World& world, const ig::ParticleSystem& particles);

    /// Called by any thread.
    std::vector<prometheus::MetricFamily> Collect() const override;

private:
    /// In the order of their table.
    enum Value {
        FRAMES_LATE,
        RECEIVED,
        APPLIED,
        LOST,
        SHORT,
        LONG,
        IMPLAUSIBLE,
        FROM_OTHERS,
        EMPTY,
        AGE,
        SENT,
        FAILED,
        BODIES,
        NODES,
        PARTICLES,
        VALUES
    };
    struct Description;
    static const Description DESCRIPTIONS[VALUES];

    /// Counts of seconds by size.
    class Histogram {
    public:
        void add(double seconds);
        prometheus::MetricFamily collect(const char* name, const char* help) const;

    private:
        /// Upper ends, s: periods of 120, 100, 72, 60, 50, 30 and 20 frames a second lie amid a
        /// class each, so that frames in time fall into one.
        static constexpr double ENDS[] = {0.001,  0.002, 0.004,  0.006,  0.008, 0.0089, 0.0095,
                                          0.0105, 0.012, 0.0135, 0.0145, 0.016, 0.0175, 0.019,
                                          0.021,  0.025, 0.032,  0.035,  0.045, 0.055,  0.075,
                                          0.1,    0.15,  0.25,   0.5,    1};
        std::array<std::atomic<std::uint64_t>, std::size(ENDS) + 1> m_counts{};
        std::atomic<double> m_sum = 0;
    };

    void count(Value value, std::uint64_t number);
    void set(Value value, double number) { m_values[value].store(number, RELAXED); }
    static constexpr std::memory_order RELAXED = std::memory_order_relaxed;

    const std::string m_renderer;
    std::array<std::atomic<double>, VALUES> m_values{};
    Histogram m_intervals, m_works;
    double m_counted = -COUNT_EVERY; ///< when the scene was, s
};
