// SPDX-License-Identifier: MIT
#include "ig/scene/Material.h"
#include "ig/scene/Mesh.h"
#include "testkit/GltfWriter.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>

using namespace ig;

namespace {

struct Models : testing::Test {
    ~Models() override { Mesh::release(); }
    static std::size_t countTriangles(const Mesh& mesh) {
        std::size_t indices = 0;
        for (int i = 0; i < mesh.getNumSurfaces(); i++)
            indices += mesh.getSurface(i).indices.size();
        return indices / 3;
    }
    WorkingFolder folder;
    LogCapture log;
};

/// An OBJ group of so many triangles.
std::string group(const std::string& name, int triangles, const char* material) {
    std::string text = "o " + name + "\nusemtl " + material + "\n";
    for (int i = 0; i < triangles; i++)
        text += "v 0 0 " + std::to_string(i) + "\nv 1 0 0\nv 0 1 0\nf -3 -2 -1\n";
    return text;
}

} // namespace

TEST_F(Models, NodesWithALevelInTheirNamesAreLevelsOfDetail) {
    folder.write("ship.obj", group("hull_LOD0", 20, "grey") + group("mast", 3, "white") +
                                 group("hull_lod1", 10, "grey") + group("hull_LOD3", 5, "grey") +
                                 group("crane_LOD0", 4, "red") + group("crane_LOD1", 2, "far_red"));
    const auto ship = Mesh::get("ship.obj");
    ASSERT_TRUE(ship);
    EXPECT_EQ(countTriangles(*ship), 20U + 3 + 4);
    ASSERT_EQ(ship->getCoarser().size(), 2U);
    EXPECT_EQ(ship->getCoarser()[0].level, 1);
    EXPECT_EQ(countTriangles(*ship->getCoarser()[0].mesh), 10U + 3 + 2);
    EXPECT_EQ(ship->getCoarser()[1].level, 3);
    EXPECT_EQ(countTriangles(*ship->getCoarser()[1].mesh), 5U + 3 + 2);
    const Mesh& coarsest = *ship->getCoarser()[1].mesh;
    for (int i = 0; i < coarsest.getNumSurfaces(); i++) {
        const int place = coarsest.getSurface(i).stands_for;
        const jString& name = coarsest.getSurface(i).name;
        if (name == jString("far_red"))
            EXPECT_EQ(place, -1);
        else
            EXPECT_EQ(ship->getSurface(place).name, name);
    }
    const auto crane = Mesh::get("ship.obj#crane"), far = Mesh::get("ship.obj#crane_LOD1");
    ASSERT_TRUE(crane && far);
    EXPECT_EQ(countTriangles(*crane), 4U);
    EXPECT_EQ(crane->getCoarser().size(), 1U);
    EXPECT_EQ(countTriangles(*far), 2U);
    EXPECT_TRUE(far->getCoarser().empty());
    EXPECT_TRUE(log.lines.empty());
}
