// SPDX-License-Identifier: MIT
#include "render/image/Pfm.h"

#include "program/InputFile.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <fstream>

namespace ig {

namespace {
constexpr int MOST_SIDE = 16384; ///< texels that a device takes
}

bool readPfm(const std::string& path, FloatMap& map, std::string& message) {
    const auto fail = [&](const std::string& why) {
        message = "cannot read \"" + path + "\": " + why;
        return false;
    };
    if (const std::string why = program::whyUnreadable(path); !why.empty()) return fail(why);
    std::ifstream file(path, std::ios::binary);
    std::string kind;
    double scale = 0;
    file >> kind >> map.width >> map.height >> scale;
    if (!file || (kind != "PF" && kind != "Pf") || scale == 0) return fail("it is no PFM file");
    if (std::min(map.width, map.height) < 1 || std::max(map.width, map.height) > MOST_SIDE)
        return fail("it must have 1 to 16384 numbers each way");
    file.get(); // the one character behind the head
    map.channels = kind == "PF" ? 3 : 1;
    const std::size_t row = static_cast<std::size_t>(map.width * map.channels);
    const auto begin = file.tellg();
    file.seekg(0, std::ios::end);
    const auto rest = static_cast<std::size_t>(file.tellg() - begin);
    if (rest != row * map.height * sizeof(float))
        return fail("its head says otherwise than its length");
    file.seekg(begin);
    map.values.resize(row * map.height);
    for (int y = map.height - 1; y >= 0; y--)
        file.read(reinterpret_cast<char*>(&map.values[row * y]),
                  static_cast<std::streamsize>(row * sizeof(float)));
    if (!file) return fail("it can't be read to its end");
    if (scale > 0) // the most significant byte first
        for (float& value : map.values)
            value = std::bit_cast<float>(__builtin_bswap32(std::bit_cast<std::uint32_t>(value)));
    return true;
}

} // namespace ig
