// SPDX-License-Identifier: MIT
#pragma once

#include "common/logic/LogicBase.h"

#include <vector>

/// Listens to the logic's signals. The handlers only store; the application reads once per frame.
class LogicListener {
public:
    static constexpr int RESET_CODE = 25; ///< on `m_sig_code`: the scene has been reset

    void connect(LogicBase& logic) {
        logic.m_sig_prefab_added.append({this, &LogicListener::onPrefabAdded});
        logic.m_sig_float_3.append({this, &LogicListener::onRecord});
        logic.m_sig_code.append({this, &LogicListener::onCode});
        logic.m_sig_preload.append({this, &LogicListener::onPreload});
    }

    /// What the picture is about: the first prefab that the logic announces. Null before `init` and
    /// after the logic's release, and with a logic that announces none.
    ig::ObjectPrefab* m_focus = nullptr;
    int m_applied = 0; ///< records of the flight simulation
    int m_resets = 0;
    std::vector<ig::jString> m_preloaded; ///< prefabs that will come into the scene

private:
    void onPrefabAdded(ig::ObjectPrefab* prefab, bool) {
        if (!m_focus) m_focus = prefab;
    }
    void onPreload(const ig::jString& path) { m_preloaded.push_back(path); }
    void onRecord(float) { m_applied++; }
    void onCode(int code) { m_resets += code == RESET_CODE; }
};
