// SPDX-License-Identifier: MIT
#pragma once

#include "PlaceGround.h"

#include <map>
#include <string>
#include <vector>

namespace world_commands {

/// The files of a new place, from those of the template folder, in which ${...} stands for what the
/// place is:
///
///   ${name}, ${folder}              of the place
///   ${rasters}                      the paths of its rasters, as a list
///   ${longitude}, ${latitude}       of the pad's middle, degrees
///   ${pad}                          altitude of its top, m
///   ${above}                        how far that is above the highest ground below it, m
///   ${at EAST NORTH UP}             [longitude, latitude, altitude], metres from the pad's middle
///   ${sea}                          the same for the still sea at the pad's middle
///   ${sea 1}, ${sea 2}              and for a ship on open water
///   ${has_sea}                      true when there is such water
///   ${clear REACH UP}               altitude so far above the highest ground within reach
///   ${afloat PREFAB}                path of a copy of a ship in the folder, whose body floats at
///                                   the drawn waterline at this latitude
class PlaceFiles {
public:
    /// The ground has been read; folder and rasters are as the world file is to name them.
    PlaceFiles(const PlaceGround& ground, std::string name, std::string folder,
               std::vector<std::string> rasters);

    /// Makes all files. False, with one log line, when the template makes no sense.
    bool make(const std::string& template_folder);
    /// Writes them into the folder, which is made. False, with one log line and nothing left behind
    /// but the folder, when one is there already or can't be written.
    bool write() const;
    const std::vector<std::string>& getNames() const { return m_names; } ///< without folder
    bool hasSea() const { return m_ships.size() == 2; }
    double getPad() const { return m_pad; } ///< altitude of its top, m

private:
    bool fill(const std::string& text, std::string& filled);
    bool replace(const std::vector<std::string>& words, std::string& value);
    bool copyAfloat(const std::string& path, std::string& copy);
    void add(const std::string& name, std::string text);
    std::string describe(double east, double north, double altitude) const;

    const PlaceGround& m_ground;
    std::string m_name, m_folder;
    std::vector<std::string> m_rasters;
    double m_pad;
    std::vector<ig::dvec2> m_ships;
    std::vector<std::string> m_names;
    std::map<std::string, std::string> m_texts; ///< by name
};

} // namespace world_commands
