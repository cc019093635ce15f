// SPDX-License-Identifier: MIT
#include "ig/app/ControlApp.h"
#include "ig/app/Message.h"

#include <gtest/gtest.h>
#include <vector>

namespace ig {
namespace {

TEST(ControlApp, AClickLastsOneFrameOrUntilItIsCleared) {
    ControlApp control;
    control.keyDown(KEY_F1);
    control.keyDown(KEY_F1); // a repeat of the held key
    EXPECT_TRUE(control.isKeyClick(KEY_F1));
    control.clearKeyClick(KEY_F1);
    EXPECT_FALSE(control.isKeyClick(KEY_F1));
    control.keyUp(KEY_F1);
    control.keyDown(KEY_F1);
    control.keyUp(KEY_F1); // pressed and released between two frames: still a click
    EXPECT_TRUE(control.isKeyClick(KEY_F1));
    EXPECT_TRUE(control.isKeyPress(KEY_F1)); // and the frame sees it down
    control.endFrame();
    EXPECT_FALSE(control.isKeyClick(KEY_F1) || control.isKeyPress(KEY_F1));
    control.keyDown(KEY_ALT); // long before
    control.endFrame();
    control.keyDown(KEY_F4);
    control.keyUp(KEY_ALT);
    control.keyUp(KEY_F4);
    EXPECT_TRUE(control.isKeyPress(KEY_ALT) &&
                control.isKeyPress(KEY_F4)); // they were held together
    control.endFrame();
    control.keyDown(KEY_ALT);
    control.endFrame();
    control.keyUp(KEY_ALT);
    control.keyDown(KEY_F4);
    EXPECT_FALSE(control.isKeyPress(KEY_ALT)); // they were not
}

TEST(ControlApp, TheWheelLastsOneFrameAndFocusLossReleasesAll) {
    ControlApp control;
    control.rollWheel(-1);
    control.setLeftButton(true);
    control.keyDown('w');
    EXPECT_TRUE(control.isWheelButtonDown());
    control.endFrame();
    EXPECT_FALSE(control.isWheelButtonDown());
    EXPECT_TRUE(control.isLeftButtonDown());
    control.releaseAll();
    EXPECT_FALSE(control.isLeftButtonDown());
    EXPECT_FALSE(control.isKeyPress('w'));
}

struct Listener final : MsgNode {
    std::vector<int> seen;
    Listener* detach_on_message = nullptr;
    void processMsg(UiMsg* message) override {
        seen.push_back(message->id);
        if (detach_on_message) detach_on_message->detach();
    }
};

TEST(MsgMngr, ReachesAttachedNodesOnlyAlsoWhenOneDetachesMeanwhile) {
    Listener a, b;
    a.attach();
    Listener copy(a);
    b.attach();
    UiMsg message{654321};
    MsgMngr::get()->send(&message);
    EXPECT_EQ(a.seen.size(), 1u);
    EXPECT_EQ(b.seen.size(), 1u);
    EXPECT_TRUE(copy.seen.empty()); // never attached
    a.detach_on_message = &b;
    MsgMngr::get()->send(&message);
    EXPECT_EQ(a.seen.size(), 2u);
    EXPECT_EQ(b.seen.size(), 1u);
}

} // namespace
} // namespace ig
