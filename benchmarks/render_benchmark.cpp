// SPDX-License-Identifier: MIT

// The renderer's own work: culling, sorting, uploads, submission, with a driver that only counts.

#include "heli/kit/HelicopterCorax.h"
#include "ig/math/quat.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/ocean/ObjectOcean.h"
#include "ratio.h"
#include "render/gl/RendererGL.h"
#include "scenes.h"
#include "testkit/AllocationCounter.h"
#include "testkit/CountingDriver.h"

namespace {

using namespace ig;

constexpr float STEP = 1 / 60.0f;

struct CountedRenderer : RendererGL {
    CountedRenderer() : RendererGL(Surface::window) { init(1280, 720); }
    ~CountedRenderer() override { release(); }
};

/// Pictures of the demo world from behind the helicopter on its pad, with panels and waves that
/// move; at most 1 ms is allowed.
void demoWorld(benchmark::State& state) {
    const CountingDriver driver;
    Show show(1280, 720);
    CountedRenderer renderer;
    CpuTimes times;
    std::uint64_t allocations = 0;
    for (auto _ : state) {
        show.advance();
        CountingDriver::counts() = {};
        const AllocationCounter counter;
        times.measure([&] { renderer.render(*show.world, show.camera, show.picture); });
        allocations = counter.count();
    }
    const CountingDriver::Counts& counts = CountingDriver::counts();
    state.counters["calls"] = static_cast<double>(counts.calls);
    state.counters["draws"] = static_cast<double>(counts.draws);
    state.counters["instances"] = static_cast<double>(counts.instances);
    state.counters["allocations"] = static_cast<double>(allocations);
    times.report(state, 1000);
}
BENCHMARK(demoWorld)->Iterations(600)->Unit(benchmark::kMicrosecond);

/// An empty world seen from above the demo world's pad.
struct EmptyView {
    EmptyView() {
        camera.setPerspective(50, 16.0f / 9, 0.1, 1e7);
        camera.setWgsPosition({LogicScene::LONGITUDE, LogicScene::LATITUDE, 60});
        picture.particles = &particles;
    }
    void draw() { renderer.render(world, camera, picture); }

    CountingDriver driver;
    CountedRenderer renderer;
    ParticleSystem particles;
    World world;
    Camera camera;
    FrameInfo picture = noon();
};

/// So many boxes in view in ten looks; the cost of each should not depend on their number.
void visibleObjects(benchmark::State& state) {
    EmptyView view;
    Mesh::Surface surface;
    surface.positions = {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}};
    surface.normals.assign(3, {0, 0, 1});
    surface.indices = {0, 1, 2};
    const auto mesh = std::make_shared<Mesh>(std::vector<Mesh::Surface>{surface});
    Material looks[10];
    for (int i = 0; i < 10; i++)
        looks[i].addValue("diffuse_color", {static_cast<float>(i) / 10, 0.5f, 0.5f, 1});
    const auto count = static_cast<int>(state.range(0));
    for (int i = 0; i < count; i++) {
        auto* object = new ObjectMesh(mesh);
        object->setSurfaceMaterial(0, &looks[i * 7 % 10]);
        object->setTransform(view.camera.getWorldTransform() *
                             translate(dvec3(i % 100 - 50, i / 100 % 50 - 25, -200 - i % 7)));
        view.world.addNode(object);
    }
    CpuTimes times;
    for (auto _ : state) {
        CountingDriver::counts() = {};
        times.measure([&] { view.draw(); });
    }
    state.counters["ns_each"] = times.getMedian() * 1e9 / count;
    state.counters["instances"] = static_cast<double>(CountingDriver::counts().instances);
    state.counters["median_us"] = times.getMedian() * 1e6;
}
BENCHMARK(visibleObjects)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);

/// Ten thousand particles that live, all in view: their step, and their way to the device; at most
/// 1 ms is allowed for both.
void particles(benchmark::State& state) {
    EmptyView view;
    for (int i = 0; i < 10; i++) {
        auto* emitter = new ObjectParticles();
        emitter->setTransform(view.camera.getWorldTransform() * translate(dvec3(i - 5, 0, -100)));
        emitter->setLife(2);
        emitter->setSpawnRate(500);
        emitter->setLinearVelocity(5);
        emitter->setSpread({3, 3, 3});
        view.world.addNode(emitter);
    }
    for (int i = 0; i < 300; i++)
        view.particles.advance(view.world, STEP);
    CpuTimes step, both;
    for (auto _ : state)
        both.measure([&] {
            step.measure([&] { view.particles.advance(view.world, STEP); });
            view.draw();
        });
    state.counters["live"] = view.particles.getNumParticles();
    state.counters["step_us"] = step.getMedian() * 1e6;
    both.report(state, 1000);
}
BENCHMARK(particles)->Iterations(600)->Unit(benchmark::kMicrosecond);

/// Heavy rain, hail or snow around the eye and the wakes of two ships, on their way to the device
/// too: what a frame costs beyond one with neither; at most 1 ms is allowed.
void weatherAndWakes(benchmark::State& state, const char* name) {
    const CountingDriver driver;
    Show show(1280, 720);
    CountedRenderer renderer;
    auto* emitter = static_cast<ObjectParticles*>(show.world->getNodeByName(name));
    emitter->setWgsPosition({LogicScene::LONGITUDE, LogicScene::LATITUDE, 35});
    const auto frame = [&](float dt, CpuTimes& times) {
        Engine::get()->beginFrame(dt);
        show.logic->update(dt);
        show.world->updatePhysics(dt);
        times.measure([&] {
            show.world->updateParticles(dt);
            show.particles.advance(*show.world, dt);
            renderer.render(*show.world, show.camera, show.picture);
        });
    };
    const auto setVisible = [&](bool visible) {
        emitter->setEnabled(visible);
        for (const char* ship : {"SM_055_CN_2023", "LNJ_2023"})
            for (Node* node :
                 static_cast<ObjectPrefab*>(show.world->getNodeByName(ship))->getNodes())
                if (node->getType() == DECAL_ORTHO) node->setEnabled(visible);
        CpuTimes unmeasured;
        for (int i = 0; i < 500; i++) // 50 s: until as many end as are born
            frame(0.1f, unmeasured);
    };
    CpuTimes without, with;
    setVisible(false);
    for (int i = 0; i < 300; i++)
        frame(STEP, without);
    setVisible(true);
    for (auto _ : state)
        frame(STEP, with);
    state.counters["live"] = show.particles.getNumParticles();
    state.counters["difference_us"] = (with.getMedian() - without.getMedian()) * 1e6;
    with.report(state, 1000);
}
BENCHMARK_CAPTURE(weatherAndWakes, rain, "rain")->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(weatherAndWakes, hail, "hail")->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(weatherAndWakes, snow, "snow")->Iterations(300)->Unit(benchmark::kMicrosecond);

} // namespace
