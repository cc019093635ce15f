// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

class ControlApp;
class UIRoot;

/// What drives the engine: its window and its input. Implemented by the application.
class IApp {
public:
    virtual ~IApp() = default;
    virtual int getWidth() const = 0;  ///< of the picture, pixels
    virtual int getHeight() const = 0; ///< of the picture, pixels
    virtual ControlApp* getControl() = 0;
    /// The user interface of the window; null for an application without one.
    virtual UIRoot* getUIRoot() const { return nullptr; }
};

/// Input events, as they reach the logic between frames.
struct GUIEventMouse {
    int button = 0;     ///< 0 left, 1 right, 2 middle
    float x = 0, y = 0; ///< pixels from the top left corner
};
struct GUIEventWheel {
    float delta = 0;        ///< 120 a notch, negative when rolled down
    unsigned char flag = 0; ///< 1 when rolled up, 0 when rolled down
};
struct GUIEventKey {
    int key = 0; ///< a `KeyCode`
};

} // namespace ig
