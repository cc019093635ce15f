// SPDX-License-Identifier: MIT
#include "ig/scene/RPost.h"

#include "ig/base/jVector.h"
#include "ig/scene/Material.h"

namespace ig {

namespace {

struct Use {
    const Material* material;
    const void* owner;
    MemSite site; ///< who got it, for a look with the debugger
};

jVector<Use>& uses() {
    static jVector<Use> list;
    return list;
}

} // namespace

Material* RPost::GetMaterial(const jString& name, const void* owner, MemSite site) {
    Material* material = MaterialManager::get("data/core/post/" + name + ".mat");
    if (material) uses().append({material, owner, site});
    return material;
}

void RPost::FreeMaterial(Material* material, const void* owner) {
    for (int i = uses().size() - 1; i >= 0; i--) {
        if (uses()[i].material != material || uses()[i].owner != owner) continue;
        uses().removeFast(i);
        return;
    }
}

int RPost::getNumUses() { return uses().size(); }

} // namespace ig
