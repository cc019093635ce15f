// SPDX-License-Identifier: MIT
#include "FieldsScene.h"
#include "testkit/GltfWriter.h"
#include "testkit/jpegBytes.h"

#include <epoxy/gl.h>

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

// ------------------------------------------------------------------ the other pictures

namespace {

using Texel = std::array<int, 4>; ///< red, green, blue, opacity

/// Of one row, as the file of plain pixels that takes the fewest lines to write.
std::string rowOf(const std::vector<Texel>& texels) {
    std::string file("DDS ", 4);
    const auto put = [&file](std::size_t at, unsigned value) {
        file.resize(std::max<std::size_t>(file.size(), 128));
        for (std::size_t i = 0; i < 4; i++)
            file[at + i] = static_cast<char>(value >> 8 * i & 255);
    };
    const std::pair<std::size_t, unsigned> words[] = {
        {4, 124},     {12, 1},     {16, static_cast<unsigned>(texels.size())},
        {80, 65},     {88, 32},    {92, 0xFF0000},
        {96, 0xFF00}, {100, 0xFF}, {104, 0xFF000000}};
    for (const auto& [at, value] : words)
        put(at, value);
    for (const Texel& t : texels)
        for (const int value : {t[2], t[1], t[0], t[3]})
            file += static_cast<char>(value);
    return file;
}

} // namespace

/// A card with pictures of its own, and what is seen of it.
class FinishedModel : public FieldsScene {
public:
    /// `material` refers to the pictures by their order.
    void wear(const std::string& material, const std::vector<std::string>& pictures,
              GltfWriter writer = {}, const std::string& attributes = "") {
        std::string images, textures;
        for (std::size_t i = 0; i < pictures.size(); i++) {
            const std::string comma = i ? "," : "";
            textures += comma + R"({"source":)" + std::to_string(i) + "}";
            images += comma + R"({"mimeType":"image/png","bufferView":)" +
                      std::to_string(writer.addBytes(pictures[i])) + "}";
        }
        const std::string card = writer.addCard(attributes);
        const std::string lists =
            pictures.empty() ? ""
                             : R"(,"textures":[)" + textures + R"(],"images":[)" + images + "]";
        const std::string name = std::to_string(s_number++) + ".glb";
        m_folder.write(name,
                       writer.makeBinary(
                           R"("scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
            "meshes":[{"primitives":[{)" +
                           card + R"(,"material":0}]}],"materials":[{)" + material + "}]" + lists));
        m_world.clear();
        show(name.c_str());
    }
    int brightness(double x = 0.5, double y = 0.5) {
        const std::uint8_t* p = pixel(x, y);
        return p[0] + p[1] + p[2];
    }
    static inline int s_number =
        0; ///< the renderer, which all tests share, keeps pictures by their names
};

// The sun stands high in the south, which the card faces.
TEST_F(FinishedModel, ANormalMapBendsUpwardsByItsGreenAndRightwardsByItsRed) {
    const auto bent = [this](const Texel& t, double turn) {
        wear(R"("normalTexture":{"index":0},"pbrMetallicRoughness":{"metallicFactor":0})",
             {rowOf({t})});
        auto* card = m_world.getNodes()[0];
        if (turn != 0)
            card->setTransform(card->getTransform() *
                               dmat4(dmat3{{0, turn, 0}, {-turn, 0, 0}, {0, 0, 1}}, dvec3()));
        draw();
        return brightness();
    };
    const Texel flat{128, 128, 255, 255}, up{128, 218, 218, 255}, down{128, 38, 218, 255},
        right{218, 128, 218, 255}, left{38, 128, 218, 255};
    const int middle = bent(flat, 0);
    EXPECT_GT(bent(up, 0), middle + 20);
    EXPECT_LT(bent(down, 0), middle - 20);
    EXPECT_GT(bent(right, 1), middle + 20) << "its right is up now";
    EXPECT_LT(bent(left, 1), middle - 20);
    EXPECT_GT(bent(left, -1), middle + 20);
}

TEST_F(FinishedModel, MetalnessRoughnessAndOcclusionComeFromTheirChannels) {
    const auto worn = [this](const Texel& t, const char* more = "") {
        wear(std::string(R"("pbrMetallicRoughness":{"baseColorFactor":[0.8,0.1,0.1,1],)"
                         R"("metallicRoughnessTexture":{"index":0}})") +
                 more,
             {rowOf({t})});
        return brightness();
    };
    const int dull = worn({255, 255, 0, 255});
    EXPECT_NEAR(worn({0, 255, 0, 255}), dull, 3) << "red is nothing to them";
    EXPECT_GT(std::abs(worn({255, 255, 255, 255}) - dull), 40) << "metal";
    EXPECT_GT(std::abs(worn({255, 60, 255, 255}) - worn({255, 255, 255, 255})), 40)
        << "smooth metal";
    const char* const shared = R"(,"occlusionTexture":{"index":0})";
    EXPECT_NEAR(worn({255, 255, 0, 255}, shared), dull, 3);
    EXPECT_LT(worn({0, 255, 0, 255}, shared), dull - 20);
    EXPECT_NEAR(worn({0, 255, 0, 255}, R"(,"occlusionTexture":{"index":0,"strength":0})"), dull, 3);
}

TEST_F(FinishedModel, ItGlowsByItsSecondCoordinatesAndIsColoredByItsCorners) {
    GltfWriter writer;
    const int turned = writer.addNumbers<float>({1, 0, 0, 0, 0, 0, 1, 0}, 2); // right to left
    wear(R"("emissiveFactor":[1,1,1],"emissiveTexture":{"index":0,"texCoord":1},
            "pbrMetallicRoughness":{"baseColorFactor":[0,0,0,1]})",
         {rowOf({{255, 0, 0, 255}, {0, 255, 0, 255}})}, writer,
         R"(,"TEXCOORD_1":)" + std::to_string(turned));
    EXPECT_EQ(quarters(), "grgr");

    GltfWriter other;
    const int colors = other.addNumbers<std::uint8_t>(
        {255, 0, 0, 255, 0, 255, 0, 255, 0, 255, 0, 255, 255, 0, 0, 255}, 4,
        R"(,"normalized":true)");
    wear(R"("pbrMetallicRoughness":{"metallicFactor":0})", {}, other,
         R"(,"COLOR_0":)" + std::to_string(colors));
    EXPECT_EQ(quarters(), "rgrg");
}

TEST_F(FinishedModel, AMaskLeavesHolesAndABlendShowsWhatIsBehind) {
    const std::string half = rowOf({{255, 0, 0, 255}, {255, 0, 0, 120}});
    const auto seen = [&](const char* mode) {
        wear(std::string(
                 R"("pbrMetallicRoughness":{"metallicFactor":0,"baseColorTexture":{"index":0}})") +
                 mode,
             {half});
        return quarters();
    };
    EXPECT_EQ(seen(""), "rrrr");
    const std::string hole = seen(R"(,"alphaMode":"MASK")");
    EXPECT_TRUE(hole[0] == 'r' && hole[1] != 'r') << hole;
    EXPECT_EQ(seen(R"(,"alphaMode":"MASK","alphaCutoff":0.4)"), "rrrr");
    seen(R"(,"alphaMode":"BLEND")");
    const int opaque = pixel(0.46, 0.5)[2], thin = pixel(0.54, 0.5)[2];
    EXPECT_GT(thin, opaque + 40) << "the sky's blue";
}

TEST_F(FinishedModel, APictureThatTheDeviceCantTakeIsNamedAndShowsMagenta) {
    GLint longest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longest);
    wear(R"("pbrMetallicRoughness":{"metallicFactor":0,"baseColorTexture":{"index":0}})",
         {rowOf(std::vector<Texel>(static_cast<std::size_t>(longest) + 1, {0, 255, 0, 255}))});
    EXPECT_TRUE(logged("along an edge that the graphics device takes"));
    const std::string seen = quarters();
    EXPECT_NE(seen.find('m'), std::string::npos) << seen;
}

// Tag by tag; "none" takes a picture away.
TEST_F(FinishedModel, AMaterialFileGoesBeforeTheModel) {
    wear(R"("pbrMetallicRoughness":{"metallicFactor":0,"baseColorTexture":{"index":0}})",
         {rowOf({{255, 0, 0, 255}})});
    EXPECT_EQ(quarters(), "rrrr");
    auto* card = static_cast<Object*>(m_world.getNodes()[0]);
    Material skin;
    card->setSurfaceMaterial(0, &skin);
    skin.addSlider("roughness", 0.3f);
    draw();
    EXPECT_EQ(quarters(), "rrrr");
    skin.setTexture("base_color", "none");
    skin.addValue("diffuse_color", {0, 1, 0, 1});
    draw();
    EXPECT_EQ(quarters(), "gggg");
    m_world.clear();
}
