// SPDX-License-Identifier: MIT
#include "PictureScene.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/SceneObjects.h"
#include "render/image/Png.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sys/stat.h>

using namespace ig;

class TextureOf : public PictureScene {
public:
    void TearDown() override {
        PictureScene::TearDown();
        Mesh::release();
    }
    /// Four fields: red and green above, blue and white below.
    void writeFields(const char* path) {
        Picture picture{8, 8, {}};
        for (int y = 0; y < 8; y++)
            for (int x = 0; x < 8; x++)
                for (const int value : {x < 4 && y < 4, x >= 4 && y < 4, y >= 4})
                    picture.rgb.push_back(value ? 255 : 0);
        for (int y = 4; y < 8; y++)
            for (int x = 4; x < 8; x++)
                std::fill_n(picture.rgb.begin() + 3 * (8 * y + x), 3, std::uint8_t{255});
        std::string message;
        ASSERT_TRUE(writePng((m_folder.path() / path).string(), picture, message)) << message;
    }
    /// A square that fills the middle of the picture, facing the eye; its surface is the file's.
    void show(const jString& model) {
        look(100, 0, 0);
        auto mesh = Mesh::get(model);
        ASSERT_TRUE(mesh);
        auto* object = new ObjectMesh(std::move(mesh));
        object->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, -20)));
        m_world.addNode(object);
        draw();
    }
    char color(double x, double y) {
        const std::uint8_t* p = pixel(x, y);
        const auto [low, high] = std::minmax({p[0], p[1], p[2]});
        if (high - low < 40) return high > 90 ? 'w' : 'k';
        return p[0] == high ? (p[2] > high / 2 ? 'm' : 'r') : p[1] == high ? 'g' : 'b';
    }
    std::string quarters() {
        return {color(0.46, 0.42), color(0.54, 0.42), color(0.46, 0.58), color(0.54, 0.58)};
    }
    bool logged(const char* part) const {
        return std::count_if(m_log.lines.begin(), m_log.lines.end(), [part](const auto& line) {
                   return line.find(part) != std::string::npos;
               }) == 1;
    }
    WorkingFolder m_folder;
    LogCapture m_log;
};

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

// The format's v runs down the picture, its Y up, and files stand beside the model.
TEST_F(TextureOf, TheSameFromAGltfFile) {
    std::filesystem::create_directory(m_folder.path() / "models");
    writeFields("models/fields.png");
    const float corners[] = {-3, 0, 3, 3, 0, 3, 3, 0, -3, -3, 0, -3, // lies flat: up is -Z
                             0,  1, 0, 0, 1, 0, 0, 1, 0,  0,  1, 0,  // normals
                             0,  1, 1, 1, 1, 0, 0, 0};
    const std::uint16_t indices[] = {0, 1, 2, 0, 2, 3};
    std::ofstream binary(m_folder.path() / "models/card.bin", std::ios::binary);
    binary.write(reinterpret_cast<const char*>(corners), sizeof corners);
    binary.write(reinterpret_cast<const char*>(indices), sizeof indices);
    binary.close();
    m_folder.write("models/card.gltf", R"({"asset": {"version": "2.0"}, "scene": 0,
        "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "NORMAL": 1, "TEXCOORD_0": 2},
                                    "indices": 3, "material": 0}]}],
        "materials": [{"name": "skin",
                       "pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}}],
        "textures": [{"source": 0}], "images": [{"uri": "fields.png"}],
        "buffers": [{"uri": "card.bin", "byteLength": 140}],
        "bufferViews": [{"buffer": 0, "byteLength": 48},
                        {"buffer": 0, "byteOffset": 48, "byteLength": 48},
                        {"buffer": 0, "byteOffset": 96, "byteLength": 32},
                        {"buffer": 0, "byteOffset": 128, "byteLength": 12}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3",
                       "min": [-3, 0, -3], "max": [3, 0, 3]},
                      {"bufferView": 1, "componentType": 5126, "count": 4, "type": "VEC3"},
                      {"bufferView": 2, "componentType": 5126, "count": 4, "type": "VEC2"},
                      {"bufferView": 3, "componentType": 5123, "count": 6, "type": "SCALAR"}]})");
    show("models/card.gltf");
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
