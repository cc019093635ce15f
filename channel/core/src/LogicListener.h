// SPDX-License-Identifier: MIT
#pragma once

#include "common/logic/LogicBase.h"

/// Listens to the logic's signals. The handlers only store; the application reads once per frame.
class LogicListener {
public:
    static constexpr int RESET_CODE = 25; ///< on `m_sig_code`: the scene has been reset

    void connect(LogicBase& logic);

    /// The own helicopter: the first prefab that the logic announces. Null before `init` and after
    /// the logic's release.
    ig::ObjectPrefab* m_helicopter = nullptr;
    int m_records = 0; ///< host records applied
    int m_resets = 0;

private:
    void onPrefabAdded(ig::ObjectPrefab* prefab, bool) {
        if (!m_helicopter) m_helicopter = prefab;
    }
    void onRecord(float) { m_records++; } // every record carries the wind's speed
    void onCode(int code) {
        if (code == RESET_CODE) m_resets++;
    }
};
