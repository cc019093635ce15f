// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

#include <cpl_error.h>
#include <gdal.h>
#include <memory>
#include <string>

namespace ig {

/// A virtual raster holds on to those that it is made of.
struct CloseRaster {
    void operator()(GDALDatasetH dataset) const { GDALReleaseDataset(dataset); }
};
using Dataset = std::unique_ptr<void, CloseRaster>;

/// Keeps GDAL from printing in this thread: its last message becomes part of ours.
struct QuietErrors {
    QuietErrors() {
        CPLErrorReset();
        CPLPushErrorHandler(CPLQuietErrorHandler);
    }
    ~QuietErrors() { CPLPopErrorHandler(); }
    QuietErrors(const QuietErrors&) = delete;
};
std::string getLastError(const char* fallback);

/// A raster file of this machine, or in an archive of it, in a format that refers to no other
/// place, or a mosaic (VRT) of such files. Null with the reason in `failure`; call it with
/// `QuietErrors`.
Dataset openRaster(const jString& path, std::string& failure);

} // namespace ig
