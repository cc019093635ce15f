// SPDX-License-Identifier: MIT
#include "FieldsScene.h"
#include "ig/scene/SceneObjects.h"

#include <set>
#include <sys/stat.h>

using namespace ig;

using TextureOf = FieldsScene;

TEST_F(TextureOf, APictureStandsUprightOnWhatAFileGivesIt) {
    writeFields("fields.png");
    m_folder.write("card.obj", "mtllib card.mtl\n"
                               "v -3 -3 0\nv 3 -3 0\nv 3 3 0\nv -3 3 0\n"
                               "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvn 0 0 1\nusemtl skin\n"
                               "f 1/1/1 2/2/1 3/3/1 4/4/1\n");
    m_folder.write("card.mtl", "newmtl skin\nmap_Kd fields.png\n");
    show("card.obj");
    EXPECT_EQ(quarters(), "rgbw");
}

TEST_F(TextureOf, WithoutCoordinatesItIsLaidOnBySize) {
    writeFields("fields.png");
    look(100, 0, 0);
    ObjectMesh* card = addCard(20, 6, {0.9f, 0.9f, 0.9f, 1});
    Material* skin = material({0.9f, 0.9f, 0.9f, 1}, 0);
    skin->addSlider("texture_size", 6);
    skin->setTexture("base_color", "fields.png");
    card->setSurfaceMaterial(0, skin);
    draw();
    // The card's middle is a corner of the picture, which repeats: left is its right half.
    EXPECT_EQ(quarters(), "wbgr");
}

TEST_F(TextureOf, ADecalLiesOnWhatIsBelowAndNowhereElse) {
    writeFields("fields.png");
    look(30, 0, 90); // straight down, north at the top
    Material* skin = material({0.9f, 0.9f, 0.9f, 1}, 0);
    skin->setTexture("base_color", "fields.png");
    ObjectMesh* floor = addFloor(10, 5); // smaller than the decal
    auto* decal = new DecalOrtho();
    decal->setWgsPosition({LONGITUDE, LATITUDE, 11});
    decal->setWgsHPR({0, 0, 0});
    decal->setWidth(9);
    decal->setHeight(9);
    decal->setSurfaceMaterial(0, skin);
    m_world.addNode(decal);
    draw();
    EXPECT_EQ(quarters(), "rgbw");
    const std::uint8_t* p = pixel(0.5 + 3.5 / 20 / (2 * HALF_HEIGHT) * HEIGHT / WIDTH, 0.5);
    EXPECT_GT(p[2], p[0]) << "the sea's dark blue, beyond the floor's edge";

    floor->setEnabled(false); // the sheet has been laid and stays
    draw();
    EXPECT_EQ(quarters(), "rgbw");
    decal->setWidth(8); // another sheet, which finds nothing
    draw();
    EXPECT_NE(quarters(), "rgbw");
}

TEST_F(TextureOf, AMissingModelsPlaceIsAChequeredCube) {
    look(100, 0, 0);
    auto* cube = new ObjectMesh(Mesh::getPlaceholder());
    cube->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, -5)));
    m_world.addNode(cube);
    draw();
    std::set<char> colors;
    for (double x = 0.47; x < 0.53; x += 0.005)
        colors.insert(color(x, 0.51));
    EXPECT_TRUE(colors.contains('m') && colors.contains('k'));
    EXPECT_FALSE(logged("TextureStore") || logged("missing"));
}

TEST_F(TextureOf, AMissingOrBrokenOneIsNamedAndShowsMagenta) {
    m_folder.write("broken.png", "\x89PNG\r\n\x1a\nbut no more");
    // 57 bytes that claim to be 8000 by 8000 pixels.
    m_folder.write(
        "claim.png",
        std::string("\211\120\116\107\015\012\032\012\000\000\000\015\111\110\104\122\000\000\037"
                    "\100\000\000\037\100\010\006\000\000\000\006\361\255\364\000\000\000\000\111"
                    "\104\101\124\065\257\006\036\000\000\000\000\111\105\116\104\256\102\140\202",
                    57));
    ASSERT_EQ(mkfifo(m_folder.file("pipe.png").c_str(), 0600), 0);
    look(100, 0, 0);
    for (const char* name : {"missing.png", "broken.png", "claim.png", "pipe.png"}) {
        m_world.clear();
        ObjectMesh* card = addCard(20, 6, {0.9f, 0.9f, 0.9f, 1});
        Material* skin = material({0.9f, 0.9f, 0.9f, 1}, 0);
        skin->addSlider("texture_size", 24); // one field of the chequer: the card's quarter
        skin->setTexture("base_color", name);
        card->setSurfaceMaterial(0, skin);
        draw();
        draw();
        const std::string seen = quarters();
        EXPECT_EQ(std::count(seen.begin(), seen.end(), 'm'), 2) << seen;
        EXPECT_EQ(std::count(seen.begin(), seen.end(), 'k'), 2) << seen;
        EXPECT_TRUE(logged(name)); // once
    }
}
