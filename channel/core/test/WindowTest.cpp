// SPDX-License-Identifier: MIT

// The channel in a real window, worked with a real mouse and keyboard as far as it can tell: what
// is clicked is clicked where it is drawn, and what comes of it is seen in the scene.

#include "Channel.h"
#include "EventQueue.h"
#include "frames/FrameLog.h"
#include "heli/config/AppData.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/physics/BodyRope.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "render/factory/RendererKind.h"
#include "testkit/ChannelFolder.h"
#include "testkit/LogCapture.h"
#include "testkit/LogicScene.h"
#include "testkit/VirtualScreen.h"

#define XK_MISCELLANY
#include <X11/keysymdef.h>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <numbers>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

namespace {

using namespace ig;
using Logic = Logic_Nerith_Heli_Final;

struct Messages final : MsgNode {
    Messages() { attach(); }
    void processMsg(UiMsg* message) override { seen.push_back(message->id); }
    std::vector<int> take() { return std::exchange(seen, {}); }
    std::vector<int> seen;
};

struct WindowTest : testing::Test {
    static constexpr int WIDTH = 480, HEIGHT = 400;
    static constexpr float ONE_FRAME = 0.13f; ///< metres of rope, at 2 m/s

    WindowTest() {
        options.window = true;
        options.warm_up = false;
        options.width = WIDTH;
        options.height = HEIGHT;
        options.scale = 0.5f;
        options.eye = {0, 0, 3000, 0, 80}; // the sky: quick to draw
        options.frame_rate = 0;
        options.step = 1 / 16.0;
        options.quiet = true;
        options.language = "en";
    }
    void SetUp() override {
        if (!VirtualScreen::isInstalled())
            GTEST_SKIP() << "there is no Xvfb or no openbox: nothing of the window is tested";
        open();
    }
    void TearDown() override {
        channel.reset();
        AppData::destroy_instance();
    }
    void open() {
        screen.emplace(desktop);
        channel.emplace(options);
        ASSERT_TRUE(channel->open());
        ASSERT_TRUE(screen->watch("Visual channel"));
        frames(3);
    }

    /// An event may reach the window a frame late: when one that came before waits in its queue, it
    /// doesn't look for more.
    void frames(int count = 2) {
        for (int i = 0; i < count; i++)
            ASSERT_TRUE(channel->runFrame());
    }
    Logic& logic() { return static_cast<Logic&>(*channel->getLogic()); }

    /// Where the picture shows a text, or an image of that path; the command's rectangle.
    std::optional<UiDrawList::Command> drawn(const std::string& text) {
        channel->getUIRoot()->draw(list);
        for (const UiDrawList::Command& command : list.getCommands())
            if (list.text(command) == text) return command;
        return {};
    }
    bool shows(const std::string& part) {
        channel->getUIRoot()->draw(list);
        for (const UiDrawList::Command& command : list.getCommands())
            if (list.text(command).find(part) != std::string_view::npos) return true;
        return false;
    }
    /// The mouse goes to the middle of a line of ideographs.
    void pointAt(const std::string& text) {
        const auto at = drawn(text);
        ASSERT_TRUE(at) << text << " is not drawn";
        const auto count = static_cast<float>(text.size() / 3); // three bytes each, square
        screen->move(at->x + count * at->h / 2, at->y + at->h / 2);
    }
    void click(const std::string& text) {
        pointAt(text);
        clickHere();
    }
    void clickHere() {
        screen->button(1, true);
        frames(1);
        screen->button(1, false);
        frames();
    }
    /// Clicks into the first field to the right of an icon.
    void clickField(const std::string& icon) {
        const auto at = drawn(icon);
        ASSERT_TRUE(at) << icon << " is not drawn";
        screen->move(at->x + at->w + 12, at->y + at->h / 2);
        clickHere();
    }
    void stroke(unsigned long symbol) {
        screen->stroke(symbol);
        frames();
    }
    /// Width over height of what the logic's camera sees.
    double aspectSeen() {
        const double w = channel->getWidth(), h = channel->getHeight();
        const dvec3 middle = logic().get_ray_to(w / 2, h / 2);
        return length(logic().get_ray_to(w, h / 2) - middle) /
               length(logic().get_ray_to(w / 2, h) - middle);
    }
    /// Length that a rope gains while the left button is held on a text for half a second.
    float gain(const std::string& text, Node* node) {
        const float before = ropeLength(node);
        pointAt(text);
        screen->button(1, true);
        frames(8);
        screen->button(1, false);
        frames(3);
        return ropeLength(node) - before;
    }
    static float ropeLength(Node* node) {
        Body* body = node && node->isObject() ? static_cast<Object*>(node)->getBody() : nullptr;
        if (!body || body->getType() != Body::BODY_ROPE) return -1;
        return static_cast<BodyRope*>(body)->getLength() * 1.5f; // as displayed
    }
    Node* helicopterNode(const char* name) { return logic().m_heli->m_prefab->getNodeByName(name); }

    VirtualScreen::Desktop desktop;
    Options options;
    ChannelFolder folder;
    LogCapture log;
    std::optional<VirtualScreen> screen;
    std::optional<Channel> channel;
    UiDrawList list;
    const std::string SPEED = "data/core/editor/gui/run.dds";
    const std::string POSITION = "data/core/editor/gui/position.dds";
};

// ------------------------------------------------------------------ the panels

TEST_F(WindowTest, EveryButtonIsClickedWhereItIsDrawn) {
    click("第三视角");
    EXPECT_EQ(logic().m_player_mode, Logic::PLAYER_MODE_FREE);
    click("自由视角"); // the button names the view that is on
    EXPECT_EQ(logic().m_player_mode, Logic::PLAYER_MODE_FIRST);
    click("第一视角");
    EXPECT_EQ(logic().m_player_mode, Logic::PLAYER_MODE_THIRD);
    click("气象雷达");
    EXPECT_FALSE(logic().m_radar_viewport->isHidden());
    click("开闭雨刷");
    EXPECT_TRUE(logic().m_heli->is_wiper_on());

    click("打开声呐");
    ASSERT_NE(logic().m_sonar_info->prefab, nullptr);
    EXPECT_NEAR(gain("下放声呐", logic().m_sonar_info->rope), 1, ONE_FRAME); // 2 m/s
    EXPECT_NEAR(gain("上拉声呐", logic().m_sonar_info->rope), -1, ONE_FRAME);
    click("释放声呐");
    EXPECT_TRUE(logic().is_break_sonar_joint());
    click("关闭声呐");
    EXPECT_EQ(logic().m_sonar_info->prefab, nullptr);

    click("打开吊索");
    ASSERT_NE(logic().m_winch_info->prefab, nullptr);
    EXPECT_NEAR(gain("下放吊索", logic().m_winch_info->rope), 1, ONE_FRAME);
    EXPECT_NEAR(gain("上拉吊索", logic().m_winch_info->rope), -1, ONE_FRAME);
    click("关闭吊索");
    EXPECT_EQ(logic().m_winch_info->prefab, nullptr);

    click("投放鱼雷");
    EXPECT_EQ(logic().m_torpedo_infos.size(), 1);
    click("发射导弹");
    EXPECT_EQ(logic().m_missiles.size(), 1);
    click("发射诱饵");
    EXPECT_EQ(logic().m_decoys.size(), 6);
    click("飞机损毁");
    EXPECT_TRUE(helicopterNode("fire")->isEnabled());
    click("场景重置");
    EXPECT_FALSE(helicopterNode("fire")->isEnabled());
    EXPECT_EQ(logic().m_torpedo_infos.size() + logic().m_decoys.size(), 0);
}

TEST_F(WindowTest, HitAreasFollowThePanelThatFitsEveryWindow) {
    const auto before = drawn("气象雷达");
    ASSERT_TRUE(before);
    for (const auto& [width, height] : {std::pair(420, 200), {300, 780}, {1000, 700}}) {
        screen->resize(width, height);
        frames(3);
        EXPECT_NEAR(aspectSeen(), static_cast<double>(width) / height, 1e-3);
        const auto top = drawn("第三视角"), bottom = drawn("场景重置");
        ASSERT_TRUE(top && bottom);
        EXPECT_GE(top->y, 0) << width << " x " << height;
        EXPECT_LE(bottom->y + bottom->h, height) << width << " x " << height;
        EXPECT_LE(bottom->x + 4 * bottom->h, width) << width << " x " << height;
        const int missiles = logic().m_missiles.size();
        click("发射导弹"); // near the lower end
        EXPECT_EQ(logic().m_missiles.size(), missiles + 1) << width << " x " << height;
    }
    screen->move(before->x + before->h, before->y + before->h / 2); // where it was at first
    clickHere();
    EXPECT_TRUE(logic().m_radar_viewport->isHidden());
}

TEST_F(WindowTest, FieldsTakeWhatIsTypedAndTypingIsNoCommand) {
    Messages messages;
    clickField(SPEED);
    screen->type("5");
    stroke(' ');
    screen->type("abch123");
    for (const unsigned long symbol : {XK_Home, XK_Delete, XK_End, XK_BackSpace})
        stroke(symbol);
    EXPECT_TRUE(drawn("12"));
    screen->rollUp(); // the mouse is over the field
    frames();
    EXPECT_TRUE(drawn("13"));
    EXPECT_EQ(logic().getCamSpeed(), 13);
    screen->type("0");
    frames();
    EXPECT_EQ(logic().getCamSpeed(), 13); // not yet, and no command either
    EXPECT_EQ(logic().m_missiles.size(), 0);
    EXPECT_FALSE(shows("dipping sonar"));
    messages.take();
    stroke(XK_Return);
    EXPECT_EQ(logic().getCamSpeed(), 130);
    EXPECT_EQ(messages.take(), std::vector<int>{123456});
    stroke('3'); // the field is left
    EXPECT_EQ(logic().getCamSpeed(), 1000);

    clickField(POSITION);
    screen->type("-154.5");
    stroke(XK_Tab);
    screen->type("19.25");
    stroke(XK_Tab);
    screen->type("1234");
    stroke(XK_Return);
    const dvec3 geo = logic().get_cam_pos_geo();
    EXPECT_NEAR(geo.x, -154.5, 1e-6);
    EXPECT_NEAR(geo.y, 19.25, 1e-6);
    EXPECT_NEAR(geo.z, 1234, 1e-3);
    EXPECT_EQ(messages.take(), std::vector<int>(3, 654321));
}

TEST_F(WindowTest, CopyAndPasteGoThroughTheDesktopsClipboard) {
    clickField(SPEED);
    screen->type("4711");
    screen->key(XK_Control_L, true);
    for (const char symbol : {'a', 'c', 'v', 'v'}) // over the selection, and after it
        stroke(static_cast<unsigned long>(symbol));
    screen->key(XK_Control_L, false);
    EXPECT_TRUE(drawn("47114711"));
}

struct RecordedWindowTest : WindowTest {
    RecordedWindowTest() { options.record = path; }
    ~RecordedWindowTest() override { std::filesystem::remove(path); }
    const std::string path = testing::TempDir() + "window_" + std::to_string(getpid());
};

TEST_F(RecordedWindowTest, OfTheClipboardALogHoldsWhatWasPastedIntoAField) {
    clickField(SPEED);
    screen->type("4711");
    screen->key(XK_Control_L, true);
    for (const char symbol : {'a', 'c', 'v'})
        stroke(static_cast<unsigned long>(symbol));
    screen->key(XK_Control_L, false);
    stroke(XK_Return);
    screen->key(XK_Control_L, true);
    stroke('v');
    screen->key(XK_Control_L, false);
    frames();
    channel.reset();
    frames::LogReader reader;
    ASSERT_TRUE(reader.open(path)) << reader.getMessage();
    frames::FrameInput input;
    std::vector<frames::PartDigest> digests;
    std::vector<std::string> pasted;
    while (reader.next(input, digests) < frames::LogItem::end)
        if (input.clipboard) pasted.push_back(*std::exchange(input.clipboard, {}));
    EXPECT_EQ(pasted, std::vector<std::string>{"4711"});
}

struct LargeWindowTest : WindowTest {
    LargeWindowTest() {
        desktop.dpi = 144;
        options.width = 1000;
        options.height = 780;
        options.interface_size = 1.3f;
    }
};

TEST_F(LargeWindowTest, PanelsHaveTheirSizeInInchesTimesTheAskedOneFromTheBeginning) {
    for (const int width : {1000, 990}) {
        screen->resize(width, 780);
        frames(3);
        const auto at = drawn("场景重置");
        ASSERT_TRUE(at);
        EXPECT_NEAR(at->h, 15 * 1.5f * 1.3f * 0.7f, 1); // 17 if either were left out
    }
    click("气象雷达");
    EXPECT_FALSE(logic().m_radar_viewport->isHidden());
}

// ------------------------------------------------------------------ the scene

TEST_F(WindowTest, KeysCommandTheSceneAndTheWindow) {
    EXPECT_TRUE(shows("F12")); // the hint
    stroke(XK_F12);
    EXPECT_TRUE(shows("dipping sonar"));
    stroke('h');
    EXPECT_FALSE(shows("dipping sonar") || shows("F12")); // it was followed
    stroke(XK_F11);
    stroke(XK_F11);
    frames(10);
    EXPECT_TRUE(shows("frames/s"));
    EXPECT_TRUE(shows("records per frame"));
    stroke(' ');
    EXPECT_EQ(logic().m_missiles.size(), 1);

    folder.write("picture_0002.png", "of a former run");
    screen->key(XK_Alt_L, true);
    for (const char* name : {"picture_0001.png", "picture_0003.png"}) {
        stroke('p');
        for (int i = 0; i < 200 && !shows(name); i++) // it is told once it is written
            frames(1);
        EXPECT_TRUE(shows(name) && std::filesystem::exists(name)) << name;
    }
    EXPECT_EQ(std::filesystem::file_size("picture_0002.png"), 15u);
    stroke(XK_Return);
    frames(2);
    EXPECT_EQ(channel->getWidth(), VirtualScreen::WIDTH);
    EXPECT_EQ(channel->getHeight(), VirtualScreen::HEIGHT);
    stroke(XK_Return);
    frames(2);
    EXPECT_EQ(channel->getWidth(), WIDTH);
    screen->key(XK_Alt_L, false);
}

TEST_F(WindowTest, TheKeypadsDigitsAreDigitsWhileNumLockIsOn) {
    stroke(XK_F2);
    Node* rope = logic().m_sonar_info->rope;
    const float before = ropeLength(rope);
    stroke(XK_KP_2); // down
    EXPECT_GT(ropeLength(rope), before);
    EXPECT_EQ(logic().getCamSpeed(), 100);
    stroke(XK_Up);
    EXPECT_EQ(ropeLength(rope), before);
    stroke(XK_Num_Lock);
    stroke(XK_KP_2);
    EXPECT_EQ(logic().getCamSpeed(), 200);
}

struct FrenchWindowTest : WindowTest {
    FrenchWindowTest() { desktop.layout = "fr"; }
};

TEST_F(FrenchWindowTest, KeysGoByWhatStandsOnThem) {
    stroke(XK_F1);
    const auto position = [this] { return EllipsoidModel().toWorld(logic().get_cam_pos_geo()); };
    const dvec3 before = position();
    screen->move(300, 200);
    screen->button(1, true);
    frames(1);
    screen->key('w', true);
    frames(4);
    screen->key('w', false);
    screen->button(1, false);
    frames(1);
    EXPECT_GT(length(position() - before), 10);
    stroke('&'); // the digits' place
    EXPECT_EQ(logic().getCamSpeed(), 10);
}

TEST_F(WindowTest, TheMouseMovesTheCameras) {
    const auto drag = [this](int button, float x) {
        screen->move(300, 200);
        frames(1);
        screen->button(button, true);
        frames(1);
        screen->move(300 + x, 200);
        frames(2);
        screen->button(button, false);
        frames(1);
    };
    const auto ahead = [this] {
        return normalize(logic().get_ray_to(WIDTH / 2, HEIGHT / 2) -
                         EllipsoidModel().toWorld(logic().get_cam_pos_geo()));
    };
    screen->move(300, 200);
    screen->rollUp();
    frames();
    const double distance = (25 - 1) * 0.9; // a metre by the event, a tenth by poll
    EXPECT_NEAR(logic().m_third_dist, distance, 1e-4);

    const dvec3 behind = logic().m_third_cam_pos;
    drag(3, 80); // the right button orbits nothing
    EXPECT_LT(length(logic().m_third_cam_pos - behind), 0.1);
    drag(1, 80); // 20 degrees
    EXPECT_NEAR(length(logic().m_third_cam_pos - behind),
                2 * distance * std::sin(10 * std::numbers::pi / 180), 1.0);
    stroke(XK_F1);
    const dvec3 looked = ahead();
    drag(3, 40); // 10 degrees
    EXPECT_NEAR(dot(looked, ahead()), std::cos(10 * std::numbers::pi / 180), 0.01);
}

TEST_F(WindowTest, NothingStaysHeldThatWasLetGo) {
    screen->hold(XK_F1, 5); // it repeats, and is one press
    frames();
    EXPECT_EQ(logic().m_player_mode, Logic::PLAYER_MODE_FREE);
    clickField(SPEED);
    screen->type("1234567");
    screen->hold(XK_BackSpace, 5); // while in a text it does repeat
    frames();
    EXPECT_FALSE(shows("123"));
    stroke(XK_Escape);

    pointAt("发射诱饵");
    screen->button(1, true);
    frames();
    screen->focus(false); // another window has the keyboard: no click comes of it
    frames();
    screen->button(1, false);
    screen->focus(true);
    frames();
    EXPECT_EQ(logic().m_decoys.size(), 0);
}

TEST_F(WindowTest, ModifiersAreAsTheyAreWhenAWindowManagerTookTheirKeys) {
    const auto all = [this] { return channel->getWidth() == VirtualScreen::WIDTH; };
    screen->key(XK_Alt_L, true);
    frames();
    screen->grabKeyboard();
    screen->key(XK_Alt_L, false);
    screen->ungrabKeyboard();
    stroke(XK_Return); // levels the camera
    frames();
    EXPECT_FALSE(all());
    screen->key(XK_Alt_L, true); // for the window system it was down all the time
    stroke(XK_Return);
    frames();
    EXPECT_TRUE(all());
    screen->key(XK_Alt_L, false);
    frames();
    screen->grabKeyboard();
    screen->key(XK_Alt_L, true);
    screen->ungrabKeyboard();
    stroke(XK_Return);
    frames();
    EXPECT_FALSE(all()); // and back
    screen->key(XK_Alt_L, false);
}

TEST_F(WindowTest, AJumpLevelsTheCameraThatComesAlongAndLeavesTheFreeOne) {
    const auto tilt = [this] {
        return dot(logic().get_ray_to(WIDTH / 2, 0) - logic().get_ray_to(WIDTH / 2, HEIGHT),
                   EllipsoidModel().getUp(EllipsoidModel().toWorld(logic().get_cam_pos_geo())));
    };
    const auto jump = [this](double longitude) {
        UdpRecvData record = LogicScene::record();
        record.longitude = longitude;
        record.altitude = 100;
        folder.peer.send(&record, sizeof record, folder.records_port);
        frames(3);
    };
    EXPECT_TRUE(shows("no host yet on port"));
    jump(-155);
    EXPECT_FALSE(shows("no host yet"));
    screen->move(300, 200);
    screen->button(1, true);
    frames(1);
    screen->move(300, 280); // 20 degrees
    frames(2);
    screen->button(1, false);
    stroke(XK_F1);
    const double free = tilt();
    jump(-100);
    EXPECT_EQ(tilt(), free);
    stroke(XK_F1);
    stroke(XK_F1);
    jump(-40);
    EXPECT_GT(tilt(), free);
}

struct ManagedWindowTest : WindowTest {
    ManagedWindowTest() {
        desktop.managed = true;
        options.full_screen = true;
    }
};

TEST_F(ManagedWindowTest, FullScreenFromTheStartStaysWhenAnotherProgramHasTheKeyboard) {
    for (int i = 0; i < 200 && channel->getWidth() != VirtualScreen::WIDTH; i++) {
        screen->waitForManager();
        frames(1);
    }
    ASSERT_EQ(channel->getWidth(), VirtualScreen::WIDTH);
    screen->openOtherProgram();
    frames(3);
    screen->waitForManager();
    EXPECT_TRUE(screen->isWindowShown());
    frames(2);
    EXPECT_EQ(channel->getWidth(), VirtualScreen::WIDTH);
}

struct IconifiedWindowTest : WindowTest {
    IconifiedWindowTest() { desktop.managed = true; }
    int countAnswers() {
        int count = 0;
        while (!folder.peer.receive().empty())
            count++;
        return count;
    }
};

TEST_F(IconifiedWindowTest, EveryFrameIsAnsweredAndThePictureComesBack) {
    screen->iconify();
    ASSERT_FALSE(screen->isWindowShown());
    countAnswers();
    frames(10);
    EXPECT_EQ(countAnswers(), 10);
    screen->restore();
    frames();
    EXPECT_TRUE(screen->isWindowShown());
    screen->resize(420, 300);
    frames(3);
    EXPECT_EQ(channel->getWidth(), 420);
}

struct ReplayWindowTest : WindowTest {
    ReplayWindowTest() {
        options.width = 400;
        options.height = 300;
        options.record = "run.flog";
    }
    /// What the window shows of the picture, magnified and moved to the right, on a coarse grid.
    std::vector<int> seen(int magnified, int right) {
        std::vector<int> channels;
        for (int y = 5; y < 300; y += 10)
            for (int x = 5; x < 400; x += 10) {
                const unsigned pixel = screen->readPixel(right + magnified * x, magnified * y);
                for (const int shift : {16, 8, 0})
                    channels.push_back(static_cast<int>(pixel >> shift & 0xff));
            }
        return channels;
    }
};

TEST_F(ReplayWindowTest, ThePictureFillsAWindowOfAnySizeAndKeepsItsProportions) {
    frames(12);
    const std::vector<int> live = seen(1, 0);
    TearDown();
    options.replay = std::exchange(options.record, "");
    channel.emplace(options);
    ASSERT_TRUE(channel->open());
    ASSERT_TRUE(screen->watch("Visual channel"));
    frames(3);
    screen->resize(1000, 600);
    frames(12);
    EXPECT_EQ(channel->getWidth(), 400);
    const std::vector<int> replayed = seen(2, 100);
    int apart = 0; // where an edge of a panel or a letter passes
    for (std::size_t i = 0; i < live.size(); i++)
        apart += std::abs(live[i] - replayed[i]) > 64 ? 1 : 0;
    EXPECT_LT(apart, static_cast<int>(live.size() / 50));
    for (const int bar : {3, 96, 904, 996})
        EXPECT_EQ(screen->readPixel(bar, 300), 0u) << bar;
}

TEST(Window, ThePictureThatIsReadBackIsTheOneThatIsShown) {
    if (!VirtualScreen::isInstalled()) GTEST_SKIP() << "there is no Xvfb or no openbox";
    VirtualScreen screen;
    EventQueue events;
    Window window(events);
    ASSERT_TRUE(window.open(200, 100));
    ASSERT_TRUE(screen.watch("Visual channel"));
    const auto renderer = findRendererKind("gl")->make(true);
    ASSERT_TRUE(renderer->init(200, 100));
    const World world;
    Camera camera;
    camera.setPerspective(50, 2, 0.1f, 1e7f);
    camera.setWgsPosition({-155, 19.7, 3000});
    camera.setWgsHPR({0, 5, 0});
    UiDrawList list;
    list.addRect(20, 10, 60, 30, {1, 0, 0, 0.5f});
    FrameInfo frame;
    frame.sun_direction = normalize(camera.getWorldPosition());
    frame.ui = &list;
    for (const float scale : {1.0f, 0.5f}) {
        renderer->setScale(scale);
        Picture before, after; // the window's own pixels need not outlast the swap
        renderer->render(world, camera, frame);
        ASSERT_TRUE(renderer->readPicture(before));
        renderer->render(world, camera, frame);
        window.swap();
        ASSERT_TRUE(renderer->readPicture(after));
        EXPECT_EQ(before.rgb, after.rgb);
        int different = 0;
        for (int y = 2; y < 100; y += 7)
            for (int x = 3; x < 200; x += 7) {
                const std::uint8_t* p = after.at(x, y);
                different += screen.readPixel(x, y) != unsigned(p[0] << 16 | p[1] << 8 | p[2]);
            }
        EXPECT_EQ(different, 0) << scale;
        EXPECT_GT(after.at(50, 20)[0], after.at(50, 20)[2] + 40); // the interface
    }
    renderer->release();
}

TEST(Window, PicturesWaitForTheDisplayUnlessNobodySeesThemOrNoneShallWait) {
    if (!VirtualScreen::isInstalled()) GTEST_SKIP() << "there is no Xvfb or no openbox";
    VirtualScreen screen({.managed = true});
    LogCapture log;
    EventQueue events;
    Window window(events);
    ASSERT_TRUE(window.open(200, 100));
    ASSERT_TRUE(screen.watch("Visual channel"));
    const auto waits = [&] {
        screen.waitForManager();
        for (int i = 0; i < 2; i++) // while one event waits it doesn't look for more
            window.poll();
        const Shown shown = window.swap();
        return shown.back > shown.finished;
    };
    EXPECT_TRUE(waits());
    screen.iconify();
    EXPECT_FALSE(waits());
    screen.restore();
    EXPECT_TRUE(waits());
    EXPECT_EQ(log.lines.size(), 0u);
    window.setVerticalSync(VerticalSync::late); // which Xvfb has not
    EXPECT_TRUE(waits());
    EXPECT_EQ(log.lines.size(), 1u);
}

TEST(FindMostCovered, TheMonitorThatHasMostOfTheWindow) {
    const std::vector<DesktopArea> monitors = {
        {0, 0, 1920, 1080}, {1920, 0, 1280, 720}, {1920, 720, 800, 600}};
    EXPECT_EQ(findMostCovered({100, 100, 640, 360}, monitors), 0u);
    EXPECT_EQ(findMostCovered({1800, 100, 640, 360}, monitors), 1u);
    EXPECT_EQ(findMostCovered({1930, 700, 640, 360}, monitors), 2u);
    EXPECT_EQ(findMostCovered({-5000, 0, 640, 360}, monitors), 0u);
}

// ------------------------------------------------------------------ the end

/// Acts in every frame, also in those that run while the channel waits for an answer.
struct EveryFrame final : UIElement {
    EveryFrame(UIRoot* root, std::function<void()> act_in_frame)
        : UIElement(root), act(std::move(act_in_frame)) {
        setHidden(true);
    }
    void refresh() override { act(); }
    void measure(int&, int&) const override {}
    std::function<void()> act;
};

TEST_F(WindowTest, TheCloseButtonAsksBackAndTheSceneGoesOnMeanwhile) {
    const std::string question = "End the visual channel?";
    int frame = 0, asked = 0, answered = 0;
    channel->getUIRoot()->addChild(new EveryFrame(channel->getUIRoot(), [&] {
        frame++;
        if (frame % 30 == 1) screen->pressCloseButton();
        if (!shows(question)) return;
        asked++;
        if (frame % 30 != 15) return;
        answered++;
        screen->stroke(answered == 1 ? XK_Escape : XK_Return);
    }));
    channel->run();
    EXPECT_EQ(answered, 2); // no, then yes
    EXPECT_GT(asked, 20);   // frames went on below the question
    EXPECT_LE(frame, 30 + 20);
    EXPECT_FALSE(channel->runFrame());
}

} // namespace
