// SPDX-License-Identifier: MIT
#include "Channel.h"

#include "DisplayWarp.h"
#include "LiveInputs.h"
#include "Provenance.h"
#include "ReplayedInputs.h"
#include "SceneDigest.h"
#include "WallInputs.h"
#include "WallReceiver.h"
#include "channel/interface/Texts.h"
#include "common/logic/LogicBase.h"
#include "ig/app/Engine.h"
#include "ig/app/Message.h"
#include "ig/app/MsgBox.h"
#include "ig/base/jLog.h"
#include "ig/net/SocketUDP.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/NodeReader.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/ui/Font.h"
#include "manual/Version.h"
#include "plugins/ocean/ObjectOcean.h"
#include "program/Clock.h"
#include "program/DataFolder.h"
#include "program/InputFile.h"
#include "program/Process.h"
#include "render/factory/RendererKind.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <unistd.h>
#include <utility>

using namespace ig;
using program::steadyNow;

namespace {

volatile std::sig_atomic_t g_stop = 0;

constexpr float FIELD_OF_VIEW = 50;   ///< vertical, degrees
constexpr double Z_NEAR = 0.1;        ///< metres: the cockpit is close
constexpr double Z_FAR = 1e7;         ///< metres
constexpr double JUMP = 10000;        ///< metres between two frames after which we level the camera
constexpr int FRAMES_PER_DIGEST = 60; ///< of the scene in a log
constexpr float NOTE_SIZE = 0.035f;   ///< of a display's note, by the picture's height
constexpr float NOTE_PLACE = 0.7f;    ///< of the height, from the upper edge
constexpr int LEVEL_CAMERA = 654321;  ///< identifier of the UI message

/// Of what is the result of the program. False, with one log line, when it didn't get out.
bool endPrinting() {
    std::string message;
    if (program::endOutput(message)) return true;
    jLog::error("visual_channel: %s", message.c_str());
    return false;
}

void levelCamera() {
    UiMsg message{LEVEL_CAMERA};
    MsgMngr::get()->send(&message);
}

} // namespace

Channel::Channel(const Options& options, WallReceiver* receiver)
    : m_options(options), m_picture_width(options.width), m_picture_height(options.height),
      m_interface(this, *this, &m_control), m_window(m_queue),
      m_script(m_queue, *m_interface.getRoot()), m_camera_control(nullptr),
      m_environment(m_options), m_scene_command(options.obey_exit),
      m_screenshots(options.screenshot, options.screenshot_every, options.contact_sheet,
                    options.pictures),
      m_video(options.video), m_clock(options.frame_rate, options.step),
      m_inputs(std::make_unique<LiveInputs>(m_clock, m_window, m_script, m_queue,
                                            *m_interface.getRoot(), m_run_start)),
      m_receiver(receiver) {
    m_status.setQuiet(options.quiet);
    if (receiver) {
        m_picture_width = receiver->getDisplay().width;
        m_picture_height = receiver->getDisplay().height;
        auto inputs = std::make_unique<WallInputs>(*receiver, m_window, m_queue, isStopRequested,
                                                   [this] { showAgain(); });
        m_replay = m_wall = inputs.get();
        m_inputs = std::move(inputs);
    } else if (!options.replay.empty()) {
        auto replay = std::make_unique<ReplayedInputs>(options.replay, options.real_time, m_window,
                                                       m_queue, isStopRequested);
        m_replay = replay.get();
        m_inputs = std::move(replay);
    }
}

void Channel::requestStop() { g_stop = 1; }

bool Channel::isStopRequested() { return g_stop != 0; }

bool Channel::wantsRestart() const { return m_wall && m_wall->wantsRestart(); }

// ------------------------------------------------------------------ start

bool Channel::printSchema() {
    if (!enterFolder() || !loadLibraries()) return false;
    std::fputs(NodeFactory::describe().c_str(), stdout);
    return endPrinting();
}

bool Channel::printDevice() {
    m_options.headless = true; // what draws into a window is the same on nearly all machines
    const jString device = makeRenderer() ? m_renderer->getDevice() : jString();
    std::printf("visual_channel %s\n", manual::getVersion().c_str());
    std::printf("pictures %s\n", device.empty() ? "none" : device.c_str());
    std::printf("font %s\n", Font::get().getPath().c_str());
    for (const std::string& library : listLibraries())
        std::printf("%s\n", library.c_str());
    return endPrinting();
}

bool Channel::open() {
    if (!enterFolder() || !loadScript() || !checkOutputs() || !makeRenderer() || !openLogs() ||
        !openMetrics())
        return false;
    Engine::get()->setApp(this);
    Engine::get()->setWorld(&m_world);
    prepareInterface();
    if (!loadLibraries() || !createLogic() || !loadWorld()) return false;
    Texts::load(m_options.language);
    placeCamera();
    m_listener.connect(*m_logic);
    m_environment.connect(*m_logic);
    m_scene_command.connect(*m_logic);
    if (!m_logic->init()) {
        const jString start = m_logic->getStartNode();
        if (!start.empty() && !m_world.getNodeByName(start)) // else it has told why
            jLog::error("visual_channel: \"%s\" has no node \"%s\" for the scene to start at",
                        getWorldPath().c_str(), start.c_str());
        return false;
    }
    m_environment.attach(m_world);
    m_precipitation.attach(m_world);
    m_interface.open(m_logic, "config/" + m_library.getName() + ".interface.yaml");
    m_interface.getOverlays().watch(&m_link, &m_pace);
    m_interface.getOverlays().showHelp(m_options.show_help);
    if (m_window.isOpen() && !m_options.show_help)
        m_interface.getOverlays().getNotices().showHint();
    m_interface.getOverlays().showStatistics(m_options.statistics);
    if (m_listener.m_focus) m_last_position = m_listener.m_focus->getWorldPosition();
    for (SocketUDP* socket : SocketUDP::getOpenSockets())
        if (!m_options.allow_sender.empty() && !socket->setAllowedSender(m_options.allow_sender))
            return false;
    if (!m_options.trace.empty() && !m_trace.open(m_options.trace)) return false;
    warmUp();
    return true;
}

bool Channel::enterFolder() const {
    const char* const folder = m_options.directory.c_str();
    if (*folder == 0 || chdir(folder) == 0) return true;
    jLog::error("visual_channel: \"%s\": %s", folder, std::strerror(errno));
    return false;
}

/// Where everybody of the wall who shows pictures waits for the others, if its file says so.
bool Channel::openBarrier(const frames::LogHead& head) {
    wall::WallNetwork* const network =
        m_receiver ? m_receiver->getNetwork() : m_sender.getNetwork();
    if (!network) return true;
    const wall::Wall& wall = m_receiver ? m_receiver->getWall() : m_sender.getWall();
    m_run_number =
        m_receiver ? m_receiver->getRun() : static_cast<std::uint64_t>(head.start_wall_ns);
    if (!wall.network.barrier || !m_window.isOpen()) return true;
    std::string message;
    m_barrier = network->join(m_receiver ? m_receiver->getDisplay().name : "", message);
    if (!m_barrier) jLog::error("visual_channel: --wall: %s", message.c_str());
    return m_barrier != nullptr;
}

bool Channel::loadScript() {
    Script script;
    std::string message;
    if (!m_options.script.empty() && !readScript(m_options.script, script, message)) {
        jLog::error("visual_channel: %s", message.c_str());
        return false;
    }
    m_script.open(std::move(script));
    return true;
}

/// What can't be written is refused now, not after a flight.
bool Channel::checkOutputs() const {
    return m_screenshots.check(m_script.keepsPictures()) && m_video.check() &&
           (m_options.trace.empty() || Trace::check(m_options.trace));
}

/// After the window, which says how large the picture is, and before the logic makes its sockets.
bool Channel::openLogs() {
    if (!m_replay) SocketUDP::setOnline();
    if (m_replay && !m_replay->open()) return false;
    const bool sends = !m_options.wall.empty() && !m_wall;
    if (!m_replay && m_options.record.empty() && !sends) return true;
    const frames::LogHead head = describeRun(m_options, getDensity());
    if (m_replay)
        tellDifferences(m_replay->getHead(), head, m_wall ? "the first channel" : "the log");
    if (!m_options.record.empty() && !m_record.open(m_options.record, head)) {
        jLog::error("visual_channel: --record: %s", m_record.getMessage().c_str());
        return false;
    }
    return (!sends || m_sender.open(m_options, head)) && openBarrier(head);
}

bool Channel::openMetrics() {
    if (m_options.metrics < 0) return true;
    m_metrics = std::make_shared<FrameMetrics>(m_renderer_name);
    return m_metrics_server.open(m_options.metrics, m_metrics);
}

bool Channel::wantsPictures() const {
    const RendererKind* kind = findRendererKind(m_options.renderer);
    return (kind && kind->draws) || m_options.window || !m_options.screenshot.empty() ||
           !m_options.contact_sheet.empty() || !m_options.video.empty();
}

/// Pictures where the machine can draw them; where it can't, the whole channel still runs without,
/// unless pictures were asked for.
bool Channel::makeRenderer() {
    const auto refuse = [] {
        jLog::error("visual_channel: no pictures: --null runs the channel without");
        return false;
    };
    if (!openWindow()) return refuse();
    for (const RendererKind& kind : getRendererKinds()) {
        if (m_options.renderer != "auto" && m_options.renderer != kind.name) continue;
        if (!kind.draws && m_renderer) { // which could not
            if (wantsPictures()) break;
            jLog::warning("visual_channel: going on without pictures, as with --null");
        }
        m_renderer = kind.make(m_window.isOpen());
        m_renderer->setScale(m_options.scale > 0 ? m_options.scale : 1);
        m_renderer->setProfiling(m_options.profile);
        if (!m_renderer->init(m_picture_width, m_picture_height)) continue;
        if (m_options.scale <= 0 && m_renderer->isSoftware())
            m_renderer->setScale(
                ScaleGovernor::getSoftwareStart(m_picture_width, m_picture_height));
        m_scale = m_renderer->getScale();
        if (!warpDisplay()) return false;
        m_renderer->setBeforeDrawing([this] { showLast(); });
        m_renderer_name = kind.name;
        return true;
    }
    return refuse();
}

/// As the projector of a display needs its pictures, if it says so.
bool Channel::warpDisplay() {
    Warp warp;
    if (!m_receiver || !readWarp(m_receiver->getDisplay(), warp)) return !m_receiver;
    if (!warp.places.empty()) m_renderer->setWarp(warp);
    return true;
}

void Channel::prepareInterface() {
    m_interface.resize(m_options.width, m_options.height, getDensity() * m_options.interface_size);
    UIRoot* root = m_interface.getRoot();
    // The scene and the link go on while the operator is asked something.
    root->setModalFrame([this] { return runFrame(); });
    root->setClipboard([this] { return jString(m_clipboard); },
                       [this](const jString& text) {
                           m_clipboard = text.c_str();
                           if (!m_replay) m_window.writeClipboard(m_clipboard);
                       });
}

bool Channel::loadLibraries() {
    for (const std::string& path : m_options.plugins) {
        m_plugins.push_back(std::make_unique<Library>());
        if (!m_plugins.back()->load(path)) return false;
    }
    return m_library.load(m_options.logic.empty() ? DEFAULT_LOGIC : m_options.logic);
}

bool Channel::createLogic() {
    const auto create = reinterpret_cast<CreateLogicFunction>(m_library.find("CreateLogic"));
    if (!create) return false;
    m_logic = create(&m_world, &m_camera_control);
    if (!m_logic) jLog::error("visual_channel: out of memory");
    return m_logic != nullptr;
}

jString Channel::getWorldPath() const {
    return m_options.world.empty() ? m_logic->getWorldPath() : jString(m_options.world);
}

bool Channel::loadWorld() {
    const jString path = getWorldPath();
    std::error_code error;
    if (path.empty() || std::filesystem::exists(path.c_str(), error))
        return path.empty() || m_world.load(path);
    if (!m_options.world.empty()) {
        jLog::error("visual_channel: --world: cannot open \"%s\": %s", path.c_str(),
                    program::whyUnreadable(path.c_str()).c_str());
        return false;
    }
    std::string other;
    if (!program::findDataFolder(other) && m_options.directory.empty())
        jLog::error("visual_channel: no folder holds config/ and data/: looked at %s: name it with "
                    "--directory",
                    program::tellDataFolders().c_str());
    else
        jLog::error("visual_channel: there is no \"%s\" in \"%s\"%s: start in the folder that "
                    "holds config/ and data/, or name it with --directory",
                    path.c_str(), std::filesystem::current_path(error).c_str(),
                    other.empty() ? "" : (", but perhaps in \"" + other + '"').c_str());
    return false;
}

/// The last step of the start: from its end on the flight simulation meets a channel that is ready.
void Channel::warmUp() {
    // Laid out also where nothing is drawn: what the scene takes in must not depend on that.
    const UiDrawList* all = m_interface.drawAll();
    m_frame_info.ui = m_options.no_interface ? nullptr : all;
    m_frame_info.ui_root = m_options.no_interface ? nullptr : m_interface.getRoot();
    m_frame_info.focus = m_listener.m_focus;
    m_frame_info.hurried =
        m_window.isOpen() && (!m_replay || m_wall); // what nobody watches is the same always
    std::vector<jString> later = m_listener.m_preloaded;
    later.insert(later.end(), m_world.getLaterPrefabs().begin(), m_world.getLaterPrefabs().end());
    m_renderer->setWindowSize(m_window.getWidth(), m_window.getHeight());
    const auto keep_window = [this] {
        if (!m_window.isOpen()) return true;
        m_window.swap();
        m_window.poll();
        return !m_queue.hasClose();
    };
    if (m_options.warm_up &&
        !m_warm_up.run(*m_renderer, {m_world, getViewpoint(), m_frame_info, later}, keep_window))
        m_quit = true;
    m_warm_up.end(*m_renderer);
}

/// A level camera at the start marker, looking ahead: the logic's views take over from it.
void Channel::placeCamera() {
    setProjection();
    if (const Node* start = m_world.getNodeByName(m_logic->getStartNode()))
        m_camera.setTransform(start->getWorldTransform() *
                              dmat4(dquat(dvec3(1, 0, 0), 90), dvec3()));
    m_camera_control.setCamera(&m_camera);
    levelCamera();
    if (m_options.eye.empty()) return;
    const std::vector<double>& eye = m_options.eye;
    m_fixed_camera.setWgsPosition({eye[0], eye[1], eye[2]});
    m_fixed_camera.setWgsHPR({eye[3], -eye[4], 0});
}

void Channel::setProjection() {
    m_camera.setPerspective(
        FIELD_OF_VIEW, static_cast<float>(m_options.width) / static_cast<float>(m_options.height),
        Z_NEAR, Z_FAR);
    m_fixed_camera.setProjection(m_camera.getProjection());
}

// ------------------------------------------------------------------ window

/// With a display there is a window unless none is wanted. False when one was asked for and can't
/// be had.
bool Channel::openWindow() {
    const RendererKind* kind = findRendererKind(m_options.renderer);
    if (m_options.headless || (kind && !kind->draws)) return true;
    if (!m_options.window && !Window::hasDisplay()) return true;
    const wall::Display* const display = m_receiver ? &m_receiver->getDisplay() : nullptr;
    if (display && m_options.monitor.empty()) m_options.monitor = display->monitor;
    if (!m_window.open(m_picture_width, m_picture_height, m_options.monitor)) {
        if (!m_options.window) jLog::warning("visual_channel: going on without a window");
        return !m_options.window;
    }
    // A replay that is as fast as possible doesn't wait for the display.
    m_window.setVerticalSync(m_replay && !m_wall && !m_options.real_time ? VerticalSync::off
                                                                         : m_options.vertical_sync);
    if (display && display->x >= 0) m_window.place(display->x, display->y);
    if (m_options.full_screen || (display && display->full_screen)) m_window.toggleFullScreen();
    if (m_replay) return true; // the picture has the log's size, and is fitted into the window
    m_options.width = m_picture_width = m_window.getWidth();
    m_options.height = m_picture_height = m_window.getHeight();
    return true;
}

void Channel::resize(int width, int height, float density) {
    m_options.width = width;
    m_options.height = height;
    if (!m_wall) {
        m_picture_width = width;
        m_picture_height = height;
        m_renderer->resize(width, height);
    }
    m_interface.resize(width, height, density * m_options.interface_size);
    setProjection();
    m_camera_control.setCamera(&m_camera);
}

float Channel::getDensity() const {
    return m_options.density > 0 ? m_options.density : m_window.getDensity();
}

/// What the log's operator did with his window is no wish of whoever looks at the replay.
void Channel::toggleFullScreen() {
    if (!m_replay) m_window.toggleFullScreen();
}

void Channel::takePicture() {
    if (!m_replay) m_screenshots.takeNew(*m_renderer); // else it was taken
}

/// Once they are written, which is some frames after the key.
void Channel::tellPictures() {
    for (const std::string& path : m_screenshots.takeWritten()) {
        jLog::message("visual_channel: picture written: %s", path.c_str());
        m_interface.getRoot()->tell(Texts::fill("notice.picture", {path}));
    }
}

// ------------------------------------------------------------------ frames

void Channel::run() {
    while (runFrame())
        if (m_interface.isCloseRequested()) askToQuit();
    if (m_wall && !wantsRestart() && !isOver()) m_wall->stay();
    showLast();
    if (m_frames > 0) m_screenshots.afterLast(*m_renderer);
    tellPictures();
    m_video.close();
    m_trace.close();
    if (!m_recorded_scene) recordScene();
    compareScene();
    m_sender.close();
    if (m_record.isOpen() && !m_record.close()) tellRecordFailure();
    m_status.printSummary(m_listener, m_link, m_pace);
    std::fputs(m_warm_up.getSummary(*m_renderer).c_str(), stdout);
    if (m_replay) std::fputs(m_replay->getSummary().c_str(), stdout);
    std::fputs(m_profile.getSummary().c_str(), stdout);
}

bool Channel::runFrame() {
    frames::FrameInput input;
    if (g_stop || m_quit || isOver() || !take(input)) return false;
    const float dt = input.length;
    const double begin = steadyNow();
    deliver(input);
    if (m_replay && endsByForce()) return false;
    if (m_interface.isEndRequested()) m_screenshots.finish(); // the logic ends the process
    const bool still = !m_script.getPictureName().empty();
    // A still is looked at longer than a frame; in a window such a frame would be seen to stop.
    const bool sharp = still && m_options.scale <= 0 && !m_window.isOpen();
    m_renderer->setScale(sharp ? 1 : m_scale);
    const FrameCosts costs = frame(dt);
    takeStill();
    tellPictures();
    const double work = steadyNow() - begin;
    m_profile.addFrame(m_renderer->getPassTimes());
    endFrame(input.begin, begin);
    const std::uint64_t received = m_link.getReceived().datagrams_received;
    m_interface.getOverlays().addFrame(dt, costs, static_cast<int>(received - m_last_received));
    m_last_received = received;
    m_status.addFrame(dt, work);
    m_status.print(m_listener, m_link, m_pace,
                   m_scene_command.describe() + ' ' + m_environment.describe());
    m_scene_time += dt;
    m_frames++;
    if (m_frames % FRAMES_PER_DIGEST == 0) {
        if (m_record.isOpen() || m_sender.isOpen()) recordScene();
        compareScene();
    }
    if (m_scene_command.isExit() || m_interface.isEndRequested()) m_quit = true;
    return true;
}

/// Of a frame that began at `began` on the inputs' clock, which is `begin` on the steady one. A
/// processor that draws, and is behind its time, draws the end of the picture while the next
/// frame's logic runs.
void Channel::endFrame(double began, double begin) {
    const SocketStatistics& in = m_link.getReceived();
    m_unshown = {begin,
                 {.begin = began,
                  .period = m_replay ? 0 : m_clock.getPeriod(), // the log's
                  .refresh_rate = m_clock.getRefreshRate(),
                  .late = m_clock.isLate(),
                  .records = in.datagrams_received,
                  .last_record = in.last_received,
                  .silent = m_link.isSilent()}};
    m_trace.note(m_listener);
    if (!isShown()) return m_unshown.reset();
    if (m_window.isOpen() && m_renderer->isSoftware() && m_clock.isBehind()) return;
    const Shown shown = handOver();
    if (m_window.isOpen()) m_clock.endShown(shown.finished, shown.back);
    m_unshown->timing.late = m_clock.isLate();
    tellShown(shown);
}

/// Hands the picture over, and waits for the display where that sets the pace.
Shown Channel::handOver() {
    if (m_barrier) return m_window.swap([this] { awaitOthers(); });
    if (m_window.isOpen()) return m_window.swap();
    const double now = steadyNow();
    return {now, now};
}

/// The last frame's picture, if it hasn't been.
void Channel::showLast() {
    if (m_unshown) tellShown(handOver());
}

void Channel::tellShown(const Shown& shown) {
    const double begin = m_unshown->begin;
    FrameTiming timing = m_unshown->timing;
    m_unshown.reset();
    // What it took while the picture before it was being finished counts for that one.
    timing.work = shown.finished - std::max(begin, m_last_shown);
    m_last_shown = shown.finished;
    if (m_options.scale <= 0) m_scale = m_governor.update(timing.work, m_scale);
    // A replay's clock shows the log's time when a frame begins.
    const double run_start = m_replay ? begin - timing.begin : m_run_start;
    timing.handed_over = shown.back - run_start;
    m_pace.addFrame(timing);
    m_trace.write(run_start, timing, m_pace.getAge());
    if (!m_metrics) return;
    m_metrics->addFrame(timing, m_pace, m_link, m_listener);
    m_metrics->addScene(timing.begin, m_world, m_particles);
}

/// All that the next frame takes in. False when there is none.
bool Channel::take(frames::FrameInput& input) {
    if (!m_inputs->next({m_scene_time, m_last_received > 0}, input)) return false;
    if (m_script.hasQuit()) requestStop(); // after this frame
    m_frame_number = input.number;
    if (m_record.isOpen() || m_sender.isOpen()) record(input);
    return true;
}

/// A box that an event opens runs frames until it is answered; they take what is left of the events
/// before their own, so that all keep their order.
void Channel::deliver(frames::FrameInput& input) {
    m_now = input.begin;
    m_picture_now = m_picture_time.next(input.begin, input.length);
    SocketUDP::deliver(input);
    if (input.clipboard) m_clipboard = std::move(*input.clipboard);
    std::ranges::move(input.events, std::back_inserter(m_events));
    while (!m_events.empty()) {
        const frames::OperatorEvent event = std::move(m_events.front());
        m_events.pop_front();
        EventQueue::tell(event, m_interface);
    }
}

/// Whether the logic may end the process in this frame, which then doesn't run in a replay. A log
/// of the replay ends as that of the flight did.
bool Channel::endsByForce() {
    if (!m_control.isKeyPress(KEY_F4) || !m_control.isKeyPress(KEY_ALT)) return false;
    m_replay->endByForce();
    m_record.abandon();
    return true;
}

/// Before the frame runs, which may end the process. A log that can't go on ends, the flight goes
/// on.
void Channel::record(const frames::FrameInput& input) {
    m_recorded_scene = false;
    m_sender.append(input);
    if (m_record.isOpen() && !m_record.append(input)) tellRecordFailure();
}

void Channel::recordScene() {
    m_recorded_scene = true;
    const std::vector<frames::PartDigest> digests = digestScene();
    m_sender.append(digests);
    if (m_record.isOpen() && !m_record.append(digests)) tellRecordFailure();
}

/// Where the log's run took its digests: the frame that the log holds before them may be one of a
/// box, and the one that ended last the one that opened it.
void Channel::compareScene() {
    if (m_replay) m_replay->compare([this] { return digestScene(); });
}

void Channel::tellRecordFailure() const {
    jLog::error("visual_channel: --record: %s: what has been written can be replayed",
                m_record.getMessage().c_str());
}

std::vector<frames::PartDigest> Channel::digestScene() {
    return ::digestScene({m_world, m_particles, m_camera, m_environment, m_interface});
}

/// What the script asks for, unless frames of a box have taken it meanwhile.
void Channel::takeStill() {
    if (m_script.getPictureName().empty()) return;
    m_screenshots.take(*m_renderer, m_script.getPictureName());
    m_script.pictureTaken();
}

void Channel::askToQuit() {
    MsgBox box(this, Texts::get("quit.title"), Texts::get("quit.question"));
    box.getOkButton()->setText(Texts::get("box.ok"));
    box.getCancelButton()->setText(Texts::get("box.cancel"));
    box.center();
    if (box.modality()) m_quit = true;
    m_interface.dropCloseRequest();
}

bool Channel::isOver() const {
    // Half a frame's worth of allowance: sums of single-precision steps fall short of round times.
    return (m_options.seconds > 0 && m_scene_time > m_options.seconds - 1e-3) ||
           (m_options.frames > 0 && m_frames >= m_options.frames);
}

/// Whether this frame has a picture: the last one has, which may be asked for.
bool Channel::isShown() const {
    const double end = m_scene_time + Engine::get()->getFrameTime();
    return !m_replay || !m_replay->isBehind() ||
           (m_options.frames > 0 && m_frames + 1 >= m_options.frames) ||
           (m_options.seconds > 0 && end > m_options.seconds - 1e-3);
}

FrameCosts Channel::frame(float dt) {
    FrameCosts costs;
    double last = steadyNow();
    const auto spent = [&last] {
        const double before = std::exchange(last, steadyNow());
        return last - before;
    };
    Engine::get()->beginFrame(dt, m_scene_command.isStill());
    const float step = Engine::get()->getSceneStep();
    m_environment.readKeys(m_control);
    m_logic->update(step);
    m_link.update(LinkSample::read(), m_now);
    m_scene_command.update();
    m_interface.getOverlays().setSceneState(m_scene_command.getPictureText());
    levelAfterJump();
    m_environment.update(step);
    m_precipitation.update(step, getEye(), m_environment);
    costs.update = spent();
    m_world.updatePhysics(step);
    ObjectOcean::keepUp(m_world);
    m_world.updateParticles(step);
    const Weather weather = m_environment.getWeather();
    m_particles.setWind(weather.wind_direction, std::max(weather.wind_speed, 0.0f));
    m_particles.advance(m_world, step);
    costs.physics = spent();
    m_interface.update(dt);
    // Also where nobody sees it: how far a field has scrolled follows from what it was shown for.
    const UiDrawList* list = m_interface.draw();
    m_frame_info.ui = m_options.no_interface ? nullptr : list;
    m_frame_info.ui_root = m_options.no_interface ? nullptr : m_interface.getRoot();
    costs.interface = spent();
    if (m_options.smooth)
        m_smooth_focus.show(*m_logic, m_listener, m_picture_now, m_link.getReceived().last_received,
                            m_scene_command.isStill());
    m_logic->swap();
    draw();
    m_logic->render();
    if (m_options.smooth) m_smooth_focus.putBack(*m_logic);
    costs.draw = spent();
    m_control.endFrame();
    return costs;
}

void Channel::draw() {
    m_environment.fillFrame(getEye(), m_listener.m_focus, Engine::get()->getRunningTime(),
                            m_frame_info);
    m_frame_info.eye_velocity = m_precipitation.getEyeVelocity();
    m_frame_info.particles = &m_particles;
    m_frame_info.shared = m_wall != nullptr;
    if (!isShown()) return;
    if (m_wall) showNote();
    m_renderer->setWindowSize(m_window.getWidth(), m_window.getHeight());
    m_renderer->render(m_world, getViewpoint(), m_frame_info);
    const double time = m_scene_time + Engine::get()->getFrameTime();
    m_screenshots.afterFrame(*m_renderer, time);
    m_video.afterFrame(*m_renderer, time);
}

/// A display's last picture, with what there is to be said now.
void Channel::showAgain() {
    if (!m_window.isOpen()) return;
    showNote();
    m_renderer->render(m_world, getViewpoint(), m_frame_info);
    m_window.swap();
}

/// In place of panels and texts, which a display of a wall has none of.
void Channel::showNote() {
    m_note.clear();
    const std::string text = m_wall->getNote();
    m_frame_info.ui = text.empty() ? nullptr : &m_note;
    m_frame_info.ui_root = nullptr;
    if (text.empty()) return;
    const auto width = static_cast<float>(m_picture_width);
    const auto height = static_cast<float>(m_picture_height);
    const float size = height * NOTE_SIZE;
    const float length = Font::get().getWidth(size, text);
    const float x = (width - length) / 2, y = height * NOTE_PLACE;
    m_note.addRect(x - size, y - size / 2, length + 2 * size, 2 * size, {0.05f, 0.07f, 0.1f, 0.8f});
    m_note.addText(x, y, size, {1, 0.8f, 0.45f, 1}, text);
}

/// What the picture is seen from: a display's part of what is seen from the eye.
const Camera& Channel::getViewpoint() {
    if (!m_receiver) return getEye();
    const wall::Display& display = m_receiver->getDisplay();
    m_display_camera.setProjection(frustum(display.left * Z_NEAR, display.right * Z_NEAR,
                                           display.bottom * Z_NEAR, display.top * Z_NEAR, Z_NEAR,
                                           Z_FAR, 0, 0));
    m_display_camera.setWorldTransform(getEye().getWorldTransform() * display.rotation);
    return m_display_camera;
}

/// At the wall's barrier, where everybody shows this frame's picture at the same instant.
void Channel::awaitOthers() { m_barrier->wait(m_run_number, m_frame_number, m_clock.getPeriod()); }

/// Elsewhere on the earth "up" points elsewhere: a camera that came along would hang askew. A free
/// one stayed where it is.
void Channel::levelAfterJump() {
    if (!m_listener.m_focus) return;
    const dvec3 position = m_listener.m_focus->getWorldPosition();
    const dvec3 eye = m_camera.getWorldPosition();
    const bool jumped = length(position - m_last_position) > JUMP;
    if (jumped && length(eye - m_last_eye) > JUMP / 2) levelCamera();
    m_last_position = position;
    m_last_eye = eye;
}

// ------------------------------------------------------------------ end

int Channel::getExitStatus() const {
    return m_script.getFailures() > 0 || m_screenshots.hasFailed() || m_video.hasFailed() ||
           m_trace.hasFailed() || !m_record.getMessage().empty() ||
           (m_replay && m_replay->hasFailed());
}

void Channel::close() {
    if (m_logic) {
        m_logic->release();
        if (m_renderer) m_renderer->release();
        m_listener.m_focus = nullptr;
        m_frame_info.ui = nullptr;
        m_frame_info.ui_root = nullptr;
        m_interface.close();
        m_particles.clear();
        m_world.clear();
        delete m_logic;
        m_logic = nullptr;
    }
    m_trace.close();
    MaterialManager::release();
    Mesh::release();
    PackageManager::release();
    Engine::get()->reset();
    m_renderer.reset();
    m_window.close();
    m_library.unload();
    m_plugins.clear();
}
