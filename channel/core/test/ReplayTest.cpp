// SPDX-License-Identifier: MIT

// Frames that run within frames, logged and played again.

#include "Channel.h"
#include "heli/config/AppData.h"
#include "ig/app/MsgBox.h"
#include "ig/ui/UIRoot.h"
#include "testkit/ChannelFolder.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

/// A channel with a button that asks back, as a logic's may.
struct AskingChannel {
    explicit AskingChannel(const Options& options) : channel(options) {}
    ~AskingChannel() {
        channel.close();
        AppData::destroy_instance();
    }
    bool open() {
        if (!channel.open()) return false;
        auto* button = new UIButton(channel.getUIRoot(), "Ask");
        button->m_sig_click.append({this, &AskingChannel::ask});
        channel.getUIRoot()->addChild(button);
        return true;
    }
    void ask(const UIEventMouse*, UIElement*) {
        MsgBox box(&channel, "title", "text");
        box.center();
        asked++;
        accepted += box.modality() ? 1 : 0;
    }
    Channel channel;
    int asked = 0, accepted = 0;
};

/// Some records wait when the box opens: its first frame takes them. It is closed in the 60th
/// frame, whose digests the log holds when the frame that opened it ends.
TEST(Replay, OfFramesOfABoxWithinTheFrameThatOpenedItIsEqual) {
    const ChannelFolder folder;
    folder.write("ask.yaml", "from: start\ncommands:\n"
                             "- {at: 0.5, click: Ask}\n"
                             "- {at: 3.625, key: Return}\n"
                             "- {at: 4, key: F1}\n"
                             "- {at: 4.5, click: Ask}\n"); // open until the end
    Options options;
    options.renderer = "null";
    options.frame_rate = 0;
    options.step = 1 / 16.0;
    options.quiet = true;
    options.script = "ask.yaml";
    options.record = "run.flog";
    options.frames = 100;
    for (const char* const replay : {"", "run.flog"}) {
        options.replay = replay;
        if (*replay) {
            options.record.clear();
            options.script.clear();
            options.frames = 0;
        }
        AskingChannel run(options);
        ASSERT_TRUE(run.open());
        for (int i = 0; i < 5; i++) {
            const UdpRecvData record = LogicScene::record();
            folder.peer.send(&record, sizeof record, folder.records_port);
        }
        run.channel.run();
        EXPECT_EQ(run.asked, 2);
        EXPECT_EQ(run.accepted, 1);
        EXPECT_EQ(run.channel.getExitStatus(), 0) << "of the " << (*replay ? "replay" : "flight");
    }
}

} // namespace
