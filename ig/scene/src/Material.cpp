// SPDX-License-Identifier: MIT
#include "ig/scene/Material.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"

#include <map>
#include <memory>

namespace ig {

bool Material::load(const jString& path) {
    m_path = path;
    const Package* file = PackageManager::get(path, "Material::load");
    if (!file) return false;
    const Package* parameters = file->getPackage("parameters");
    if (!parameters) {
        jLog::error("Material::load: %s:1: there is no map \"parameters\"", path.c_str());
        return false;
    }
    const jString& ground = file->getString("ground");
    m_ground = Ground::find(ground.view());
    if (m_ground == Ground::Kind::any && !ground.empty())
        jLog::error("Material::load: %s:%d: unknown ground \"%s\"", path.c_str(),
                    file->getItem("ground")->getLine(), ground.c_str());
    const Package* states = file->getPackage("states");
    const Package* textures = file->getPackage("textures");
    return loadParameters(*parameters) && (!states || loadStates(*states)) &&
           (!textures || loadTextures(*textures));
}

bool Material::loadParameters(const Package& parameters) {
    for (int i = 0; i < parameters.getItemCount(); i++) {
        const Item& item = parameters.getItemAt(i);
        float values[4];
        const int count = item.getFloats(values, 4);
        if (count == 1 && item.getKind() == Item::Kind::value) {
            addSlider(item.getName(), values[0]);
        } else if (count >= 2) {
            if (count < 4) values[3] = 1; // an alpha that is not given
            addValue(item.getName(), {values[0], values[1], values[2], values[3]});
        } else {
            jLog::error("Material::load: %s:%d: \"%s\" is neither a number nor 2 to 4 numbers",
                        m_path.c_str(), item.getLine(), item.getName().c_str());
            return false;
        }
    }
    return true;
}

bool Material::loadStates(const Package& states) {
    for (int i = 0; i < states.getItemCount(); i++) {
        const Item& item = states.getItemAt(i);
        double value = 0;
        if (item.getKind() != Item::Kind::value || item.getDoubles(&value, 1) != 1) {
            jLog::error("Material::load: %s:%d: state \"%s\" is no number", m_path.c_str(),
                        item.getLine(), item.getName().c_str());
            return false;
        }
        addState(item.getName(), item.getInt());
    }
    return true;
}

bool Material::loadTextures(const Package& textures) {
    for (int i = 0; i < textures.getItemCount(); i++) {
        const Item& item = textures.getItemAt(i);
        if (item.getKind() != Item::Kind::value || item.getString().empty()) {
            jLog::error("Material::load: %s:%d: texture \"%s\" is no path", m_path.c_str(),
                        item.getLine(), item.getName().c_str());
            return false;
        }
        setTexture(item.getName(), item.getString());
    }
    return true;
}

Material::Parameter& Material::add(const jString& tag) {
    const int id = findParameterIDByTag(tag);
    return id >= 0 ? m_parameters[id] : m_parameters.append({tag, {}});
}

int Material::addSlider(const jString& tag, float value) { return addValue(tag, {value, 0, 0, 0}); }

int Material::addValue(const jString& tag, const vec4& value) {
    Parameter& parameter = add(tag);
    parameter.value = value;
    return static_cast<int>(&parameter - m_parameters.data());
}

int Material::findParameterIDByTag(const jString& tag) const {
    for (int i = 0; i < m_parameters.size(); i++)
        if (m_parameters[i].tag == tag) return i;
    return -1;
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
    int id = findStateID(name);
    if (id < 0) {
        id = m_states.size();
        m_states.append({name, 0});
    }
    m_states[id].value = value;
    return id;
}

int Material::findStateID(const jString& name) const {
    for (int i = 0; i < m_states.size(); i++)
        if (m_states[i].name == name) return i;
    return -1;
}

void Material::setStateValue(int id, int value) {
    if (hasState(id)) m_states[id].value = value;
}

int Material::getStateValue(int id) const { return hasState(id) ? m_states[id].value : 0; }

void Material::setTexture(const jString& name, const jString& path) {
    for (int i = 0; i < m_textures.size(); i++)
        if (m_textures[i].name == name) {
            m_textures[i].path = path;
            return;
        }
    m_textures.append({name, path});
}

const jString* Material::findTexture(const jString& name) const {
    for (int i = 0; i < m_textures.size(); i++)
        if (m_textures[i].name == name) return &m_textures[i].path;
    return nullptr;
}

namespace {
// Short tags stay within jString's own storage: asking costs no allocation.
int find(const Material* material, const char* tag) {
    return material ? material->findParameterIDByTag(tag) : -1;
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
