// SPDX-License-Identifier: MIT
#include "FieldsScene.h"
#include "testkit/GltfWriter.h"
#include "testkit/jpegBytes.h"

#include <fstream>
#include <sstream>

using namespace ig;

namespace {

/// A card of one material, as files bring it: lying flat, its picture's top to −Z.
struct Card {
    std::string images{};                 ///< of the document
    std::string texture = R"("index":0)"; ///< how the material wears the picture
    std::string attributes{};             ///< more of them
    std::string material{};               ///< more of it
};

} // namespace

class ModelOf : public FieldsScene {
public:
    static std::string describe(GltfWriter& writer, const Card& card) {
        return R"("scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
            "meshes":[{"primitives":[{)" +
               writer.addCard(card.attributes) + R"(,"material":0}]}],
            "extensionsUsed":["KHR_texture_transform"],
            "materials":[{"name":"skin")" +
               card.material +
               R"(,"pbrMetallicRoughness":{"metallicFactor":0,"baseColorTexture":{)" +
               card.texture + R"(}}}],"textures":[{"source":0}],"images":[)" + card.images + "]";
    }
    static std::string fieldsAsJpeg() {
        return jpegBytes(64, 64, [](unsigned x, unsigned y) { return fieldAt(x, y, 64); });
    }
    std::string fieldsAsPng() {
        writeFields("fields.png");
        std::ostringstream bytes;
        bytes << std::ifstream(m_folder.path() / "fields.png", std::ios::binary).rdbuf();
        return bytes.str();
    }
    static std::string inView(int view, const char* type) {
        return R"({"bufferView":)" + std::to_string(view) + R"(,"mimeType":"image/)" + type + "\"}";
    }
};

TEST_F(ModelOf, APackedPictureIsWorn) {
    for (const bool jpeg : {false, true}) {
        GltfWriter writer;
        const int view = writer.addBytes(jpeg ? fieldsAsJpeg() : fieldsAsPng());
        const jString name = jpeg ? "jpeg.glb" : "png.glb";
        m_folder.write(name.c_str(),
                       writer.makeBinary(describe(writer, {inView(view, jpeg ? "jpeg" : "png")})));
        m_world.clear();
        show(name);
        EXPECT_EQ(quarters(), "rgbw") << name.c_str();
    }
    EXPECT_TRUE(m_log.lines.empty()) << m_log.lines.front();
}

// Beside the model, under a name that was written as an address, or on another machine.
TEST_F(ModelOf, APictureBesideTheModelIsFound) {
    std::filesystem::create_directories(m_folder.path() / "models/my maps");
    writeFields("models/my maps/four fields.png");
    writeFields("models/beside.png");
    for (const char* uri : {"my%20maps/four%20fields.png", "my maps\\\\four fields.png",
                            "C:\\\\work\\\\beside.png"}) {
        GltfWriter writer;
        const std::string rest = describe(writer, {std::string(R"({"uri":")") + uri + "\"}"});
        m_folder.write("models/card.gltf", writer.makeText(rest, "card.bin"));
        m_folder.write("models/card.bin", writer.getBinary());
        m_world.clear();
        Mesh::release();
        show("models/card.gltf");
        EXPECT_EQ(quarters(), "rgbw") << uri;
    }
    EXPECT_TRUE(m_log.lines.empty()) << m_log.lines.front();
}

// Scaled to the lower left quarter, and turned against the clock.
TEST_F(ModelOf, APictureMayBeMovedScaledAndTurned) {
    const std::pair<const char*, const char*> transforms[] = {
        {R"("offset":[0.5,0])", "grwb"},
        {R"("scale":[0.5,0.5],"offset":[0,0.5])", "bbbb"},
        {R"("rotation":1.5707963,"offset":[0,1])", "brwg"}};
    const std::string png = fieldsAsPng();
    for (const auto& [transform, seen] : transforms) {
        GltfWriter writer;
        Card card{inView(writer.addBytes(png), "png")};
        card.texture +=
            R"(,"extensions":{"KHR_texture_transform":{)" + std::string(transform) + "}}";
        m_folder.write("card.glb", writer.makeBinary(describe(writer, card)));
        m_world.clear();
        Mesh::release();
        show("card.glb");
        EXPECT_EQ(quarters(), seen) << transform;
    }
}
