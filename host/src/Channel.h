// SPDX-License-Identifier: MIT
#pragma once

#include "Environment.h"
#include "FrameClock.h"
#include "Library.h"
#include "LogicListener.h"
#include "Options.h"
#include "Screenshots.h"
#include "Status.h"
#include "Trace.h"
#include "host/interface/OperatorInterface.h"
#include "ig/app/ControlApp.h"
#include "ig/app/IApp.h"
#include "ig/app/Renderer.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/World.h"

#include <memory>

class LogicBase;

/// The application that hosts a scene logic: it loads the libraries and the world, runs the frames,
/// and ends in order. `docs/architecture.md` tells what happens in a frame.
class Channel : public ig::IApp {
public:
    explicit Channel(const Options& options);
    ~Channel() override { close(); }

    /// Everything up to the first frame. False, with a message, when the logic, the world or its
    /// start marker is missing.
    bool open();
    /// Runs frames until the time or the number of frames is up, or until `requestStop`.
    void run();
    /// Releases everything in the order that the objects need; a second call does nothing.
    void close();
    /// Ends `run` after the present frame. May be called from a signal handler.
    static void requestStop();
    /// The operator wants to close the window: asks back, and then ends `run`.
    void requestClose() { m_close_requested = true; }

    int getWidth() const override { return m_options.width; }
    int getHeight() const override { return m_options.height; }
    ig::ControlApp* getControl() override { return &m_control; }
    ig::UIRoot* getUIRoot() const override { return m_interface.getRoot(); }

private:
    bool makeRenderer();
    void prepareInterface();
    bool loadLibraries();
    bool loadWorld();
    void placeCamera();
    bool runFrame();
    FrameCosts frame(float dt);
    void askToQuit();
    void draw();
    void levelAfterJump();
    bool isOver() const;

    Options m_options;
    std::unique_ptr<ig::Renderer> m_renderer;
    ig::ControlApp m_control;
    OperatorInterface m_interface;
    ig::World m_world;
    ig::Camera m_camera;
    ig::CameraControl m_camera_control;
    std::vector<std::unique_ptr<Library>> m_plugins; ///< unloaded after the logic
    Library m_library;
    LogicBase* m_logic = nullptr; ///< owned
    LogicListener m_listener;
    Status m_status;
    Environment m_environment;
    Screenshots m_screenshots;
    ig::ParticleSystem m_particles;
    ig::FrameInfo m_frame_info;
    Trace m_trace;
    ig::dvec3 m_last_position; ///< of the helicopter
    FrameClock m_clock;
    double m_scene_time = 0; ///< s
    int m_frames = 0;
    bool m_close_requested = false;
    int m_last_records = 0; ///< applied up to the frame before
};
