// SPDX-License-Identifier: MIT
#include "ig/scene/Material.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/PackedPictures.h"
#include "testkit/GltfWriter.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <cmath>
#include <filesystem>
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
    /// The document around a card: one node, one mesh, one material.
    static std::string around(const std::string& primitive, const std::string& more = "",
                              const std::string& material = R"({"name":"skin"})") {
        return R"("scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"card","mesh":0}],)"
               R"("meshes":[{"primitives":[{)" +
               primitive + R"(,"material":0}]}],"materials":[)" + material + "]" + more;
    }
    /// Its one surface, of a file that loads without a word.
    const Mesh::Surface* load(const char* name) {
        const auto mesh = Mesh::get(name);
        EXPECT_TRUE(log.lines.empty()) << log.lines.front();
        return mesh && mesh->getNumSurfaces() == 1 ? &mesh->getSurface(0) : nullptr;
    }
    WorkingFolder folder;
    LogCapture log;
};

std::string base64(const std::string& bytes) {
    constexpr char DIGITS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        unsigned word = 0;
        for (std::size_t k = 0; k < 3; k++)
            word =
                word << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0);
        for (std::size_t k = 0; k < 4; k++)
            text += i + k > bytes.size() ? '=' : DIGITS[word >> (18 - 6 * k) & 63];
    }
    return text;
}

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

TEST_F(Models, LoadAsExportersWriteThem) {
    const std::string texture = R"(,"textures":[{"source":0}],"images":[)";
    const std::string worn = R"({"pbrMetallicRoughness":{"baseColorTexture":{"index":0}}})";
    const std::string bytes = "stands for a picture";
    {
        GltfWriter writer; // without materials, node mirrored
        folder.write(
            "plain.glb",
            writer.makeBinary(R"("scene":0,"scenes":[{"nodes":[0]}],"meshes":[{"primitives":[{)" +
                              writer.addCard() + R"(}]}],"nodes":[{"mesh":0,"scale":[-1,1,1]}])"));
        const Mesh::Surface* plain = load("plain.glb");
        ASSERT_TRUE(plain);
        EXPECT_FALSE(plain->material);
        const auto& p = plain->positions;
        const auto& i = plain->indices;
        EXPECT_GT(cross(p[i[1]] - p[i[0]], p[i[2]] - p[i[0]]).z, 0) << "still faces up";
    }
    {
        GltfWriter writer; // all in the text
        const std::string card = writer.addCard();
        const std::string data = "data:image/png;base64," + base64(bytes);
        folder.write(
            "text.gltf",
            writer.makeText(around(card, texture + R"({"uri":")" + data + "\"}]", worn),
                            "data:application/octet-stream;base64," + base64(writer.getBinary())));
        const Mesh::Surface* text = load("text.gltf");
        ASSERT_TRUE(text && text->material);
        const auto packed = PackedPictures::find(*text->material->findTexture("base_color"));
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(packed.data()), packed.size()), bytes);
    }
    {
        GltfWriter writer; // values alone, and one that only has a name
        folder.write("values.glb",
                     writer.makeBinary(around(writer.addCard(), "",
                                              R"({"pbrMetallicRoughness":{"baseColorFactor":)"
                                              R"([1,0.5,0,0.25],"metallicFactor":0},)"
                                              R"("alphaMode":"BLEND","doubleSided":true,)"
                                              R"("emissiveFactor":[0,0,2]})")));
        const Mesh::Surface* values = load("values.glb");
        ASSERT_TRUE(values && values->material);
        const Material* m = values->material.get();
        EXPECT_EQ(readValue(m, "diffuse_color", {}), vec4(1, 0.5f, 0, 0.25f));
        EXPECT_EQ(readSlider(m, "metalness", 1), 0);
        EXPECT_EQ(readSlider(m, "roughness", 0), 1);
        EXPECT_EQ(readSlider(m, "two_sided", 0), 1);
        EXPECT_EQ(readValue(m, "emissive_color", {}), vec4(0, 0, 2, 1));
        GltfWriter named;
        folder.write("named.glb", named.makeBinary(around(named.addCard())));
        const Mesh::Surface* skin = load("named.glb#card");
        ASSERT_TRUE(skin);
        EXPECT_FALSE(skin->material);
        EXPECT_EQ(skin->name, jString("skin"));
    }
    {
        folder.write("boat.obj", "mtllib boat.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\n"
                                 "vt 0 1\nusemtl wood\nf 1/1 2/2 3/3\n");
        folder.write("boat.mtl", "newmtl wood\nKd 0 0 0\nd 0.5\nNs 126\nmap_Kd wood.jpg\n");
        const Mesh::Surface* boat = load("boat.obj");
        ASSERT_TRUE(boat && boat->material);
        const Material* m = boat->material.get();
        EXPECT_EQ(readValue(m, "diffuse_color", {}), vec4(1, 1, 1, 0.5f));
        EXPECT_NEAR(readSlider(m, "roughness", 0), std::sqrt(std::sqrt(2 / 128.0)), 1e-6);
        EXPECT_EQ(*m->findTexture("base_color"), jString("wood.jpg"));
    }
}

// The same square of 6 m, facing up, as other writers lay it down.
TEST_F(Models, TheSameSquareComesOutOfEveryLayout) {
    const auto number = [](const char* text, int accessor) {
        return text + std::to_string(accessor);
    };
    const std::string card = R"("nodes":[{"mesh":0}])";
    GltfWriter w;
    const std::string places =
        number(R"("attributes":{"POSITION":)",
               w.addNumbers<float>({-3, 0, 3, 3, 0, 3, 3, 0, -3, -3, 0, -3}, 3));
    const std::string loose = number(
        R"("attributes":{"POSITION":)",
        w.addNumbers<float>({-3, 0, 3, 3, 0, 3, 3, 0, -3, -3, 0, 3, 3, 0, -3, -3, 0, -3}, 3));
    const std::string standing =
        number(R"("attributes":{"POSITION":)", // in the file's XY plane, twice as small
               w.addNumbers<float>({-1.5, -1.5, 0, 1.5, -1.5, 0, 1.5, 1.5, 0, -1.5, 1.5, 0}, 3));
    const std::string list =
        number("},\"indices\":", w.addNumbers<std::uint32_t>({0, 1, 2, 0, 2, 3}, 1));
    const std::string bytes =
        number("},\"indices\":", w.addNumbers<std::uint8_t>({0, 1, 2, 0, 2, 3}, 1));
    const std::string strip =
        number("},\"mode\":5,\"indices\":", w.addNumbers<std::uint16_t>({0, 1, 3, 2}, 1));
    const std::string fan =
        number("},\"mode\":6,\"indices\":", w.addNumbers<std::uint16_t>({0, 1, 2, 3}, 1));
    const std::string woven = w.addWoven(
        {{-3, 0, 3, 0, 1, 0}, {3, 0, 3, 0, 1, 0}, {3, 0, -3, 0, 1, 0}, {-3, 0, -3, 0, 1, 0}});
    const std::string turned =
        R"("nodes":[{"children":[1],"scale":[2,2,2]},)"
        R"({"mesh":0,"rotation":[-0.70710678,0,0,0.70710678],"translation":[0,7,0]}])";
    const struct {
        const char* file;
        std::string primitive, nodes;
        double altitude = 0;
    } models[] = {{"loose.glb", loose + "}", card},    {"LONG.GLB", places + list, card},
                  {"short.glb", places + bytes, card}, {"strip.glb", places + strip, card},
                  {"fan.glb", places + fan, card},     {"woven.glb", woven + list, card},
                  {"快艇 1.glb", places + list, card}, {"turned.glb", standing + list, turned, 14}};
    for (const auto& model : models) {
        folder.write(
            model.file,
            w.makeBinary(R"("scene":0,"scenes":[{"nodes":[0]}],"meshes":[{"primitives":[{)" +
                         model.primitive + "}]}]," + model.nodes));
        const Mesh::Surface* square = load(model.file);
        ASSERT_TRUE(square) << model.file;
        double area = 0; // as seen from above, what faces down taken off
        for (std::size_t i = 0; i < square->indices.size(); i += 3) {
            const auto corner = [&](std::size_t k) {
                return square->positions[square->indices[i + k]];
            };
            area += cross(corner(1) - corner(0), corner(2) - corner(0)).z / 2;
            EXPECT_NEAR(corner(0).z, model.altitude, 1e-5) << model.file;
        }
        EXPECT_NEAR(area, 36, 1e-4) << model.file;
        for (const vec3& normal : square->normals)
            EXPECT_GT(normal.z, 0.999) << model.file;
    }
}

TEST_F(Models, WhatCantBeReadIsRefusedInOneMessageWithTheRemedy) {
    GltfWriter writer;
    const std::string card = writer.addCard();
    const std::string whole = writer.makeBinary(around(card));
    const auto changed = [&](const std::string& what, const std::string& into) {
        std::string text = writer.makeText(around(card), "");
        EXPECT_NE(text.find(what), std::string::npos) << what;
        return text.replace(text.find(what), what.size(), into);
    };
    const auto needing = [&](const char* extension) {
        return writer.makeText(
            around(card, std::string(R"(,"extensionsRequired":[")") + extension + "\"]"), "");
    };
    const std::string bone = R"(,"skins":[{"joints":[0]}])";
    const std::pair<std::string, const char*> files[] = {
        {whole.substr(0, whole.size() - 40), "is cut off"},
        {needing("KHR_draco_mesh_compression"),
         "\"KHR_draco_mesh_compression\", which is not read: export it without compression"},
        {needing("EXT_meshopt_compression"), "without compression"},
        {needing("KHR_texture_basisu"), "as PNG or JPEG"},
        {needing("EXT_mesh_gpu_instancing"), "export it without"},
        {changed(R"("byteLength":48)", R"("byteLength":9007199254740991)"), "beyond its buffer"},
        {changed(R"("count":4)", R"("count":5)"), "accessor 0 reaches beyond its buffer view"},
        {changed(R"("count":4)", R"("\u0063ount":4000000000)"), "beyond its buffer view"},
        {changed(R"("count":4)", R"("byteOffset":4,"count":4)"), "beyond its buffer view"},
        {changed(R"("count":4)", R"("sparse":{"count":1},"count":4)"), "export without shape keys"},
        {changed(R"("bufferView":2,"componentType":5126)",
                 R"("bufferView":2,"componentType":5123)"),
         "TEXCOORD_0 in whole numbers"},
        {changed(R"("indices":3)", R"("indices":9)"), "indices don't exist"},
        {changed(R"("indices":3)", R"("indices":3,"mode":2)"), "loops of lines"},
        {changed(R"("NORMAL":1)", R"("NORMAL":7)"), "no such NORMAL"},
        {writer.makeText(around(card, bone), ""), "without armatures"},
        {writer.makeText(around(card), "nowhere.bin"), "nowhere.bin"}};
    for (const auto& [bytes, why] : files) {
        const bool binary = bytes.starts_with("glTF");
        const char* const name = binary ? "a.glb" : "a.gltf";
        folder.write(name, bytes);
        log.lines.clear();
        Mesh::release();
        EXPECT_EQ(Mesh::get(name), nullptr) << why;
        ASSERT_EQ(log.lines.size(), 1U) << why;
        EXPECT_TRUE(log.lines[0].find(why) != std::string::npos &&
                    log.lines[0].find(name) != std::string::npos)
            << why << ": " << log.lines[0];
    }
}

TEST_F(Models, FilesMadeToExhaustTheMachineAreRefusedBeforeTheyAreRead) {
    GltfWriter writer;
    const std::string card = writer.addCard();
    const auto repeat = [](const std::string& text, int times) {
        std::string all;
        for (int i = 0; i < times; i++)
            all += text;
        return all;
    };
    const auto within = [&](const std::string& nodes, const std::string& more = "") {
        return writer.makeBinary(
            R"("scene":0,"scenes":[{"nodes":[0]}],"meshes":[{"primitives":[{)" + card +
            R"(}]}],"nodes":[{"mesh":0)" + nodes + "]" + more);
    };
    const std::string corners = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    const struct {
        const char *file, *why;
        std::string bytes;
        std::uintmax_t size = 0; ///< of a file that goes on with nothing
    } bombs[] = {
        {"head.glb", "is cut off",
         "glTF\2" + std::string(3, '\0') + std::string(8, '\xFF') + "JSON{}  "},
        {"circle.glb", "is below itself", within(R"(,"children":[1]},{"children":[0]})")},
        {"tree.glb", "more than 100000 nodes",
         within(R"(,"children":[1]},{"children":[)" + repeat("2,", 100'000) + "2]},{}")},
        {"nodes.glb", "things", within("}" + repeat(",{}", 1'000'000))},
        {"moves.glb", "things", within("}", R"(,"animations":[{})" + repeat(",{}", 300'000) + "]")},
        {"values.glb", "values", within("}", R"(,"extras":[0)" + repeat(",0", 9'000'000) + "]")},
        {"deep.gltf", "nested more than 500", repeat(R"({"a":)", 100'000)},
        {"text.gltf", "export it as .glb", "{", 300 << 20},
        {"large.glb", "more than 1 GiB", "glTF", std::uintmax_t{2} << 30},
        {"faces.obj", "faces is not read", corners + repeat("f 1 2 3\n", 4'200'000)},
        {"corners.obj", "corners is not read", corners + "f" + repeat(" 1 2 \\\n3", 400) + "\n"},
        {"large.OBJ", "as .glb", corners, 300 << 20},
        {"model.fbx", "neither a glTF", "; "}};
    for (const auto& bomb : bombs) {
        folder.write(bomb.file, bomb.bytes);
        if (bomb.size > 0) std::filesystem::resize_file(folder.path() / bomb.file, bomb.size);
        log.lines.clear();
        EXPECT_EQ(Mesh::get(bomb.file), nullptr) << bomb.file;
        ASSERT_EQ(log.lines.size(), 1U) << bomb.file;
        EXPECT_NE(log.lines[0].find(bomb.why), std::string::npos) << log.lines[0];
    }
}

// A small file, whose nodes and primitives share what there is, asks for more than any machine has.
TEST_F(Models, ThatShareTheirTrianglesTooOftenAreRefused) {
    GltfWriter writer;
    std::vector<float> corners; // all different
    for (int i = 0; i < 3 * 3 * 30'000; i++)
        corners.push_back(static_cast<float>(i % 1009) + static_cast<float>(i) / 1024);
    std::string attributes = R"({"attributes":{"POSITION":)";
    attributes += std::to_string(writer.addNumbers(corners, 3)) + "}}";
    std::string primitives = attributes, nodes = R"({"mesh":0})", numbers = "0";
    for (int i = 1; i < 200; i++) {
        nodes += R"(,{"mesh":0})";
        numbers += ",";
        numbers += std::to_string(i);
        primitives += ",";
        primitives += attributes;
    }
    const auto makeFile = [&](const std::string& meshes, const std::string& all) {
        return writer.makeBinary(R"("scene":0,"scenes":[{"nodes":[)" + all + R"(]}],"nodes":[)" +
                                 nodes + R"(],"meshes":[{"primitives":[)" + meshes + "]}]");
    };
    folder.write("primitives.glb", makeFile(primitives, "0"));
    folder.write("nodes.glb", makeFile(attributes, numbers));
    for (const char* name : {"primitives.glb", "nodes.glb"}) {
        log.lines.clear();
        EXPECT_EQ(Mesh::get(name), nullptr);
        ASSERT_EQ(log.lines.size(), 1U);
        EXPECT_NE(log.lines[0].find("export fewer"), std::string::npos) << log.lines[0];
    }
}
