// SPDX-License-Identifier: MIT
#pragma once

#include "Script.h"
#include "ig/ui/UiDrawList.h"

#include <optional>

namespace ig {
class UIRoot;
}

class WindowListener;

/// Says what a script wants done, as an operator would do it: it looks where the last frame has
/// drawn a button, and tells mouse and keys to whoever hears of the window's. It is played between
/// frames, with and without a window. What goes down stays down for at least one frame, and
/// commands keep their order in slow frames too.
class ScriptPlayer {
public:
    /// Both outlive the player.
    ScriptPlayer(WindowListener& listener, const ig::UIRoot& ui) : m_listener(listener), m_ui(ui) {}

    void open(Script script) { m_script = std::move(script); }
    /// Between frames, as soon as something has been drawn. `time`: of the scene, s; `records`: the
    /// flight simulation's have begun to come.
    void play(double time, bool records);
    /// Whether some command keeps a picture.
    bool keepsPictures() const;
    /// The name of the picture to keep of the next frame that is drawn; empty: none. Until it has
    /// been taken no further command begins.
    const std::string& getPictureName() const { return m_picture; }
    void pictureTaken() { m_picture.clear(); }
    /// A command asked for the channel's end.
    bool hasQuit() const { return m_quit; }
    /// Commands that could not be done, each of which has been logged.
    int getFailures() const { return m_failures; }

private:
    /// What is down.
    struct Held {
        const ScriptCommand* command;
        double since; ///< of the script, s
        float x, y;   ///< where the mouse is
        bool pressed; ///< a drag takes hold a frame after the mouse has come to its place
    };

    bool begin(const ScriptCommand& command);
    void advanceHeld();
    /// Carries a drag on. True when it is time to let go.
    bool advance(Held& held);
    bool click(const ScriptCommand& command);
    bool findText(const std::string& text);
    std::string listButtons();
    void moveTo(float x, float y);
    void moveToMiddle();
    void rollWheel();
    void pressKeys(const std::vector<int>& keys);
    void releaseKeys(const std::vector<int>& keys);
    void typeText(const std::string& text);
    bool isHeld(int key) const;
    bool mouseIsHeld() const;

    WindowListener& m_listener;
    const ig::UIRoot& m_ui;
    ig::UiDrawList m_list; ///< what the user interface shows when a button is looked for
    Script m_script;
    std::optional<double> m_start; ///< scene time that the script's times count from
    double m_time = 0;             ///< of the script, s
    std::size_t m_next = 0;        ///< of the commands
    std::vector<Held> m_held;
    int m_notches = 0;      ///< of the wheel, still to come, one a frame
    float m_x = 0, m_y = 0; ///< where the mouse was moved last
    std::string m_picture;
    bool m_quit = false;
    int m_failures = 0;
};
