// SPDX-License-Identifier: MIT
#include "RasterFile.h"

#include "program/InputFile.h"

#include <cpl_conv.h>
#include <cpl_minixml.h>
#include <cpl_string.h>
#include <filesystem>
#include <string_view>

namespace ig {

namespace {

/// The formats that are read: each is one file of this machine, with what stands beside it. Others
/// follow references, to servers too; those of a mosaic are looked at first.
constexpr const char* FORMATS[] = {
    "GTiff", "DTED", "SRTMHGT", "AAIGrid", "EHdr", "ENVI",        "USGSDEM", "RST", "GSAG", "GSBG",
    "GS7BG", "XYZ",  "BT",      "PNG",     "JPEG", "JP2OpenJPEG", "GTX",     "VRT", nullptr};

/// Why a path isn't that of a file of this machine, or in an archive of it; "" when it is.
std::string whyNotLocal(const std::string& path) {
    constexpr std::string_view ARCHIVES[] = {"/vsizip/", "/vsitar/", "/vsigzip/"};
    std::string_view rest = path;
    for (const std::string_view archive : ARCHIVES)
        if (rest.starts_with(archive)) rest.remove_prefix(archive.size());
    if (rest.find("/vsi") != std::string_view::npos)
        return "only files of this machine are read, and of virtual ones those in archives: "
               "/vsizip/, /vsitar/, /vsigzip/";
    if (rest.size() == path.size()) return program::whyUnreadable(path);
    // The archive itself is somewhere on the way.
    std::error_code error;
    std::filesystem::path archive(rest);
    while (archive.has_relative_path() && !std::filesystem::exists(archive, error))
        archive = archive.parent_path();
    return program::whyUnreadable(archive.string());
}

constexpr int MOST_NESTED = 8; ///< mosaics in mosaics

bool isMosaic(const std::string& path) {
    const char* const drivers[] = {"VRT", nullptr};
    return GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, drivers, nullptr) != nullptr;
}

std::string whyRefused(const std::string& path, int depth);

/// Looks at every file that the description of a mosaic names, anywhere below `node`.
std::string whySourcesRefused(const CPLXMLNode* node, const std::string& folder, int depth) {
    for (; node; node = node->psNext) {
        const std::string_view name = node->pszValue ? node->pszValue : "";
        if (node->eType == CXT_Element &&
            (name.ends_with("Filename") || name.ends_with("Dataset"))) {
            const char* text = CPLGetXMLValue(node, nullptr, nullptr);
            const bool is_relative = CPLTestBool(CPLGetXMLValue(node, "relativeToVRT", "0"));
            if (text) {
                const std::string path =
                    is_relative ? CPLProjectRelativeFilename(folder.c_str(), text) : text;
                const std::string why = whyRefused(path, depth);
                if (!why.empty()) return "names \"" + path + "\": " + why;
            }
        }
        if (name == "PixelFunctionCode" || name == "PixelFunctionType")
            return "computes its pixels, which isn't read";
        if (std::string why = whySourcesRefused(node->psChild, folder, depth); !why.empty())
            return why;
    }
    return "";
}

struct DestroyXml {
    void operator()(CPLXMLNode* tree) const { CPLDestroyXMLNode(tree); }
};

std::string whyRefused(const std::string& path, int depth) {
    std::string why = whyNotLocal(path);
    if (!why.empty() || !isMosaic(path)) {
        if (why.empty() && !GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, FORMATS, nullptr))
            why = "is in none of the formats that are read";
        return why;
    }
    if (depth >= MOST_NESTED) return "its mosaics are nested too deep";
    const std::unique_ptr<CPLXMLNode, DestroyXml> tree(CPLParseXMLFile(path.c_str()));
    if (!tree) return getLastError("is damaged");
    return whySourcesRefused(tree.get(), CPLGetPath(path.c_str()), depth + 1);
}

} // namespace

std::string getLastError(const char* fallback) {
    const std::string text = CPLGetLastErrorMsg();
    return text.empty() ? fallback : text;
}

Dataset openRaster(const jString& path, std::string& failure) {
    GDALAllRegister();
    failure = whyNotLocal(path.c_str());
    if (failure.empty() && isMosaic(path.c_str())) failure = whyRefused(path.c_str(), 0);
    if (!failure.empty()) return nullptr;
    Dataset file(GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR, FORMATS, nullptr,
                            nullptr));
    if (!file) failure = getLastError("not a raster");
    return file;
}

} // namespace ig
