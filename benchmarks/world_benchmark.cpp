// SPDX-License-Identifier: MIT

// A world as large as a gaming area: 13,000 by 13,000 heights at 30 m with a picture over all of it
// and a land cover, built once by a process of its own, and flown over with a driver that only
// counts. What is timed on the frame's thread is elapsed time: waiting for a file is just what must
// not be.

#include "plugins/terrain/ObjectTerrain.h"
#include "plugins/terrain/WorldBuilder.h"
#include "ratio.h"
#include "render/gl/RendererGL.h"
#include "scenes.h"
#include "testkit/CountingDriver.h"
#include "testkit/TempFolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <gdal.h>
#include <iostream>
#include <ogr_srs_api.h>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace ig;

constexpr int EDGE = 13000, PICTURE_EDGE = 6000, COVER_EDGE = 12000;
constexpr double WEST = 8, NORTH = 56, STEP = 1 / 3600.0; // degrees
constexpr double FRAME = 1 / 60.0;                        // s

float heightAt(int column, int row) {
    return static_cast<float>(260 + 240 * std::sin(column * 0.0131) * std::cos(row * 0.0097) +
                              9 * std::sin(column * 0.71 + row * 0.53));
}

/// Of the ground's extent, in strips; `value` gives a line of a band.
template <class T, class F>
void writeRaster(const jString& path, int edge, int bands, GDALDataType type, const char* compress,
                 const F& value) {
    char tiled[] = "TILED=YES";
    std::string compression = std::string("COMPRESS=") + compress;
    char* options[] = {tiled, compression.data(), nullptr};
    GDALDatasetH file =
        GDALCreate(GDALGetDriverByName("GTiff"), path.c_str(), edge, edge, bands, type, options);
    const double pixel = EDGE * STEP / edge;
    double place[6] = {WEST - STEP / 2, pixel, 0, NORTH + STEP / 2, 0, -pixel};
    GDALSetGeoTransform(file, place);
    OGRSpatialReferenceH system = OSRNewSpatialReference(nullptr);
    OSRImportFromEPSG(system, 4326);
    GDALSetSpatialRef(file, system);
    OSRDestroySpatialReference(system);
    std::vector<T> line(static_cast<std::size_t>(edge));
    for (int row = 0; row < edge; row++)
        for (int band = 1; band <= bands; band++) {
            for (int column = 0; column < edge; column++)
                line[static_cast<std::size_t>(column)] = value(column, row, band);
            if (GDALRasterIO(GDALGetRasterBand(file, band), GF_Write, 0, row, edge, 1, line.data(),
                             edge, 1, type, 0, 0) != CE_None)
                std::_Exit(1);
        }
    GDALClose(file);
}

void build(const TerrainSources& sources) {
    GDALAllRegister();
    GDALSetCacheMax(256 << 20);
    writeRaster<float>(sources.rasters[0], EDGE, 1, GDT_Float32, "NONE",
                       [](int column, int row, int) { return heightAt(column, row); });
    writeRaster<std::uint8_t>(
        sources.imagery[0], PICTURE_EDGE, 3, GDT_Byte, "JPEG", [](int column, int row, int band) {
            return static_cast<std::uint8_t>(60 * band + 40 * ((column / 37 + row / 53) % 2));
        });
    writeRaster<std::uint8_t>(
        sources.land_cover.raster, COVER_EDGE, 1, GDT_Byte, "LZW", [](int column, int row, int) {
            return static_cast<std::uint8_t>(10 * (1 + (column / 300 + row / 200) % 4));
        });
    std::string failure;
    double seconds = 0;
    WorldBuilder::Result result{};
    seconds = measureSeconds(
        [&] { result = WorldBuilder(sources).build([](auto...) { return true; }, failure); });
    std::cerr << "built in " << seconds << " s\n";
    if (result == WorldBuilder::Result::built) std::_Exit(0);
    std::cerr << failure << '\n';
    std::_Exit(1);
}

/// The world's files: built by a process whose memory goes with it.
struct Files {
    Files() {
        sources.rasters = {folder.file("heights.tif")};
        sources.imagery = {folder.file("picture.tif")};
        sources.land_cover.raster = folder.file("cover.tif");
        sources.built = folder.file("built");
        const pid_t child = fork();
        if (child == 0) build(sources);
        int status = 1;
        waitpid(child, &status, 0);
        if (status != 0) std::exit(1);
        forget();
    }
    /// The next start finds nothing of them in memory.
    void forget() const {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
            if (!entry.is_regular_file()) continue;
            const int file = open(entry.path().c_str(), O_RDONLY);
            fdatasync(file);
            posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
            close(file);
        }
    }
    TempFolder folder;
    TerrainSources sources;
};

const Files& getFiles() {
    static const Files files;
    return files;
}

/// MiB of this process that lie in memory: its own, and of files.
void reportMemory(benchmark::State& state) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word != "RssAnon:" && word != "RssFile:" && word != "VmHWM:") continue;
        double kilobytes = 0;
        status >> kilobytes;
        word.pop_back();
        state.counters[word + "_MiB"] = kilobytes / 1024;
    }
}

/// From nothing in memory to a ground that answers; goal: 3 s.
void start(benchmark::State& state) {
    const Files& files = getFiles();
    for (auto _ : state) {
        ObjectTerrain terrain;
        double altitude = 0;
        state.counters["seconds"] = measureSeconds([&] {
            if (!terrain.load(files.sources)) std::exit(1);
            terrain.getAltitudeByLonLat(WEST + 1, NORTH - 1, &altitude, nullptr);
        });
        state.counters["goal"] = 3;
        reportMemory(state);
    }
}
BENCHMARK(start)->Iterations(1);

/// The ground alone, seen by a window that waits for nothing.
struct Flight {
    Flight() {
        renderer.init(1280, 720);
        terrain = new ObjectTerrain();
        if (!terrain->load(getFiles().sources)) std::exit(1);
        world.addNode(terrain);
        camera.setPerspective(50, 16.0f / 9, 0.1, 1e7);
        picture.particles = &particles;
        picture.hurried = true;
    }
    ~Flight() { renderer.release(); }
    /// A frame at its time, 50 m above the ground; the seconds that its thread spends.
    double draw(double longitude, double latitude, double heading) {
        double altitude = 0;
        terrain->getAltitudeByLonLat(longitude, latitude, &altitude, nullptr);
        camera.setWgsPosition({longitude, latitude, altitude + 50});
        camera.setWgsHPR({heading, 5, 0});
        const double seconds = measureSeconds([&] { renderer.render(world, camera, picture); });
        picture.time += FRAME;
        std::this_thread::sleep_for(std::chrono::duration<double>(std::max(FRAME - seconds, 0.0)));
        return seconds;
    }
    CountingDriver driver;
    RendererGL renderer{RendererGL::Surface::window};
    ParticleSystem particles;
    World world;
    ObjectTerrain* terrain = nullptr;
    Camera camera;
    FrameInfo picture = noon();
};

void report(benchmark::State& state, std::vector<double> times, double resting) {
    std::sort(times.begin(), times.end());
    state.counters["resting_ms"] = resting * 1e3;
    state.counters["p50_ms"] = times[times.size() / 2] * 1e3;
    state.counters["p99_ms"] = times[times.size() * 99 / 100] * 1e3;
    state.counters["worst_ms"] = times.back() * 1e3;
    const auto over = std::ranges::upper_bound(times, resting + 1e-3);
    state.counters["over_1ms"] = static_cast<double>(times.end() - over);
    state.counters["frames"] = static_cast<double>(times.size());
    reportMemory(state);
}

/// What a frame takes there when all that it shows is there.
double rest(Flight& flight, double longitude, double latitude, double heading) {
    std::vector<double> times;
    for (int i = 0; i < 240; i++)
        times.push_back(flight.draw(longitude, latitude, heading));
    times.erase(times.begin(), times.end() - 60);
    return median(times);
}

/// Half a minute at 80 m/s; what paging adds to a frame is to stay below 1 ms.
void lowAndFast(benchmark::State& state) {
    Flight flight;
    for (auto _ : state) {
        const double resting = rest(flight, WEST + 1, NORTH - 1.5, 0);
        std::vector<double> times;
        for (int i = 0; i < 1800; i++)
            times.push_back(flight.draw(WEST + 1, NORTH - 1.5 + 80 * FRAME * i / 111300, 0));
        report(state, std::move(times), resting);
    }
}
BENCHMARK(lowAndFast)->Iterations(1)->Unit(benchmark::kSecond);

/// To places 100 km and more away, where nothing has been read; queries there are right at once.
void jumps(benchmark::State& state) {
    Flight flight;
    getFiles().forget();
    for (auto _ : state) {
        const double first = flight.draw(WEST + 1, NORTH - 1.5, 90);
        state.counters["first_ms"] = first * 1e3;
        const double resting = rest(flight, WEST + 1, NORTH - 1.5, 90);
        std::vector<double> times, firsts;
        double wrong = 0, worst_query = 0;
        std::mt19937 engine(5);
        std::uniform_int_distribution<> any(10, EDGE - 10);
        for (int jump = 0; jump < 10; jump++) {
            const double longitude = WEST + (jump % 2 ? 0.5 : 2.9) + 0.03 * jump;
            const double latitude = NORTH - 0.5 - 0.25 * jump;
            for (int i = 0; i < 120; i++)
                times.push_back(flight.draw(longitude, latitude, 36 * jump));
            for (int i = 0; i < 100; i++) {
                const int column = any(engine), row = any(engine);
                double altitude = 0;
                worst_query = std::max(worst_query, measureSeconds([&] {
                                           flight.terrain->getAltitudeByLonLat(WEST + column * STEP,
                                                                               NORTH - row * STEP,
                                                                               &altitude, nullptr);
                                       }));
                wrong += std::abs(altitude - static_cast<double>(heightAt(column, row))) > 0.01;
            }
        }
        report(state, std::move(times), resting);
        state.counters["wrong_heights"] = wrong;
        state.counters["worst_query_ms"] = worst_query * 1e3;
    }
}
BENCHMARK(jumps)->Iterations(1)->Unit(benchmark::kSecond);

/// A thousand altitudes all over the ground, whose samples have been read before, against as many
/// on the same ground in memory.
void altitudes(benchmark::State& state) {
    const Files& files = getFiles();
    ObjectTerrain built, loaded;
    TerrainSources heights;
    heights.rasters = files.sources.rasters;
    if (!built.load(files.sources) || !loaded.load(heights)) std::exit(1);
    std::mt19937 engine(7);
    std::uniform_real_distribution<> along(0.1, 3.5);
    std::vector<dvec2> places;
    for (int i = 0; i < 20000; i++)
        places.push_back({WEST + along(engine), NORTH - along(engine)});
    std::size_t at = 0;
    const auto ask = [&](const ObjectTerrain& terrain) {
        double sum = 0, altitude = 0;
        for (std::size_t i = at; i < at + 1000; i++) {
            terrain.getAltitudeByLonLat(places[i % places.size()].x, places[i % places.size()].y,
                                        &altitude, nullptr);
            sum += altitude;
        }
        benchmark::DoNotOptimize(sum);
    };
    for (; at < places.size(); at += 1000)
        ask(built);
    PairedTimes times;
    for (auto _ : state) {
        times.measure([&] { ask(built); }, [&] { ask(loaded); });
        at += 1000;
    }
    times.report(state);
}
BENCHMARK(altitudes)->Iterations(200)->Unit(benchmark::kMicrosecond);

} // namespace
