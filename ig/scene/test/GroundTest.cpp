// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>

using namespace ig;

namespace {

using Kind = Ground::Kind;

/// A slab that is wet all over.
struct Pool : ObjectMesh {
    using ObjectMesh::ObjectMesh;
    Ground getGroundAt(int, const dvec3&) const override { return {Kind::water, {0, 0, 1, 1}}; }
};

/// Emitters over slabs of 2 m, placed in metres east of and above a place at sea level.
struct GroundBelow : testing::Test {
    ~GroundBelow() override {
        world.clear();
        MaterialManager::release();
        PackageManager::release();
    }
    template <class T = ObjectMesh>
    T* addSlab(double east, double up, Material* material = nullptr) {
        Mesh::Surface square;
        square.positions = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
        square.normals.assign(4, {0, 0, 1});
        square.indices = {0, 1, 2, 0, 2, 3};
        return add(new T(std::make_shared<Mesh>(std::vector<Mesh::Surface>{square})), east, up,
                   material);
    }
    ObjectParticles* addEmitter(double east, double up, Kind works_over) {
        auto* emitter = new ObjectParticles();
        emitter->setSurface(works_over);
        return add(emitter, east, up, &tinted);
    }
    static bool isSilent(const ObjectParticles* emitter) { return emitter->getSpawnTime(1) == 0; }
    Material* material(const std::string& text) {
        const std::string path = std::to_string(files++) + ".mat";
        folder.write(path, text);
        return MaterialManager::get(path.c_str());
    }

    WorkingFolder folder;
    World world;
    Material tinted; ///< of all emitters: they take on the ground's colour
    int files = 0;

private:
    template <class T>
    T* add(T* object, double east, double up, Material* material) {
        const EllipsoidModel earth;
        object->setTransform(earth.getWGSTransform(earth.toWorld({-155, 19.7, 0})) *
                             dmat4(dmat3(), dvec3(east, 0, up)));
        object->setSurfaceMaterial(0, material);
        tinted.addSlider("ground_tint", 1);
        world.addNode(object);
        return object;
    }
};

} // namespace

TEST_F(GroundBelow, IsOfTheKindAndGivesTheDustThatTheSurfaceSays) {
    LogCapture log;
    const vec4 yellow{0.5f, 0.4f, 0.2f, 3}, snow{0.82f, 0.87f, 0.95f, 3.6f};
    const std::string dust = "parameters: {lifted: [0.5, 0.4, 0.2, 3], ice: ";
    addSlab(0, 0)->setEnabled(false);
    addSlab(0, -1, material("{ground: sand, " + dust + "0.35}}"));
    addSlab(0, -2);
    addSlab(10, 0, material("{ground: grass, " + dust + "0.36}}"));
    addSlab(20, 0, material("{ground: land, grond: sand, " + dust + "0}}"));
    addSlab<Pool>(30, 0);
    addSlab(40, 0, material("{ground: sand, parameters: {}}"));
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{
                  "Material::load: 2.mat:1: unknown key \"grond\"; nearest is \"ground\"",
                  "Material::load: 2.mat:1: unknown ground \"land\""}));

    const std::vector<Kind> works_over = {Kind::land, Kind::water, Kind::grass,
                                          Kind::sand, Kind::snow,  Kind::hard};
    const auto expect = [&](double east, Kind is, const vec4& lifted) {
        std::vector<ObjectParticles*> emitters;
        for (const Kind kind : works_over)
            emitters.push_back(addEmitter(east, 1, kind));
        ObjectParticles* any = addEmitter(east, 1, Kind::any);
        world.updateParticles(0.1f);
        for (std::size_t i = 0; i < works_over.size(); i++)
            EXPECT_EQ(isSilent(emitters[i]),
                      !(works_over[i] == is || (works_over[i] == Kind::land && is != Kind::water)))
                << east << ' ' << i;
        EXPECT_FALSE(isSilent(any));
        for (const ObjectParticles* emitter : {any, emitters[0]}) {
            const vec4& ground = emitter->getGround();
            EXPECT_LT(length(ground.xyz() - lifted.xyz()), 1e-6f) << east; // rounds at the start
            EXPECT_NEAR(ground.w, lifted.w, 1e-6) << east;
        }
    };
    expect(0, Kind::sand, yellow);
    expect(10, Kind::snow, snow);
    expect(20, Kind::hard, yellow);
    expect(30, Kind::water, {0, 0, 1, 1});
    expect(40, Kind::sand, {0.5f, 0.41f, 0.27f, 3.2f});
}

TEST_F(GroundBelow, IsTheSameForNeighboursWithinHalfAMetre) {
    addSlab(-1, 0);
    addSlab<Pool>(1.001, 0);
    auto* first = addEmitter(-0.2, 1, Kind::water);
    const auto* near = addEmitter(0.25, 1, Kind::water);
    const auto* far = addEmitter(0.35, 1, Kind::water);
    world.updateParticles(0.1f);
    EXPECT_TRUE(isSilent(first) && isSilent(near));
    EXPECT_FALSE(isSilent(far));
    first->setOfDisplay(true); // which asks for itself
    world.updateParticles(0.1f);
    EXPECT_TRUE(isSilent(first));
    EXPECT_FALSE(isSilent(near));
}

TEST_F(GroundBelow, IsLookedForFrom5MAboveTo100MBelow) {
    const double heights[] = {5.1, 4.9, -99.9, -100.1};
    ObjectParticles* emitters[4];
    for (int i = 0; i < 4; i++) {
        addSlab<Pool>(10 * i, 150 + heights[i]);
        emitters[i] = addEmitter(10 * i, 150, Kind::land);
    }
    const auto expect = [&](std::array<bool, 4> silent) {
        world.updateParticles(0.1f);
        for (std::size_t i = 0; i < 4; i++)
            EXPECT_EQ(isSilent(emitters[i]), silent[i]) << heights[i];
    };
    expect({false, true, true, false});
    emitters[1]->setEnabled(false); // nobody sees it: it isn't told
    emitters[1]->setPosition(emitters[0]->getPosition());
    expect({false, true, true, false});
    emitters[1]->setEnabled(true);
    expect({false, false, true, false});
}
