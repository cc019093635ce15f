// SPDX-License-Identifier: MIT
#include "WarmUp.h"

#include "ig/scene/Camera.h"
#include "ig/scene/World.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

/// Tells of its progress in ten steps, and makes a texture at each.
struct Rehearsing final : Renderer {
    bool init(int, int) override { return true; }
    void resize(int, int) override {}
    void render(const World&, const Camera&, const FrameInfo&) override {}
    void release() override {}
    RenderResources getMade() const override { return made; }
    void prepare(const Preparation& wanted) override {
        later = wanted.later.getNodes().size();
        for (int i = 1; i <= 10 && wanted.progress(i / 10.0); i++)
            made.textures++;
    }
    int later = 0;
    RenderResources made;
};

TEST(WarmUp, EndsWhenTheWindowIsToClose) {
    const TempFolder folder;
    folder.write("load.prefab", "node: {name: load}\n");
    const World world;
    const Camera camera;
    const FrameInfo frame;
    const WarmUp::Scene scene{
        world, camera, frame, {jString((folder.path() / "load.prefab").c_str())}};
    for (const bool closes : {false, true}) {
        Rehearsing renderer;
        WarmUp warm_up;
        EXPECT_EQ(warm_up.run(renderer, scene, [closes] { return !closes; }), !closes);
        EXPECT_EQ(renderer.later, 1);
        EXPECT_EQ(renderer.made.textures, closes ? 0 : 10);
        warm_up.end(renderer);
        renderer.made.textures += 2;
        EXPECT_EQ(warm_up.getSummary(renderer),
                  "made after the start: 0 programs, 2 textures; 0 scene files read\n");
    }
}

} // namespace
