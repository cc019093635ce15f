// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jString.h"
#include "ig/base/jVector.h"
#include "ig/math/vec.h"

#include <string_view>

namespace ig {

class Item;
class Package;

/// What lies at a place of a surface. The surface's object tells it (`Object::getGroundAt`), by its
/// material where that says so; the world passes it on to the emitters above.
struct Ground {
    /// What emitters work over: `land` is all that isn't water, `any` all. A surface is one of the
    /// others; `hard` is concrete and decks.
    enum class Kind { any, land, water, grass, sand, snow, hard };
    /// The kind of that name in scene files; `any` when there is none.
    static Kind find(std::string_view name);
    /// A surface of that kind that says nothing of its dust.
    static Ground of(Kind kind);

    Kind kind = Kind::any;
    /// What wind lifts off it: colour (linear), and how thick, 1 being the mist over water.
    vec4 lifted{1, 1, 1, 1};
};

/// How a surface or a finished picture looks: a set of parameters found by tag, each either a
/// slider (one number) or a value (four), of states found by name, which choose between ways to
/// draw, of textures found by name: picture files, and what kind of ground the surface is. A
/// material read from a file is shared by all its users and owned by the `MaterialManager`; a copy
/// of its own is owned by the object that asked for it.
class Material : public jObject {
public:
    /// The textures that surfaces know.
    static constexpr const char* PICTURES[] = {"base_color", "normal", "metallic_roughness",
                                               "emissive", "occlusion"};

    /// Reads the parameters, states and textures of a material file. False, with one log line, when
    /// something in it is not what the format asks for; what was read before that stays.
    bool load(const jString& path);
    const jString& getPath() const { return m_path; }

    /// Adds a slider or a value; an existing tag is overwritten. Returns its id.
    int addSlider(const jString& tag, float value);
    int addValue(const jString& tag, const vec4& value);

    /// The id of the parameter with that tag, or −1.
    int findParameterIDByTag(const jString& tag) const;
    int getNumParameters() const { return m_parameters.size(); }
    /// Of an id below the number.
    const jString& getParameterTag(int id) const { return m_parameters[id].name; }
    /// An id out of range is ignored, and reads as 0.
    void setParameterSlider(int id, float value);
    float getParameterSlider(int id) const;
    void setParameterValue(int id, const vec4& value);
    vec4 getParameterValue(int id) const;
    /// Sets the slider of that tag; nothing when there is none.
    void setParameterSliderByName(const jString& tag, float value);

    /// Adds a state; an existing one is set. Returns its id.
    int addState(const jString& name, int value);
    /// The id of the state with that name, or −1.
    int findStateID(const jString& name) const;
    int getNumStates() const { return m_states.size(); }
    /// Of an id below the number.
    const jString& getStateName(int id) const { return m_states[id].name; }
    /// An id out of range is ignored, and reads as 0.
    void setStateValue(int id, int value);
    int getStateValue(int id) const;

    /// Names the picture file of a texture; an existing one is replaced.
    void setTexture(const jString& name, const jString& path);
    /// The path of the texture with that name, or null. Valid until textures are added or the
    /// material goes.
    const jString* findTexture(const jString& name) const;

    /// `any` when the file doesn't say.
    Ground::Kind getGround() const { return m_ground; }

private:
    struct State {
        jString name;
        int value;
    };
    struct Texture {
        jString name, path;
    };
    struct Parameter {
        jString name;
        vec4 value; // a slider is its x
    };
    bool refuse(const Item& item, const char* what, const jString& subject,
                const char* why = "") const;
    bool loadParameters(const Package& parameters);
    bool loadStates(const Package& states);
    bool loadTextures(const Package& textures);
    bool has(int id) const { return id >= 0 && id < m_parameters.size(); }
    bool hasState(int id) const { return id >= 0 && id < m_states.size(); }

    jString m_path;
    jVector<Parameter> m_parameters;
    jVector<State> m_states;
    jVector<Texture> m_textures;
    Ground::Kind m_ground = Ground::Kind::any;
};

/// The slider of that tag, or `otherwise` when there is no such tag or no material.
float readSlider(const Material* material, const char* tag, float otherwise);
/// The value of that tag, likewise.
vec4 readValue(const Material* material, const char* tag, const vec4& otherwise);

/// The shared materials of the process, by path.
class MaterialManager {
public:
    /// The material of that file, read once; null when it cannot be read (logged once).
    static Material* get(const jString& path);
    /// Frees all of them; no object may be alive.
    static void release();
};

} // namespace ig
