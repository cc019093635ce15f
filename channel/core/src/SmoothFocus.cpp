// SPDX-License-Identifier: MIT
#include "SmoothFocus.h"

#include "LogicListener.h"
#include "ig/scene/ObjectPrefab.h"

#include <utility>
#include <vector>

using namespace ig;

void SmoothFocus::show(LogicBase& logic, const LogicListener& listener, double time, double arrival,
                       bool still) {
    Node* const focus = listener.m_focus;
    if (!focus) return;
    const int records = listener.m_applied - std::exchange(m_applied, listener.m_applied);
    const dmat4 told = focus->getWorldTransform();
    const Pose pose{told.getTranslate(), told.getMat3().getQuat()};
    // Hosts are known that freeze the scene and fly on: only the moment counts.
    const bool frozen = !std::exchange(m_still, still) && still;
    const Pose shown = m_smoother.update({time, arrival, records, frozen, pose});
    m_moved = shown != pose;
    if (!m_moved) return;
    const dmat3 turn = (shown.attitude * inverse(pose.attitude)).getMat3();
    jVector<LogicBase::Hanging> hanging;
    logic.getHanging(hanging);
    // What hangs keeps its attitude, and goes where the place goes that it hangs by. All places are
    // asked for before the first moves.
    std::vector<std::pair<Node*, dmat4>> moves{{focus, {turn * told.getMat3(), shown.position}}};
    for (const LogicBase::Hanging& what : hanging) {
        const dvec3 from = what.by->getWorldPosition();
        const dvec3 to = shown.position + turn * (from - pose.position);
        const dmat4& is = what.node->getWorldTransform();
        moves.push_back({what.node, {is.getMat3(), is.getTranslate() + (to - from)}});
    }
    for (const auto& [node, transform] : moves)
        m_shown.move(*node, transform);
}

void SmoothFocus::putBack(LogicBase& logic) {
    if (!std::exchange(m_moved, false)) return;
    m_shown.putBack();
    logic.swap();
}
