// SPDX-License-Identifier: MIT
#include "Writers.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>

namespace {

const char* const USAGE = R"(Writes the files that are made from the tables of the two datagrams.

  wire_files FOLDER           writes them below the root of a checkout
  wire_files --check FOLDER   names those that are not as they would be written; then exits 1
)";

struct File {
    const char* path;
    std::string (*make)(const std::string& present); ///< given what is there
    bool is_filled_in = false; ///< more than the tables: without what is there it can't be made
};
const File FILES[] = {
    {"examples/visual_channel_wire.h", [](const std::string&) { return cHeader(); }},
    {"examples/visual_channel.lua", [](const std::string&) { return dissector(); }},
    {"examples/visual_channel.xml", [](const std::string&) { return protocolFile(); }},
    {"docs/connect.md", [](const std::string& page) { return withFieldTables(page); }, true},
};

/// The whole file; nothing when it can't be read.
std::optional<std::string> contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) return {};
    return text.str();
}

/// False, with a line on standard error, when the file is not, or could not be made, as it should.
bool settle(const std::filesystem::path& folder, const File& what, bool check) {
    const std::filesystem::path path = folder / what.path;
    const std::optional<std::string> present = contentOf(path);
    if (!present && what.is_filled_in) {
        std::cerr << path.string() << ": cannot be read, and is only filled in\n";
        return false;
    }
    const std::string wanted = what.make(present.value_or(""));
    if (present == wanted) return true;
    if (check) {
        std::cerr << path.string()
                  << " is not as the tables in common/wire have it: run wire_files\n";
        return false;
    }
    std::ofstream file(path, std::ios::binary);
    file << wanted;
    if (file.flush()) return true;
    std::cerr << path.string() << ": " << std::strerror(errno) << '\n';
    return false;
}

} // namespace

int main(int argc, char** argv) {
    const bool check = argc == 3 && std::strcmp(argv[1], "--check") == 0;
    if (argc != 2 && !check) {
        std::cerr << USAGE;
        return 2;
    }
    const std::filesystem::path folder = argv[argc - 1];
    bool good = true;
    for (const File& file : FILES)
        good = settle(folder, file, check) && good;
    return good ? 0 : 1;
}
