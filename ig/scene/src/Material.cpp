// SPDX-License-Identifier: MIT
#include "ig/scene/Material.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"

#include <algorithm>
#include <map>
#include <memory>

namespace ig {

namespace {
/// Index of the entry of that name, or −1.
int findNamed(const auto& entries, const jString& name) {
    for (int i = 0; i < entries.size(); i++)
        if (entries[i].name == name) return i;
    return -1;
}

/// The entry of that name, added when there is none.
auto& getNamed(auto& entries, const jString& name) {
    const int i = findNamed(entries, name);
    return i >= 0 ? entries[i] : entries.append({name, {}});
}
} // namespace

Ground::Kind Ground::find(std::string_view name) {
    constexpr std::string_view NAMES[] = {"land", "water", "grass", "sand", "snow", "hard"};
    const auto* const known = std::ranges::find(NAMES, name);
    return known == std::end(NAMES) ? Kind::any : static_cast<Kind>(known - NAMES + 1);
}

Ground Ground::of(Kind kind) {
    switch (kind) {
    case Kind::water:
        return {kind, {0.84f, 0.88f, 0.92f, 1}};
    case Kind::grass:
        return {kind, {0.24f, 0.2f, 0.1f, 0.9f}};
    case Kind::sand:
        return {kind, {0.5f, 0.41f, 0.27f, 3.2f}};
    case Kind::snow:
        return {kind, {0.82f, 0.87f, 0.95f, 3.6f}};
    default:
        return {kind, {0.42f, 0.41f, 0.4f, 0.6f}};
    }
}

bool Material::load(const jString& path) {
    m_path = path;
    const Package* file = PackageManager::get(path, "Material::load");
    if (!file) return false;
    const Package* parameters = file->getPackage("parameters");
    if (!parameters) {
        jLog::error("Material::load: %s:1: there is no map \"parameters\"", path.c_str());
        return false;
    }
    file->warnUnknownKeys("Material::load", {"parameters", "states", "textures", "ground"});
    m_ground = Ground::find(file->getString("ground").view());
    if (m_ground == Ground::Kind::land) m_ground = Ground::Kind::any; // no single kind either
    if (const Item* ground = file->getItem("ground"); ground && m_ground == Ground::Kind::any)
        refuse(*ground, "unknown ground ", ground->getString());
    const Package* states = file->getPackage("states");
    const Package* textures = file->getPackage("textures");
    return loadParameters(*parameters) && (!states || loadStates(*states)) &&
           (!textures || loadTextures(*textures));
}

/// Logs what is wrong with an item: `what "subject"why`. False.
bool Material::refuse(const Item& item, const char* what, const jString& subject,
                      const char* why) const {
    jLog::error("Material::load: %s:%d: %s\"%s\"%s", m_path.c_str(), item.getLine(), what,
                subject.c_str(), why);
    return false;
}

bool Material::loadParameters(const Package& parameters) {
    for (int i = 0; i < parameters.getItemCount(); i++) {
        const Item& item = parameters.getItemAt(i);
        float values[4];
        const int count = item.getFloats(values, 4);
        if (count < 1 || (count == 1 && item.getKind() != Item::Kind::value))
            return refuse(item, "", item.getName(), " is neither a number nor 2 to 4 numbers");
        if (count == 2 || count == 3) values[3] = 1; // an alpha that is not given
        addValue(item.getName(), {values[0], values[1], values[2], values[3]});
    }
    return true;
}

bool Material::loadStates(const Package& states) {
    for (int i = 0; i < states.getItemCount(); i++) {
        const Item& item = states.getItemAt(i);
        double value = 0;
        if (item.getKind() != Item::Kind::value || item.getDoubles(&value, 1) != 1)
            return refuse(item, "state ", item.getName(), " is no number");
        addState(item.getName(), item.getInt());
    }
    return true;
}

bool Material::loadTextures(const Package& textures) {
    for (int i = 0; i < textures.getItemCount(); i++) {
        const Item& item = textures.getItemAt(i);
        if (item.getKind() != Item::Kind::value || item.getString().empty())
            return refuse(item, "texture ", item.getName(), " is no path");
        setTexture(item.getName(), item.getString());
    }
    return true;
}

int Material::addSlider(const jString& tag, float value) { return addValue(tag, {value, 0, 0, 0}); }

int Material::addValue(const jString& tag, const vec4& value) {
    Parameter& parameter = getNamed(m_parameters, tag);
    parameter.value = value;
    return static_cast<int>(&parameter - m_parameters.data());
}

int Material::findParameterIDByTag(const jString& tag) const {
    return findNamed(m_parameters, tag);
}

void Material::setParameterSlider(int id, float value) {
    if (has(id)) m_parameters[id].value.x = value;
}

float Material::getParameterSlider(int id) const { return has(id) ? m_parameters[id].value.x : 0; }

void Material::setParameterValue(int id, const vec4& value) {
    if (has(id)) m_parameters[id].value = value;
}

vec4 Material::getParameterValue(int id) const { return has(id) ? m_parameters[id].value : vec4(); }

void Material::setParameterSliderByName(const jString& tag, float value) {
    setParameterSlider(findParameterIDByTag(tag), value);
}

int Material::addState(const jString& name, int value) {
    State& state = getNamed(m_states, name);
    state.value = value;
    return static_cast<int>(&state - m_states.data());
}

int Material::findStateID(const jString& name) const { return findNamed(m_states, name); }

void Material::setStateValue(int id, int value) {
    if (hasState(id)) m_states[id].value = value;
}

int Material::getStateValue(int id) const { return hasState(id) ? m_states[id].value : 0; }

void Material::setTexture(const jString& name, const jString& path) {
    getNamed(m_textures, name).path = path;
}

const jString* Material::findTexture(const jString& name) const {
    const int i = findNamed(m_textures, name);
    return i < 0 ? nullptr : &m_textures[i].path;
}

namespace {
/// The parameter's id, without a jString being made of the tag.
int find(const Material* material, std::string_view tag) {
    if (!material) return -1;
    for (int i = 0; i < material->getNumParameters(); i++)
        if (material->getParameterTag(i).view() == tag) return i;
    return -1;
}
} // namespace

float readSlider(const Material* material, const char* tag, float otherwise) {
    const int id = find(material, tag);
    return id < 0 ? otherwise : material->getParameterSlider(id);
}

vec4 readValue(const Material* material, const char* tag, const vec4& otherwise) {
    const int id = find(material, tag);
    return id < 0 ? otherwise : material->getParameterValue(id);
}

namespace {
std::map<jString, std::unique_ptr<Material>>& materials() {
    static std::map<jString, std::unique_ptr<Material>> map;
    return map;
}
} // namespace

Material* MaterialManager::get(const jString& path) {
    auto [entry, is_new] = materials().try_emplace(path);
    if (is_new) {
        auto material = std::make_unique<Material>();
        if (material->load(path)) entry->second = std::move(material);
    }
    return entry->second.get();
}

void MaterialManager::release() { materials().clear(); }

} // namespace ig
