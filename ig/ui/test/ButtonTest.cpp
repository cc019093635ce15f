// SPDX-License-Identifier: MIT
#include "UITest.h"
#include "ig/ui/UiDrawList.h"

namespace ig {
namespace {

using ButtonTest = UITest;

TEST_F(ButtonTest, AButtonHasTheFocusWhileItIsHeldAndClicksWhenReleasedOnIt) {
    UiDrawList list;
    const auto face = [&] {
        root.draw(list);
        return list.getCommands()[3].rgba;
    };
    const vec4 rest = face();
    EXPECT_TRUE(root.mouseDown(at(buttons[1])));
    EXPECT_TRUE(buttons[1]->isFocused());
    EXPECT_FALSE(face() == rest);
    root.update(0);
    root.mouseDown(at(buttons[1], 1)); // whatever the other buttons do
    root.mouseUp(at(buttons[1], 1));
    EXPECT_TRUE(buttons[1]->isFocused()); // frame after frame
    EXPECT_TRUE(clicked.empty());
    root.mouseMove(399, 299); // dragged off: not held
    EXPECT_FALSE(buttons[1]->isFocused());
    root.mouseMove(at(buttons[1]).x, at(buttons[1]).y);
    EXPECT_TRUE(buttons[1]->isFocused());
    EXPECT_TRUE(root.mouseUp(at(buttons[1])));
    EXPECT_FALSE(buttons[1]->isFocused());
    EXPECT_EQ(clicked, std::vector<UIElement*>{buttons[1]});

    root.mouseDown(at(buttons[0]));
    root.mouseUp(at(buttons[2])); // released elsewhere
    root.mouseDown(at(buttons[0], 1));
    root.mouseUp(at(buttons[0], 1)); // the right one
    EXPECT_EQ(clicked.size(), 1u);
    EXPECT_FALSE(root.mouseDown({0, 399, 299})); // nothing there
}

TEST_F(ButtonTest, NothingStaysHeldWhenReleaseFocusOrElementAreLost) {
    root.mouseDown(at(buttons[0]));
    root.cancelPress(); // the window lost the focus
    EXPECT_EQ(root.getFocus(), nullptr);
    root.mouseUp(at(buttons[0]));
    EXPECT_TRUE(clicked.empty());

    root.mouseDown(at(buttons[0])); // its release is never reported
    root.mouseDown(at(buttons[1]));
    EXPECT_FALSE(buttons[0]->isFocused());
    panel->setHidden(true); // with the button that is held
    EXPECT_EQ(root.getFocus(), nullptr);
    root.mouseUp({0, 1, 1});
    EXPECT_TRUE(clicked.empty());
    panel->setHidden(false);

    root.update(0);
    root.mouseDown(at(buttons[1]));
    panel->setPosition(200, 200); // away from below the mouse
    root.update(0);
    EXPECT_FALSE(buttons[1]->isFocused());
    delete panel;
    root.mouseUp({0, 1, 1});
    EXPECT_TRUE(clicked.empty());
    EXPECT_FALSE(root.mouseMove(210, 210));
}

} // namespace
} // namespace ig
