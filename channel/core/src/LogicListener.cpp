// SPDX-License-Identifier: MIT
#include "LogicListener.h"

void LogicListener::connect(LogicBase& logic) {
    logic.m_sig_prefab_added.append({this, &LogicListener::onPrefabAdded});
    logic.m_sig_float_3.append({this, &LogicListener::onRecord});
    logic.m_sig_code.append({this, &LogicListener::onCode});
}
