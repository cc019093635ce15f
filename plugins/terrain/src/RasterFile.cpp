// SPDX-License-Identifier: MIT
#include "RasterFile.h"

#include "program/InputFile.h"

#include <filesystem>
#include <string_view>

namespace ig {

namespace {

/// The formats that are read: each is one file of this machine, with what stands beside it. Others
/// follow references, to servers too.
constexpr const char* FORMATS[] = {"GTiff",   "DTED", "SRTMHGT", "AAIGrid", "EHdr",  "ENVI",
                                   "USGSDEM", "RST",  "GSAG",    "GSBG",    "GS7BG", "XYZ",
                                   "BT",      "PNG",  "GTX",     nullptr};

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

} // namespace

std::string getLastError(const char* fallback) {
    const std::string text = CPLGetLastErrorMsg();
    return text.empty() ? fallback : text;
}

Dataset openRaster(const jString& path, std::string& failure) {
    GDALAllRegister();
    failure = whyNotLocal(path.c_str());
    if (!failure.empty()) return nullptr;
    Dataset file(GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR, FORMATS, nullptr,
                            nullptr));
    if (!file) failure = getLastError("not a raster");
    return file;
}

} // namespace ig
