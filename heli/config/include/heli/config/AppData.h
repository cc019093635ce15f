// SPDX-License-Identifier: MIT
#pragma once

#include "ig/package/Package.h"

namespace ig {
class CameraControl;
}

/// The plug-in's configuration, one per process, read from "config/Logic_Nerith_Heli_Final.cfg" in
/// the working directory. Every getter has a fixed default; because a missing key reads as 0, false
/// or empty, a port of 0 or a frequency of 0.0 can't be configured. Main thread only.
class AppData final {
public:
    /// Created by the first call; lives as long as the process unless destroyed.
    static AppData* instance();
    /// Empties and destroys the instance.
    static void destroy_instance();

    virtual bool get_flag() const { return m_flag; }
    virtual void set_flag(bool flag) { m_flag = flag; }

    /// Replaces the content by that of the file, with a warning for every key that no getter reads.
    /// False, with one warning, when it can't be read; the content is then empty and every getter
    /// answers its default.
    bool load();
    bool save();
    void clear();

    // What the link goes by.
    const ig::jString& flightSimulation_ip(); ///< default "127.0.0.1"
    int recv_from_flightSimulation_port();    ///< default 10004
    int send_to_flightSimulation_port();      ///< default 10005

    // What the file may hold and this plug-in does not go by: feedback is sent once per frame,
    // records are taken every 0.01 s, and frame rate and picture are the application's.
    int recv_from_console_port();               ///< default 10222
    float send_to_flightsimulation_frequency(); ///< default 0.01
    int data_port();                            ///< default 6000
    double fps_limit();                         ///< default 6000
    bool show_fps();
    bool real_time_fps();
    bool vsync();

    /// Gives the camera controller the two "shear" values of a display channel below "slaves", 0
    /// when the channel has none, and rebuilds its projection. False, with nothing changed, when
    /// there are no slaves or no such channel.
    bool apply_slave_shear(const ig::jString& channel, ig::CameraControl* camera);

private:
    AppData() = default;
    ~AppData() = default;

    ig::Package m_package;
    bool m_flag = false;
};
