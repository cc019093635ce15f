// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jString.h"

namespace ig {

class BodyRigid;
class BodyRope;

/// Ties a rigid body to the lower end of a rope until it is broken. Listed by both bodies, broken
/// or not, and freed with the one that goes first.
class Joint : public jObject {
public:
    /// Null, with nothing done, without both bodies.
    static Joint* create(const jString& name, BodyRigid* load, BodyRope* rope);
    ~Joint() override;

    const jString& getName() const { return m_name; }
    BodyRigid* getLoad() const { return m_load; }

    bool isBroken() const { return m_broken; }
    /// Breaking lets the load go with the velocity that it has; mending ties it to the rope's end.
    void setBroken(bool broken);

private:
    Joint(const jString& name, BodyRigid* load, BodyRope* rope);
    jString m_name;
    BodyRigid* m_load;
    BodyRope* m_rope;
    bool m_broken = false;
};

} // namespace ig
