// SPDX-License-Identifier: MIT
#include "SceneCommand.h"

#include "LogicListener.h"
#include "channel/interface/Texts.h"

using namespace ig;

void SceneCommand::connect(LogicBase& logic) {
    logic.m_sig_command.append({this, &SceneCommand::onCommand});
    logic.m_sig_code.append({this, &SceneCommand::onCode});
}

void SceneCommand::onCommand(CMD_TYPE command) {
    m_command = command;
    if (command != CMD_EXIT) m_state = command;
}

/// Whoever resets a stopped scene begins anew; a frozen one is being prepared.
void SceneCommand::onCode(int code) {
    if (code == LogicListener::RESET_CODE && m_state == CMD_STOP) onCommand(CMD_RUN);
}

void SceneCommand::update() {
    if (m_command == m_said || (!isExit() && !m_limiter.allow())) return;
    m_said = m_command;
    switch (m_command) {
    case CMD_FREEZE:
        return jLog::message("visual_channel: the flight simulation freezes the scene "
                             "(system_cmd 2), until it lets it run (1)");
    case CMD_RUN:
        return jLog::message("visual_channel: the scene runs (system_cmd 1)");
    case CMD_STOP:
        return jLog::message("visual_channel: the flight simulation stops the scene "
                             "(system_cmd 3), until it lets it run (1) or resets it");
    case CMD_EXIT:
        if (m_may_exit)
            jLog::message("visual_channel: the flight simulation ends the channel (system_cmd 4)");
        else
            jLog::warning("visual_channel: the flight simulation asks the channel to end "
                          "(system_cmd 4), which it does only with --obey-exit: it goes on");
    }
}

std::string SceneCommand::getPictureText() const {
    if (!isStill()) return "";
    return Texts::get(m_state == CMD_STOP ? "scene.stop" : "scene.freeze");
}

std::string SceneCommand::describe() const {
    const char* const words[] = {"freeze", "run", "stop", "exit"};
    return words[m_command - CMD_FREEZE];
}
