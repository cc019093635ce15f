// SPDX-License-Identifier: MIT
#include "ig/physics/Joint.h"

#include "ig/physics/BodyRope.h"

namespace ig {

Joint* Joint::create(const jString& name, BodyRigid* load, BodyRope* rope) {
    return load && rope ? new Joint(name, load, rope) : nullptr;
}

Joint::Joint(const jString& name, BodyRigid* load, BodyRope* rope)
    : m_name(name), m_load(load), m_rope(rope) {
    load->m_joints.append(this);
    rope->m_joints.append(this);
    load->followJoints();
}

Joint::~Joint() {
    for (Body* body : {static_cast<Body*>(m_load), static_cast<Body*>(m_rope)}) {
        const int i = body->m_joints.find(this);
        if (i >= 0) body->m_joints.remove(i);
    }
}

void Joint::setBroken(bool broken) {
    if (broken == m_broken) return;
    m_broken = broken;
    m_load->followJoints();
    if (broken)
        m_load->setLinearVelocity(m_rope->getEndVelocity());
    else
        m_rope->catchLoad(m_load->getTransform().getTranslate());
}

} // namespace ig
