// SPDX-License-Identifier: MIT
#pragma once

#include "common/logic/SignalTypes.h"
#include "ig/app/IApp.h"
#include "ig/base/Function.h"
#include "ig/base/jAllocator.h"

namespace ig {
class CameraControl;
class Material;
class Node;
class Object;
class ObjectPrefab;
class Track;
class World;
} // namespace ig

#define LOGIC_API __attribute__((visibility("default")))

/// Base of every logic plug-in. The application loads the library, calls its exported factory
/// `LogicBase* CreateLogic(World*, CameraControl*)`, loads the world that `getWorldPath` names,
/// calls `init` once, then `update` and `swap` every frame with the event entries between frames,
/// at the end `release`, and deletes the object. All on the main thread.
///
/// The signal lists tell the application what changes in the scene. It fills them after
/// creation; the logic emits, synchronously, and never reads what the listeners do. Listeners must
/// not change a list while it is emitted.
class LOGIC_API LogicBase {
public:
    LogicBase(ig::World* world, ig::CameraControl* camera);
    LogicBase(const LogicBase&);
    LogicBase& operator=(const LogicBase&);

    virtual int getCamSpeed() const { return m_cam_speed; }
    virtual void setCamSpeed(int speed) { m_cam_speed = speed; }
    virtual ~LogicBase() = default;

    // Values from the application, on scales of its own.
    virtual void setRain(float) {}
    virtual void setSnow(float) {}
    virtual void setTod(float) {}

    /// The world that the logic works in, relative to the working directory.
    virtual ig::jString getWorldPath() { return {}; }
    /// False when the logic can't work in this world; it must then only be released and deleted.
    virtual bool init() { return true; }
    virtual void update(float) {} ///< once per frame, seconds
    virtual void render() {}
    /// Places the camera, just before the frame is drawn; where what the picture is about was shown
    /// apart from its place in the scene, once more after that.
    virtual void swap() {}
    virtual void release() {}
    virtual void onMouseDown(const ig::GUIEventMouse&, ig::IApp*) {}
    virtual void onMouseUp(const ig::GUIEventMouse&, ig::IApp*) {}
    virtual void onMouseMove(const ig::GUIEventMouse&, ig::IApp*) {}
    virtual void onMouseWheel(const ig::GUIEventWheel&, ig::IApp*) {}
    virtual void onKeyPress(const ig::GUIEventKey&, ig::IApp*) {}
    virtual void onKeyRelease(const ig::GUIEventKey&, ig::IApp*) {}
    /// The node of its world that the scene begins at, where the camera stands before `init`; the
    /// application names it when `init` fails for want of it. Empty: there is none.
    virtual ig::jString getStartNode() { return {}; }
    /// Something that hangs on what the picture is about and is no part of it, and what it hangs
    /// by, which the logic keeps at a place of that.
    struct Hanging {
        ig::Node* node;
        const ig::Node* by;
    };
    /// All that hangs there now. Where the application shows what the picture is about a little
    /// apart from its place in the scene, it shows these along with it.
    virtual void getHanging(ig::jVector<Hanging>&) {}

    /// Logic objects come from the engine allocator; `delete` takes them out of the memory tracker.
    static void* operator new(std::size_t size) { return ig::jObject::operator new(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory) noexcept { ig::jObject::operator delete(memory); }

protected:
    /// Levels the camera on the earth's surface and keeps its heading: its Y axis becomes the
    /// direction from the earth's centre, and what its Z axis had of the horizontal stays. A camera
    /// that looks along the vertical is levelled by its X axis. Nothing without a camera.
    void adjust_geo_rotation_forward();

    ig::CameraControl* m_camera_control; ///< the application's
    ig::World* m_world;                  ///< the application's
    int m_cam_speed = 100;               ///< of the free camera, metres per second

public:
    ig::SignalList<ig::Node*> m_sig_node;
    ig::SignalList<int> m_sig_code;               ///< the scene was reset: 25, then 26
    ig::SignalList<ig::Node*> m_sig_node_removed; ///< just before it is removed
    /// What comes into the scene. The first one, announced in `init`, is what the picture is about:
    /// the application tells its pose, levels the camera when it jumps, and lets it into the view
    /// of whoever rides on it.
    ig::SignalList<ig::ObjectPrefab*, bool> m_sig_prefab_added;
    ig::SignalList<ig::jString, ig::Node*, bool> m_sig_named_node;
    ig::SignalList<SynCoder::CMDPlaySpeOnceInfo*> m_sig_play_spe_once;
    ig::SignalList<ig::Material*> m_sig_material;
    ig::SignalList<ig::Object*, int> m_sig_object; ///< objects of the helicopter worth knowing
    ig::SignalList<ig::Node*, const ig::jString&> m_sig_node_text;
    ig::SignalList<const ig::jString&> m_sig_preload; ///< paths of preloaded prefabs
    ig::SignalList<ig::Track*> m_sig_track_loaded;
    ig::SignalList<CMD_TYPE> m_sig_command;
    ig::Function<void()> m_callback;
    ig::SignalList<float> m_sig_float_1;
    ig::SignalList<float> m_sig_float_2; ///< direction of the wind: −90 − the host's angle
    /// Speed of the wind, m/s; the first of the three. Once for every record, whatever it says: the
    /// application counts by it what was applied.
    ig::SignalList<float> m_sig_float_3;
    ig::SignalList<WEATHER_TYPE> m_sig_weather;
    ig::SignalList<WEATHER_DETAIL> m_sig_rain;
    ig::SignalList<WEATHER_DETAIL> m_sig_snow;
    ig::SignalList<WEATHER_DETAIL> m_sig_hail;
    ig::SignalList<float> m_sig_float_4; ///< visibility as a fraction of 300 km
    ig::SignalList<CloudInfo*> m_sig_cloud;
    ig::SignalList<float> m_sig_float_5;
    ig::SignalList<int> m_sig_sea; ///< the host's sea code
};

/// What a logic library exports under the name "CreateLogic". Null when memory ran out.
using CreateLogicFunction = LogicBase* (*)(ig::World*, ig::CameraControl*);
