// SPDX-License-Identifier: MIT
#include "UITest.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/Widget.h"

namespace ig {
namespace {

using DialogTest = UITest;

TEST_F(DialogTest, AModalDialogHasAllTheInputUntilItIsAnswered) {
    const auto answered = [&](auto input) {
        UIDialog dialog(&root, "题目");
        dialog.center();
        int frames = 0;
        root.setModalFrame([&] {
            root.update(0.1f);
            if (frames++ == 0) {
                click(buttons[0]); // covered
                EXPECT_TRUE(root.keyDown({KEY_F1}));
                EXPECT_TRUE(root.text("5"));
                EXPECT_NEAR(dialog.getX() + dialog.getWidth() / 2, 200, 1);
                input(dialog);
            }
            return frames < 5;
        });
        const bool accepted = dialog.modality();
        EXPECT_EQ(dialog.isOpen(), false);
        return accepted ? frames : -frames;
    };
    EXPECT_EQ(answered([&](UIDialog& d) { click(d.getOkButton()); }), 1);
    EXPECT_EQ(answered([&](UIDialog& d) { click(d.getCancelButton()); }), -1);
    EXPECT_EQ(answered([&](UIDialog&) { key(KEY_ESCAPE); }), -1);
    EXPECT_EQ(answered([](UIDialog&) {}), -5); // the application ends
    EXPECT_TRUE(clicked.empty());
    click(buttons[0]);
    EXPECT_EQ(clicked.size(), 1u);
}

} // namespace
} // namespace ig
