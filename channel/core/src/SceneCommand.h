// SPDX-License-Identifier: MIT
#pragma once

#include "common/logic/LogicBase.h"
#include "ig/base/jLog.h"

#include <string>

/// What the flight simulation commands the scene to do. The logic's signals only store it; the
/// application asks once per frame. A command holds until another comes:
///
///   freeze   the scene stands still, until run
///   stop     likewise, until run or until the scene is reset
///   run      the scene goes on, as it does when nothing is commanded
///   exit     the channel ends, if it was started to obey that; else nothing comes of it
///
/// Records are applied and answered all the while.
class SceneCommand {
public:
    explicit SceneCommand(bool may_exit) : m_may_exit(may_exit) {}
    /// Listens from then on; the logic must be there as long as this object is used.
    void connect(LogicBase& logic);

    /// Once per frame, after the logic's update: says in the log what has changed.
    void update();
    /// The scene's time stands still.
    bool isStill() const { return m_state != CMD_RUN; }
    /// The channel is to end.
    bool isExit() const { return m_may_exit && m_command == CMD_EXIT; }
    /// Tells the operator, in his language, that the scene stands still; empty when it doesn't.
    std::string getPictureText() const;
    /// For the status line: the command in a word.
    std::string describe() const;

private:
    void onCommand(CMD_TYPE command);
    void onCode(int code);

    bool m_may_exit;
    CMD_TYPE m_command = CMD_RUN;
    CMD_TYPE m_state = CMD_RUN; ///< the last one that isn't exit
    CMD_TYPE m_said = CMD_RUN;  ///< in the log, last
    ig::LogLimiter m_limiter;   ///< two hosts may contradict each other in every frame
};
