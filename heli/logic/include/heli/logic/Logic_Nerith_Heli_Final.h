// SPDX-License-Identifier: MIT
#pragma once

#include "common/logic/LogicBase.h"
#include "common/wire/UdpRecvData.h"
#include "ig/action/ActionManager.h"
#include "ig/action/TimerManager.h"
#include "ig/app/Message.h"
#include "ig/math/quat.h"
#include "ig/physics/Physics.h"

namespace ig {
class Action;
class Camera;
class ControlApp;
class ObjectOcean;
class ObjectTerrain;
class UIButton;
class UIElement;
class UIHLayout;
class UISpriteViewport;
class UIVLayout;
struct UIEventMouse;
} // namespace ig

class HeliEffectsKitCorax;
class HelicopterCorax;
class Ship;
class UdpRecvKit;
class UdpSendKit;
struct FlagOper;
struct HandOper;
struct SonarInfo;
struct TorpedoInfo;
struct WinchInfo;

/// The scene logic of the helicopter visual channel: it shows the scene as the flight simulation
/// commands it, answers every frame with what lies below the helicopter, and animates what the host
/// does not pose. `CreateLogic` makes the one object; `LogicBase` tells how the application
/// drives it. Everything runs on the main thread.
///
/// The operations stand in the order of the files in `src/` that hold them:
///
///   entry.cpp         factory, construction, small event entries
///   startup.cpp       init
///   frame.cpp         update, swap, release
///   ships.cpp         the table of the ships, and their share in the three
///   reset_tracks.cpp  getWorldPath, tracks, reset
///   receive.cpp       the receive-and-apply cycle
///   feedback.cpp      the feedback datagram
///   apply_weather.cpp weather from the host to the signals, and from the application to the scene
///   apply_sea_pose.cpp  the sea and the helicopter's pose from the host
///   deflector.cpp     what keeps precipitation out of the cabin
///   scene_effects.cpp what all equipment does: it comes, goes, and shows effects
///   torpedo.cpp       the torpedo
///   missile_decoy.cpp  missiles and the decoy salvo
///   destruction.cpp   the helicopter's own end
///   sonar.cpp         the dipping sonar and thrown buoys
///   winch.cpp         the rescue winch
///   view_modes.cpp    who places the camera
///   navigation.cpp    how the camera moves
///   input.cpp         keyboard and mouse, polled
///   picking.cpp       what a segment meets
///   command_buttons.cpp  the panel of seventeen buttons
///   camera_panel.cpp  the row of camera fields
///   radar_display.cpp  the weather radar's picture
///
/// Ownership: the world owns every prefab in it; this object owns what `init` allocates and frees
/// it in `release`, never in the destructor. Ships, tracks and the records of weapons still in the
/// scene stay.
class LOGIC_API Logic_Nerith_Heli_Final : public LogicBase, public ig::MsgNode {
public:
    /// Who places the camera each frame.
    enum PLAYER_MODE : int {
        PLAYER_MODE_FIRST = 0, ///< it rides in the cockpit
        PLAYER_MODE_THIRD = 1, ///< it keeps its distance from the helicopter
        PLAYER_MODE_FREE = 2,  ///< nobody; input moves it
    };

    /// Told by the physics when a missile runs into something.
    class MissileCallback : public ig::BodyContactCallbackBase {
    public:
        /// Calls the handlers in their order.
        void onContact(ig::Body* body, int contact) override;
        ig::SignalList<ig::Body*, int> m_handlers;
    };

    // --- entry.cpp

    Logic_Nerith_Heli_Final(ig::World* world, ig::CameraControl* camera);
    Logic_Nerith_Heli_Final(const Logic_Nerith_Heli_Final&);
    Logic_Nerith_Heli_Final& operator=(const Logic_Nerith_Heli_Final&);
    ~Logic_Nerith_Heli_Final() override;

    void render() override {}
    void onMouseDown(const ig::GUIEventMouse&, ig::IApp*) override {}
    void onMouseUp(const ig::GUIEventMouse&, ig::IApp*) override {}
    void onMouseMove(const ig::GUIEventMouse&, ig::IApp*) override {}
    /// Third-person view: one metre nearer for a wheel rolled up, farther for one rolled down.
    void onMouseWheel(const ig::GUIEventWheel& event, ig::IApp* app) override;
    void onKeyPress(const ig::GUIEventKey&, ig::IApp*) override {}
    /// "g" toggles the helicopter's front projector.
    void onKeyRelease(const ig::GUIEventKey& event, ig::IApp* app) override;
    /// 654321 levels the camera.
    void processMsg(ig::UiMsg* message) override;

    // --- startup.cpp

    /// False, with nothing created, when the world has no node "start_heli"; whatever else is
    /// missing is skipped. Also false, with one error, when memory runs out; `release` gives back
    /// what had been created by then.
    bool init() override;

    // --- frame.cpp

    void update(float dt) override;
    void swap() override;
    /// The sonar, or its cable alone once it is cut loose, and the winch's load.
    void getHanging(ig::jVector<Hanging>& hanging) override;
    /// Frees what `init` created; a second call does nothing.
    void release() override;

    // --- reset_tracks.cpp

    ig::jString getWorldPath() override;
    ig::jString getStartNode() override { return "start_heli"; }
    /// Loads an animation track and keeps it for good; logged when that fails. Nothing for an empty
    /// path.
    void load_track(const ig::jString& path);
    /// The first loaded track of that path, or null.
    ig::Track* get_track(const ig::jString& path) const;
    /// Brings the scene back to its start without reloading: helicopter intact at its start marker,
    /// everything dropped or thrown removed, all actions ended. Missiles in flight stay where they
    /// are; winch, weather, view and camera are left alone.
    void reset();

    // --- receive.cpp

    /// Drains the receiving kit and applies every record in the order of arrival. Bound to the
    /// receive timer.
    void recv_udp(ig::TimerManager::Timer* timer);
    void apply_status(const UdpRecvData& record);
    void apply_leida(UdpRecvData& record);

    // Blocks that a host of the same family may carry and this scene does not show.
    void apply_leader(UdpRecvData&);
    void apply_task(UdpRecvData&);
    void apply_other_craft(UdpRecvData&);
    void apply_targets(UdpRecvData&);
    void apply_lights(UdpRecvData&);
    void apply_monit(UdpRecvData&);
    void apply_pnvs(UdpRecvData&);
    void apply_ssds(UdpRecvData&);
    void apply_ships(UdpRecvData&);
    void apply_observe_mode(UdpRecvData&);
    void apply_ship_state(UdpRecvData&);
    void apply_ground_state(UdpRecvData&);
    void apply_fog(UdpRecvData&);

    // --- feedback.cpp

    /// Reports the ground point below the helicopter, the height above it and the wheels' attitudes
    /// to the flight simulation: one datagram per call.
    void send_udp();

    // --- apply_weather.cpp

    // Announce what a record says of the weather; codes outside their tables announce nothing.
    void apply_system(UdpRecvData& record);
    void apply_weather(UdpRecvData& record);
    void apply_rain(UdpRecvData& record);
    void apply_snow(UdpRecvData& record);
    void apply_hail(UdpRecvData& record);
    void apply_cloud(UdpRecvData& record);

    /// Wets the helicopter's glass and the runway; it rains for values above 0.
    void setRain(float value) override;
    void setSnow(float value) override; ///< ices the runway
    void setTod(float value) override;  ///< switches the lights by the time of day

    // --- apply_sea_pose.cpp

    /// Announces the sea code and sets the ocean's own speed and angle.
    void apply_ocean(UdpRecvData& record);
    /// Poses the helicopter where the record says.
    void apply_heli(UdpRecvData& record);

    // --- deflector.cpp

    /// Places the first deflector of a weather node above the helicopter's cabin, at the height of
    /// the weather node, which the mount then keeps. Nothing for what is no particle system.
    void update_deflector(ig::Node* particles);

    // --- torpedo.cpp

    /// Drops a torpedo, 3 m below the helicopter, level and facing north.
    void emit_torpedo();
    /// Removes the torpedoes that are in the water, with an explosion and a splash, and those whose
    /// 40 s are over. Nothing without a sea.
    void update_torpedo(float dt);

    // --- missile_decoy.cpp

    /// Fires a missile straight ahead: 300 m/s for 20 s.
    void emit_missile();
    /// Shows a missile's explosion and takes the missile out of the physics, so that it explodes
    /// once; it flies on.
    void on_missile_hit(ig::Body* body, int contact);
    /// Removes the missiles whose flight is over.
    void update_missle();
    /// Ejects a decoy from each of the six dispensers; they are removed after 20 s.
    void emit_decoy();
    /// Removes the decoy whose timer is over: the action's data.
    void on_decoy_delete(ig::Action* action);

    // --- destruction.cpp

    /// Explosion, fire, and in a moment the wreck; the deployed sonar is removed. Always true.
    bool heli_explosion();
    /// Shows the wreck instead of the intact airframe.
    void on_heli_destory(ig::Action* action);
    /// Removes all living particles of the world's own nodes and its prefabs.
    void clear_all_particles();

    // --- sonar.cpp

    /// Deploys the dipping sonar, in place of a deployed one. False when there is none to deploy.
    bool emit_sonar();
    void release_sonar();        ///< removes the deployed sonar and shows the stowed one
    void break_sonar_joint();    ///< cuts the sonar loose
    bool is_break_sonar_joint(); ///< whether the deployed sonar has been cut loose
    void sonar_down(float dt);   ///< lengthens the cable by 2 m/s, to 16 m
    void sonar_up(float dt);     ///< shortens it by 2 m/s, to 2 m
    /// Shows the helicopter's stowed sonar exactly when none is deployed.
    void update_heli_sonar_enable();
    /// The deployed sonar's step: shown from the first one on; once cut loose it splashes into the
    /// sea and then floats.
    void update_sonar_op();
    /// Throws a sonar buoy, 1 m below the helicopter.
    void throw_sonar();
    /// The thrown buoys' step: they splash into the sea and then float.
    void update_sonar();

    // --- winch.cpp

    /// Deploys the winch's load, in place of a deployed one. False when there is none to deploy.
    bool emit_winch();
    void release_winch();
    void winch_down(float dt); ///< as the sonar's cable
    void winch_up(float dt);
    void update_heli_winch_enable(); ///< nothing: the hoist is never hidden
    /// The host's load: deployed, its cable's length and its mass set, or released.
    void apply_hang(UdpRecvData& record);

    // --- view_modes.cpp

    void set_player_mode(PLAYER_MODE mode);
    void change_view(); ///< the next mode: first, third, free, first, …
    void on_click_change_view(const ig::UIEventMouse*, ig::UIElement*);

    // --- navigation.cpp

    /// Moves the camera, without turning it, to its distance from the helicopter, and saves its
    /// pose. Nothing without a helicopter. Always true.
    bool update_third_view();
    /// Changes the distance by −`step` metres, 1 m at least.
    bool on_third_view_wheel(float step);
    /// Orbits about the point at the third-view distance ahead: degrees about the local vertical
    /// and about the camera's own X axis. False when there is nothing to do.
    bool rot_around(float yaw, float pitch);
    void cam_mov(float dt);                ///< free flight by keys, left mouse button held
    void cam_free_rot(float dx, float dy); ///< mouse look, a mouse button held; degrees
    /// Longitude, latitude, altitude. Nothing for a place where no camera can look from: not
    /// finite, near the earth's centre, or farther than the moon.
    void set_cam_pos_geo(const ig::dvec3& geo);
    ig::dvec3 get_cam_pos_geo() const;
    float get_heli_thr() const; ///< the collective; 0 without a helicopter

    // --- input.cpp

    /// The frame's input step: reads keys and mouse, advances the helicopter model, places the
    /// camera.
    void update_input();

    // --- picking.cpp

    /// The visible object whose surface the segment p0 → p1 meets nearest to p0, or null.
    /// `hitPoint`, when given, receives the point; it is left alone when nothing is met.
    ig::Object* select_object(const ig::dvec3& p0, const ig::dvec3& p1, ig::dvec3* hitPoint) const;
    /// The world point at the camera's far distance through a screen position in pixels; the
    /// camera's own place without camera or application.
    ig::dvec3 get_ray_to(double x, double y) const;

    // --- command_buttons.cpp

    /// Builds all panels; `init` builds them one by one. An application without a user interface
    /// gets none.
    void init_ui();
    void init_ui_btns();
    void on_click_radar_weather(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_heli_explosion(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_emit_torpedo(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_emit_sonar(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_close_sonar(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_break_sonar(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_emit_winch(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_close_winch(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_emit_missile(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_emit_decoy(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_heli_wiper(const ig::UIEventMouse*, ig::UIElement*);
    void on_click_reset(const ig::UIEventMouse*, ig::UIElement*);

    // --- camera_panel.cpp

    void init_ui_cam();
    void set_flt(float) {} ///< setter of a field that only shows its value
    /// A place was entered: the view that stays there.
    void show_free_view(const ig::dvec3&);

    // --- radar_display.cpp

    /// Builds the display, hidden: the world from above the helicopter, which the frame update
    /// carries along.
    void init_ui_radar();
    /// Bound to the viewport's signals around every drawing of its picture: the host's sector and
    /// gain hold between the two only.
    void on_viewport_radar_update_begin(ig::UISpriteViewport*);
    void on_viewport_radar_update_end(ig::UISpriteViewport*);

private:
    // startup.cpp: the steps of init
    bool create_helicopter(const ig::Node& start);
    void read_mounts();
    void find_weather_and_surfaces();
    bool create_effects();
    void place_start_camera();
    bool create_records();
    void find_commander();
    void announce_glass();
    void load_tracks();
    void preload_prefabs();
    bool open_link();
    static bool out_of_memory();

    // frame.cpp: the steps of update
    void update_flags(float dt);
    void place_panels();
    void update_ground_reference();
    void update_precipitation_deflector();
    void update_radar_camera();
    void update_effects();
    void pin_cable(ig::Node* anchor, const ig::dmat4& mount);

    // ships.cpp: their share in init, update and reset
    void create_ships();
    void update_ships();
    void reset_ships();

    // reset_tracks.cpp
    void reset_helicopter();

    // scene_effects.cpp: what all equipment does
    ig::dmat4 place_below_helicopter(double distance) const;
    ig::dvec3 add_below_mount(ig::ObjectPrefab* prefab, const ig::dmat4& mount, const char* name);
    void remove_from_scene(ig::ObjectPrefab* prefab);
    void show_airframe(const char* state, bool on);
    void play_effect(const ig::jString& path, float duration, const ig::dvec3& position);
    void announce_effect(const ig::jString& path, float duration, const ig::dvec3& position);
    void play_splash(const ig::jString& path, const ig::dvec3& surface);

    // torpedo.cpp
    bool is_torpedo_over(TorpedoInfo& info, float dt);

    // view_modes.cpp
    void place_first_view();

    // command_buttons.cpp
    void poll_hold_buttons(float dt);

    // input.cpp: the steps of update_input
    void act_on_command_keys(ig::ControlApp& keys);
    void set_speed_by_keys(ig::ControlApp& keys);
    void level_or_move_sonar(ig::ControlApp& keys, float dt);
    void place_camera_by_input(const ig::ControlApp* keys, float dt);

public:
    // Pointers are null until the operation named sets them. The order is fixed.
    ig::UIHLayout* m_cam_panel = nullptr;     ///< camera parameter panel
    ig::UIButton* m_btn_view = nullptr;       ///< view-mode button
    ig::UIButton* m_btn_sonar_down = nullptr; ///< hold-to-act buttons
    ig::UIButton* m_btn_sonar_up = nullptr;
    ig::UIButton* m_btn_winch_down = nullptr;
    ig::UIButton* m_btn_winch_up = nullptr;
    HelicopterCorax* m_heli = nullptr;        ///< owned; init
    HeliEffectsKitCorax* m_effects = nullptr; ///< owned; init
    float m_third_dist = 25.0f;               ///< third-view distance, metres
    bool m_raining = false;                   ///< whether rain is on
    ig::Node* m_rain = nullptr;               ///< the world's weather nodes; init
    ig::Node* m_snow = nullptr;
    ig::Node* m_hail = nullptr;
    PLAYER_MODE m_player_mode = PLAYER_MODE_THIRD;
    ig::dmat4 m_deflector_mount;      ///< local transforms of the helicopter's mounts; init
    ig::dmat4 m_first_view_transform; ///< of the pilot's eye
    ig::dmat4 m_dispensers[6];        ///< dl_0, dl_1, dl_2, dr_0, dr_1, dr_2
    ig::dmat4 m_sonar_mount;
    ig::dmat4 m_winch_mount;
    ig::dquat m_third_cam_rot; ///< camera pose saved by the last third-view placement, world
    ig::dvec3 m_third_cam_pos;
    ig::ObjectTerrain* m_terrain = nullptr; ///< the world's; init
    ig::ObjectOcean* m_ocean = nullptr;     ///< the world's; init
    ig::ActionManager m_action_manager;     ///< weapon flights and effects
    Ship* m_ship1 = nullptr;                ///< created once, not freed by release
    Ship* m_ship2 = nullptr;
    ig::dmat4 m_ship1_start; ///< world transforms at start-up, restored by reset
    ig::dmat4 m_ship2_start;
    ig::UIVLayout* m_btn_panel = nullptr;   ///< command buttons
    ig::UIVLayout* m_radar_panel = nullptr; ///< weather radar
    FlagOper* m_flag_qizi1 = nullptr;       ///< owned; init
    FlagOper* m_flag_qizi2 = nullptr;
    FlagOper* m_flag_qizhi = nullptr;
    HandOper* m_cmder = nullptr;          ///< owned; init; the deck commander's hands
    ig::Camera* m_radar_object = nullptr; ///< owned; radar camera above the helicopter
    ig::UISpriteViewport* m_radar_viewport = nullptr;
    MissileCallback m_missile_callback;
    ig::jVector<TorpedoInfo*> m_torpedo_infos;
    ig::jVector<SonarInfo*> m_thrown_sonars;
    ig::jVector<ig::ObjectPrefab*> m_missiles;
    ig::jVector<ig::ObjectPrefab*> m_decoys;
    SonarInfo* m_sonar_info = nullptr; ///< owned; init; the deployed dipping sonar
    WinchInfo* m_winch_info = nullptr; ///< owned; init; the deployed winch load
    ig::jVector<ig::Track*> m_tracks;  ///< in loading order; never unloaded
    double m_radar_saved_value = 0;    ///< the engine value that the radar picture replaces
    double m_radar_value = 0;          ///< from the host
    float m_radar_sector_width = 0;    ///< degrees, from the host
    float m_radar_sector_offset = 0;   ///< degrees, from the host
    ig::TimerManager m_timers;         ///< carries the receive timer
    UdpRecvKit* m_udp_recv = nullptr;  ///< owned; init
    UdpSendKit* m_udp_send = nullptr;  ///< owned; init
};
