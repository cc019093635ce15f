// SPDX-License-Identifier: MIT
#include "UITest.h"
#include "ig/ui/UISprite.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"

namespace ig {
namespace {

using LayoutTest = UITest;

TEST_F(LayoutTest, LayoutsAreAsLargeAsWhatTheyShowAndPlaceItByTheirAligns) {
    field->setFixSize(10, 16);
    const int button = buttons[0]->getHeight();
    EXPECT_EQ(panel->getWidth(), buttons[0]->getWidth());
    EXPECT_EQ(panel->getHeight(), 3 * button + 16 + 3);
    buttons[1]->setHidden(true);
    EXPECT_EQ(panel->getHeight(), 2 * button + 16 + 2);
    panel->setContentAligns(UI_ALIGN_RIGHT);
    panel->setPosition(200, 50);
    root.update(0);
    EXPECT_EQ(buttons[2]->getY(), 50 + button + 1);
    EXPECT_EQ(field->getX() + 10, 200 + panel->getWidth());

    auto* row = new UIHLayout(&root, 4, 2);
    auto* small = new UISprite(&root, "a.png", 0);
    auto* large = new UISprite(&root, "b.png", 0);
    small->setFixSize(10, 10);
    large->setFixSize(20, 30);
    row->addChild(large);
    row->addChild(small, UI_EXPAND_NONE, 0); // before it
    row->setContentAligns(UI_ALIGN_BOTTOM);
    root.addChild(row); // not free: at the top left
    root.update(0);
    EXPECT_EQ(row->getWidth(), 10 + 4 + 20 + 4);
    EXPECT_EQ(row->getHeight(), 34);
    EXPECT_EQ(small->getX(), 2);
    EXPECT_EQ(small->getY(), 22);
    EXPECT_EQ(large->getX(), 16);
}

TEST_F(LayoutTest, SizesGrowWithScaleAndText) {
    const int width = panel->getWidth(), height = panel->getHeight();
    root.resize(800, 600, 2);
    EXPECT_EQ(panel->getWidth(), 2 * width);
    EXPECT_NEAR(panel->getHeight(), 2 * height, 2);
    const int narrow = buttons[0]->getWidth();
    buttons[0]->setText("按钮按钮");
    EXPECT_GT(buttons[0]->getWidth(), narrow);
}

TEST_F(LayoutTest, DrawsWhatIsShownFromBottomToTopAndKeepsItsMemory) {
    auto* viewport = new UISpriteViewport(&root, 64, 32);
    panel->addChild(viewport);
    panel->addChild(new UISprite(&root, "icon.png", 0));
    UiDrawList list;
    root.update(0);
    root.draw(list);
    std::vector<std::string> texts;
    std::string kinds;
    for (const UiDrawList::Command& command : list.getCommands()) {
        kinds += "rtiv"[static_cast<int>(command.kind)];
        if (command.length) texts.emplace_back(list.text(command));
        if (command.kind == UiDrawList::Kind::viewport) {
            EXPECT_EQ(command.viewport, viewport->getId());
            EXPECT_EQ(command.w, 64);
        }
    }
    EXPECT_EQ(kinds, "rrtrrtrrtrttvi");
    EXPECT_EQ(texts, (std::vector<std::string>{"按钮", "按钮", "按钮", "100", "100", "icon.png"}));
    const void* memory = list.getCommands().data();
    viewport->setHidden(true);
    root.draw(list);
    EXPECT_EQ(list.getCommands().size(), kinds.size() - 1);
    EXPECT_EQ(list.getCommands().data(), memory);
}

} // namespace
} // namespace ig
