// SPDX-License-Identifier: MIT
#pragma once

#include "Environment.h"
#include "EventQueue.h"
#include "FrameClock.h"
#include "FrameMetrics.h"
#include "LoggedInputs.h"
#include "LogicListener.h"
#include "MetricsServer.h"
#include "Options.h"
#include "PassProfile.h"
#include "PictureTime.h"
#include "Precipitation.h"
#include "ScaleGovernor.h"
#include "SceneCommand.h"
#include "Screenshots.h"
#include "ScriptPlayer.h"
#include "SmoothFocus.h"
#include "Status.h"
#include "Trace.h"
#include "Video.h"
#include "WallSender.h"
#include "WarmUp.h"
#include "Window.h"
#include "channel/interface/LinkMonitor.h"
#include "channel/interface/OperatorInterface.h"
#include "channel/interface/PaceMonitor.h"
#include "channel/library/Library.h"
#include "ig/app/ControlApp.h"
#include "ig/app/IApp.h"
#include "ig/app/Renderer.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/World.h"
#include "program/Clock.h"

#include "ig/ui/UiDrawList.h"

#include <deque>
#include <memory>
#include <optional>

class LogicBase;
class WallInputs;
class WallReceiver;

/// The application that runs a scene logic: it loads the libraries and the world, runs the frames,
/// and ends in order. `docs/architecture.md` tells what happens in a frame.
class Channel : public ig::IApp, private WindowOwner {
public:
    /// `receiver`: of the wall that it is a display of, where a run has begun; null: it is none.
    explicit Channel(const Options& options, WallReceiver* receiver = nullptr);
    ~Channel() override { close(); }

    /// Everything up to the first frame. False, with a message, when the logic, the world or its
    /// start marker is missing.
    bool open();
    /// In place of `open`: tells what nodes of scene files may say, those of the libraries too.
    /// False, with a message, when one of these can't be loaded or the output not be written.
    bool printSchema();
    /// In place of `open`: tells version, libraries, font and what draws the pictures. False, with
    /// a message, when the output can't be written.
    bool printDevice();
    /// Runs frames until the time or the number of frames is up, until `requestStop`, or until the
    /// operator closes the window and confirms it.
    void run();
    /// After `run`: 0, or 1 when a command of the script could not be done, a file that was asked
    /// for could not be written, or a replay differed from its log.
    int getExitStatus() const;
    /// One of these frames. False, with nothing done, after the last one.
    bool runFrame();
    /// Releases everything in the order that the objects need; a second call does nothing.
    void close();
    /// Ends `run` after the present frame. May be called from a signal handler.
    static void requestStop();
    static bool isStopRequested();
    /// After `run`: of a display that is to show the run again, or a later one.
    bool wantsRestart() const;
    /// Null before `open` and after `close`.
    LogicBase* getLogic() const { return m_logic; }

    int getWidth() const override { return m_options.width; }
    int getHeight() const override { return m_options.height; }
    ig::ControlApp* getControl() override { return &m_control; }
    ig::UIRoot* getUIRoot() const override { return m_interface.getRoot(); }

private:
    bool openWindow();
    float getDensity() const;
    void toggleFullScreen() override;
    void takePicture() override;
    void tellPictures();
    void resize(int width, int height, float density) override;

    bool checkOutputs() const;
    bool wantsPictures() const;
    bool makeRenderer();
    bool warpDisplay();
    void prepareInterface();
    bool enterFolder() const;
    bool loadLibraries();
    bool createLogic();
    ig::jString getWorldPath() const;
    bool loadWorld();
    void warmUp();
    void placeCamera();
    FrameCosts frame(float dt);
    void askToQuit();
    bool loadScript();
    bool openLogs();
    bool openBarrier(const frames::LogHead& head);
    bool openMetrics();
    bool take(frames::FrameInput& input);
    void deliver(frames::FrameInput& input);
    bool endsByForce();
    void endFrame(double began, double begin);
    Shown handOver();
    void showLast();
    void tellShown(const Shown& shown);
    void record(const frames::FrameInput& input);
    void recordScene();
    void compareScene();
    void tellRecordFailure() const;
    std::vector<frames::PartDigest> digestScene();
    void takeStill();
    void setProjection();
    void draw();
    void showAgain();
    void showNote();
    void awaitOthers();
    const ig::Camera& getViewpoint();
    void levelAfterJump();
    const ig::Camera& getEye() const { return m_options.eye.empty() ? m_camera : m_fixed_camera; }
    bool isOver() const;
    bool isShown() const;

    Options m_options;
    int m_picture_width, m_picture_height; ///< pixels; a display's is not the scene's
    ig::ControlApp m_control;
    OperatorInterface m_interface; ///< hears of the events that frames take in
    EventQueue m_queue;            ///< hears what happens in the window
    Window m_window;
    std::unique_ptr<ig::Renderer> m_renderer; ///< before the window goes
    const char* m_renderer_name = "";         ///< of its kind
    WarmUp m_warm_up;
    ScaleGovernor m_governor;
    float m_scale = 1; ///< that frames are drawn at
    ScriptPlayer m_script;
    ig::World m_world;
    ig::Camera m_camera;         ///< the logic's
    ig::Camera m_fixed_camera;   ///< what is seen through instead when the options say so
    ig::Camera m_display_camera; ///< of a display's part of what is seen
    ig::CameraControl m_camera_control;
    std::vector<std::unique_ptr<Library>> m_plugins; ///< unloaded after the logic
    Library m_library;
    LogicBase* m_logic = nullptr; ///< owned
    LogicListener m_listener;
    LinkMonitor m_link; ///< looks at the logic's sockets
    PaceMonitor m_pace;
    struct Unshown {
        double begin; ///< of the frame, on the steady clock
        FrameTiming timing;
    };
    std::optional<Unshown> m_unshown; ///< the last frame, until its picture is handed over
    double m_last_shown = 0;          ///< when one was finished, on the steady clock
    PassProfile m_profile;
    Status m_status;
    Environment m_environment;
    Precipitation m_precipitation;
    SceneCommand m_scene_command;
    PictureTime m_picture_time;
    SmoothFocus m_smooth_focus; ///< before the world, whose nodes it moves, goes
    Screenshots m_screenshots;
    Video m_video;
    ig::ParticleSystem m_particles;
    ig::FrameInfo m_frame_info;
    Trace m_trace;
    ig::dvec3 m_last_position; ///< of the focus
    ig::dvec3 m_last_eye;      ///< of the logic's camera
    FrameClock m_clock;
    const double m_run_start = program::steadyNow(); ///< that the inputs' clock counts from
    std::unique_ptr<FrameInputs> m_inputs;
    LoggedInputs* m_replay = nullptr; ///< `m_inputs`, when they are another run's; else null
    WallReceiver* m_receiver;         ///< of a display; else null
    WallInputs* m_wall = nullptr;     ///< `m_inputs` of a display; else null
    frames::LogWriter m_record;
    WallSender m_sender;
    std::unique_ptr<wall::Barrier> m_barrier; ///< before the wall's link goes; null: none
    ig::UiDrawList m_note;                    ///< what a display says in its picture
    std::uint64_t m_frame_number = 0;         ///< of the frame that runs, as it was taken in
    std::uint64_t m_run_number = 0;           ///< of the wall
    std::shared_ptr<FrameMetrics> m_metrics;  ///< null: nobody asks for them
    MetricsServer m_metrics_server;
    bool m_recorded_scene = true;               ///< as the last frame of the log left it
    std::deque<frames::OperatorEvent> m_events; ///< taken in, and not yet told to the interface
    std::string m_clipboard;                    ///< as read or written last
    double m_now = 0;                           ///< on the inputs' clock when the frame began, s
    double m_picture_now = 0;                   ///< on it, what the picture is for, s
    double m_scene_time = 0;                    ///< s; goes on while the scene stands still
    int m_frames = 0;
    bool m_quit = false;               ///< the operator has confirmed it
    std::uint64_t m_last_received = 0; ///< records, up to the frame before
};
