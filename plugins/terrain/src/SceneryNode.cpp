// SPDX-License-Identifier: MIT

// The node type "scenery" in world files, and the file of places that one may name.

#include "plugins/terrain/ObjectScenery.h"

#include "ig/base/jLog.h"
#include "ig/base/nearest.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Material.h"
#include "ig/scene/NodeReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ig {

using enum NodeKeys::Kind;

namespace {

const NodeSchema KIND{"kinds",
                      {{"kinds",
                        {{text, {"name", "mesh"}},
                         {texts, {"materials"}},
                         {pair, {"height"}, nullptr, 0.01, 200},
                         {flag, {"tree", "intersect"}}}}}};

const NodeSchema STAND{
    "stands",
    {{"stands",
      {{text, {"land", "kind"}}, {number, {"density", "steepest"}}, {pair, {"altitude"}}}}}};

const NodeSchema CLEARING{"clearings",
                          {{"clearings", {{triple, {"from", "to"}}, {number, {"width"}}}}}};

const NodeSchema SITE{"sites", {{"sites", {{text, {"kind"}}, {triple, {"at"}}}}}};

const NodeSchema FILE_SCHEMA{
    "scenery_file",
    {{"scenery_file", {{list, {"clearings"}, &CLEARING}, {list, {"sites"}, &SITE}}}}};

/// Its index; −1, reported, for one that there isn't.
int findKind(const NodeReader& r, const ObjectScenery::Plan& plan) {
    const jString& name = r.getText("kind");
    std::vector<std::string> known;
    for (std::size_t i = 0; i < plan.kinds.size(); i++) {
        if (plan.kinds[i].name == name) return static_cast<int>(i);
        known.push_back(plan.kinds[i].name.c_str());
    }
    r.report(("no kind of scenery" + nearest(name.view(), known) + "; there is none of").c_str(),
             name, "kind");
    return -1;
}

/// A number above 0, not above `most`; false, reported, for another. True when the key is absent.
bool readPositive(const NodeReader& r, const char* key, float most, float& out) {
    const float value = r.getNumber(key, out);
    if (value > 0 && value <= most) {
        out = value;
        return true;
    }
    r.report(("a number above 0 and up to " + std::to_string(std::lround(most)) + " is needed in")
                 .c_str(),
             key, key);
    return false;
}

/// Reported when there is no model.
void addKind(const NodeReader& r, ObjectScenery::Plan& plan) {
    SceneryKind kind;
    kind.name = r.getText("name");
    kind.mesh = Mesh::get(r.getText("mesh"));
    if (!kind.mesh || !(kind.mesh->getHighest().z > 0)) {
        r.report(kind.mesh ? "nothing of the model is above its foot, its origin:" : "no mesh from",
                 r.getText("mesh"), "mesh");
        kind.mesh = Mesh::getPlaceholder(); // shows where something is missing
    }
    kind.materials.resize(static_cast<std::size_t>(kind.mesh->getNumSurfaces()));
    std::size_t i = 0;
    for (const jString& path : r.getTexts("materials"))
        if (i < kind.materials.size()) kind.materials[i++] = MaterialManager::get(path);
    r.readPair("height", kind.height);
    if (kind.height.x > kind.height.y) std::swap(kind.height.x, kind.height.y);
    kind.is_tree = r.getFlag("tree", true);
    kind.is_met = r.getFlag("intersect", true);
    plan.kinds.push_back(std::move(kind));
}

void addStand(const NodeReader& r, ObjectScenery::Plan& plan) {
    const std::optional<LandClass> land = LandCover::find(r.getText("land").view());
    ObjectScenery::Stand stand;
    stand.kind = findKind(r, plan);
    if (!land) r.report("unknown class of land", r.getText("land"), "land");
    if (!land || stand.kind < 0) return;
    stand.land = *land;
    stand.density = LandCover::getTraits(*land).trees;
    const float squares = 1e4f / (plan.spacing * plan.spacing);
    if (r.has("density") && !readPositive(r, "density", squares, stand.density)) return;
    if (!readPositive(r, "steepest", 100, stand.steepest) ||
        !r.readPair("altitude", stand.altitude))
        return;
    plan.stands.push_back(stand);
}

bool isOnEarth(const NodeReader& r, const dvec3& place, const char* key) {
    if (std::abs(place.x) <= 360 && std::abs(place.y) <= 90) return true;
    r.report("longitude within 360 and latitude within 90 degrees are needed in", key, key);
    return false;
}

void addClearing(const NodeReader& r, ObjectScenery::Plan& plan) {
    dvec3 from;
    float width = 0;
    if (!r.has("from") || !r.readTriple("from", from) || !isOnEarth(r, from, "from")) return;
    dvec3 to = from;
    if (!r.readTriple("to", to) || !isOnEarth(r, to, "to") ||
        !readPositive(r, "width", 10000, width))
        return;
    plan.clearings.push_back({{from.x, from.y}, {to.x, to.y}, width / 2.0});
}

void addSite(const NodeReader& r, ObjectScenery::Plan& plan) {
    dvec3 at;
    const int kind = findKind(r, plan);
    if (kind < 0 || !r.readTriple("at", at) || !isOnEarth(r, at, "at")) return;
    plan.sites.push_back({{at.x, at.y}, at.z, kind});
}

/// What stands in a file of places, or in the node itself.
void addPlaces(const NodeReader& r, ObjectScenery::Plan& plan) {
    for (const NodeReader& clearing : r.getMaps("clearings"))
        addClearing(clearing, plan);
    for (const NodeReader& site : r.getMaps("sites"))
        addSite(site, plan);
}

Node* create(const NodeReader& r) {
    ObjectScenery::Plan plan;
    plan.seed = r.getWhole("seed");
    readPositive(r, "spacing", static_cast<float>(SceneryLattice::EDGE), plan.spacing);
    readPositive(r, "distance", ObjectScenery::FARTHEST, plan.distance);
    for (const NodeReader& kind : r.getMaps("kinds"))
        addKind(kind, plan);
    for (const NodeReader& stand : r.getMaps("stands"))
        addStand(stand, plan);
    addPlaces(r, plan);
    const jString& path = r.getText("places");
    if (!path.empty())
        if (const Package* file = PackageManager::get(path, "ObjectScenery")) {
            const NodeReader places(*file, FILE_SCHEMA);
            places.reportUnknownKeys();
            addPlaces(places, plan);
        }
    return new ObjectScenery(std::move(plan));
}
const bool TYPE = NodeFactory::add("scenery", create,
                                   {{whole, {"seed"}, nullptr, 0, 1e9},
                                    {number, {"spacing", "distance"}},
                                    {list, {"kinds"}, &KIND},
                                    {list, {"stands"}, &STAND},
                                    {list, {"clearings"}, &CLEARING},
                                    {list, {"sites"}, &SITE},
                                    {text, {"places"}}});

} // namespace

} // namespace ig
