// SPDX-License-Identifier: MIT
#include "heli/config/AppData.h"

#include "ig/base/jLog.h"
#include "ig/package/mjl.h"
#include "ig/scene/CameraControl.h"

#include <cmath>
#include <new>

using namespace ig;

namespace {

const jString CONFIG_PATH = "config/Logic_Nerith_Heli_Final.cfg";

alignas(AppData) unsigned char g_storage[sizeof(AppData)];
AppData* g_instance = nullptr;

/// Every key that a getter reads.
const std::vector<std::string> KEYS = {"flightSimulation_ip",
                                       "recv_from_flightSimulation_port",
                                       "send_to_flightSimulation_port",
                                       "recv_from_console_port",
                                       "send_to_flightsimulation_frequency",
                                       "data_port",
                                       "fps_limit",
                                       "show_fps",
                                       "real_time_fps",
                                       "vsync",
                                       "slaves"};

template <class T>
T orDefault(T value, T fallback) {
    return value == T(0) ? fallback : value;
}

} // namespace

AppData* AppData::instance() {
    if (!g_instance) g_instance = ::new (g_storage) AppData;
    return g_instance;
}

void AppData::destroy_instance() {
    if (!g_instance) return;
    g_instance->clear();
    g_instance->~AppData();
    g_instance = nullptr;
}

bool AppData::load() {
    m_package.release();
    if (mjl::open(CONFIG_PATH, &m_package, false)) {
        m_package.warnUnknownKeys("AppData::load", KEYS);
        return true;
    }
    jLog::warning("Open config file failed:%s, use default config", CONFIG_PATH.c_str());
    return false;
}

bool AppData::save() { return mjl::save(CONFIG_PATH, &m_package, false); }

void AppData::clear() { m_package.release(); }

const jString& AppData::flightSimulation_ip() {
    static const jString LOOPBACK = "127.0.0.1";
    const jString& ip = m_package.getString("flightSimulation_ip");
    return ip.empty() ? LOOPBACK : ip;
}

int AppData::recv_from_flightSimulation_port() {
    return orDefault(m_package.getInt("recv_from_flightSimulation_port"), 10004);
}

int AppData::send_to_flightSimulation_port() {
    return orDefault(m_package.getInt("send_to_flightSimulation_port"), 10005);
}

int AppData::recv_from_console_port() {
    return orDefault(m_package.getInt("recv_from_console_port"), 10222);
}

float AppData::send_to_flightsimulation_frequency() {
    return orDefault(m_package.getFloat("send_to_flightsimulation_frequency"), 0.01f);
}

int AppData::data_port() { return orDefault(m_package.getInt("data_port"), 6000); }
double AppData::fps_limit() { return orDefault(m_package.getDouble("fps_limit"), 6000.0); }
bool AppData::show_fps() { return m_package.getBool("show_fps"); }
bool AppData::real_time_fps() { return m_package.getBool("real_time_fps"); }
bool AppData::vsync() { return m_package.getBool("vsync"); }

bool AppData::apply_slave_shear(const jString& channel, CameraControl* camera) {
    const Package* slaves = m_package.getPackage("slaves");
    const Package* slave = slaves ? slaves->getPackage(channel) : nullptr;
    if (!slave) return false;
    float shear[2] = {0, 0};
    slave->getFloats("shear", shear, 2);
    for (float& value : shear)
        if (!std::isfinite(value)) value = 0;
    camera->setShear(shear[0], shear[1]);
    camera->updateProjection();
    return true;
}
