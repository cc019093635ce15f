// SPDX-License-Identifier: MIT
#include "ig/ui/UIRoot.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UIEditLine.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UISprite.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "ig/ui/Widget.h"

#include <gtest/gtest.h>
#include <string>

namespace ig {
namespace {

struct UITest : testing::Test {
    UITest() {
        root.resize(400, 300);
        panel = new UIVLayout(&root, 1, 0);
        panel->setAlignFree(true);
        panel->setShowBackground(false);
        root.addChild(panel);
        for (UIButton*& button : buttons) {
            button = new UIButton(&root, "按钮");
            button->m_sig_click.append({this, &UITest::onClick});
            panel->addChild(button);
        }
        field = new UIEditLineWheel(&root, "f");
        field->m_sig_focus.append({this, &UITest::onFocus});
        field->m_sig_value_committed.append({this, &UITest::onCommit});
        field->setText("100");
        panel->addChild(field);
        root.update(0);
    }
    void onClick(const UIEventMouse*, UIElement* element) { clicked.push_back(element); }
    void onFocus(const UIEventFocus* event) { focus += event->gained ? '+' : '-'; }
    void onCommit() { commits++; }

    static UIEventMouse at(const UIElement* e, int button = 0) {
        return {button, static_cast<float>(e->getX() + e->getWidth() / 2),
                static_cast<float>(e->getY() + e->getHeight() / 2)};
    }
    void click(const UIElement* e) {
        root.mouseDown(at(e));
        root.mouseUp(at(e));
    }
    void key(int code, bool shift = false, bool ctrl = false) { root.keyDown({code, shift, ctrl}); }
    std::string type(const char* text) {
        for (; *text; text++)
            root.text(std::string_view(text, 1));
        return field->getText().c_str();
    }
    std::string text() const { return field->getText().c_str(); }

    UIRoot root;
    UIVLayout* panel;
    UIButton* buttons[3];
    UIEditLineWheel* field;
    std::vector<UIElement*> clicked;
    std::string focus;
    int commits = 0;
};

// ------------------------------------------------------------------ layout

TEST_F(UITest, LayoutsAreAsLargeAsWhatTheyShowAndPlaceItByTheirAligns) {
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

TEST_F(UITest, ScaleGrowsSizesAndTextWidthsAreMeasuredAgain) {
    const int width = panel->getWidth(), height = panel->getHeight();
    root.resize(800, 600, 2);
    EXPECT_EQ(panel->getWidth(), 2 * width);
    EXPECT_NEAR(panel->getHeight(), 2 * height, 2);
    root.setTextWidth([](float, std::string_view) { return 300.0f; });
    EXPECT_GT(panel->getWidth(), 300);
    buttons[0]->setText("");
    EXPECT_GT(buttons[1]->getWidth(), 300);
}

TEST_F(UITest, DrawsWhatIsShownFromBottomToTopAndKeepsItsMemory) {
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

// ------------------------------------------------------------------ buttons

TEST_F(UITest, AButtonHasTheFocusWhileItIsHeldAndClicksWhenReleasedOnIt) {
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

TEST_F(UITest, NothingStaysHeldWhenReleaseFocusOrElementAreLost) {
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

// ------------------------------------------------------------------ fields

TEST_F(UITest, AClickSelectsTheFieldSoThatTypingReplacesItsText) {
    EXPECT_FALSE(root.keyDown({'5'}));
    EXPECT_FALSE(root.text("5"));
    click(field);
    EXPECT_TRUE(field->isFocused());
    EXPECT_TRUE(root.keyDown({'5'}));
    EXPECT_EQ(type("57"), "57");
    EXPECT_EQ(focus, "+");
    key(KEY_RETURN);
    EXPECT_FALSE(field->isFocused());
    EXPECT_EQ(focus, "+-");

    click(field); // left as it was found: it says nothing
    key(KEY_RETURN);
    EXPECT_EQ(focus, "+-+");
    click(field);
    type("9");
    key(KEY_ESCAPE);
    EXPECT_EQ(text(), "57");
    EXPECT_EQ(focus, "+-++");
    click(field);
    type("8");
    root.mouseDown({0, 399, 299}); // pressed in the scene
    EXPECT_EQ(focus, "+-+++-");
    EXPECT_EQ(text(), "8");
    click(field);
    type("7");
    click(buttons[0]);
    EXPECT_EQ(focus, "+-+++-+-");
    EXPECT_EQ(clicked.size(), 1u);
    click(field);
    EXPECT_FALSE(root.keyDown({KEY_F1})); // function and modifier keys are everybody's
    EXPECT_FALSE(root.keyDown({KEY_ALT}));
    EXPECT_TRUE(root.keyDown({KEY_DOWN}));
}

TEST_F(UITest, CaretSelectionAndClipboardStepByWholeCharacters) {
    jString clipboard = "粘\n\x01\xff贴";
    root.setClipboard([&] { return clipboard; }, [&](const jString& text) { clipboard = text; });
    click(field);
    key('v', false, true); // line breaks, control codes and broken bytes stay out
    EXPECT_EQ(text(), "粘贴");
    key(KEY_LEFT);
    type("x");
    EXPECT_EQ(text(), "粘x贴");
    key(KEY_BACKSPACE);
    key(KEY_BACKSPACE);
    key(KEY_BACKSPACE); // at the beginning
    EXPECT_EQ(text(), "贴");
    type("ab");
    key(KEY_HOME);
    key(KEY_RIGHT, true);
    key('x', false, true);
    EXPECT_EQ(text(), "b贴");
    EXPECT_EQ(clipboard, "a");
    key(KEY_END);
    key('v', false, true);
    EXPECT_EQ(text(), "b贴a");
    key('a', false, true);
    key(KEY_DELETE);
    EXPECT_EQ(text(), "");
    key(KEY_DELETE);
    key('c', false, true); // nothing selected: the clipboard stays
    EXPECT_EQ(clipboard, "a");
}

TEST_F(UITest, ADragAfterTheFirstClickSelectsWithinTheText) {
    root.setTextWidth([](float, std::string_view text) { return 10.0f * text.size(); });
    field->setText("12345");
    root.update(0);
    click(field);
    const float left = static_cast<float>(field->getX()) + 3;
    const float y = static_cast<float>(field->getY()) + 5;
    root.mouseDown({0, left + 12, y}); // after the 1
    root.mouseMove(left + 31, y);      // to after the 3
    root.mouseUp({0, left + 31, y});
    EXPECT_EQ(type("x"), "1x45");
}

TEST_F(UITest, ValidatorsTakeOnlyWhatCanBecomeANumber) {
    const auto typed = [&](int validator, const char* keys) {
        field->setValidator(validator);
        field->setText("");
        click(field);
        const std::string result = type(keys);
        key(KEY_ESCAPE);
        return result;
    };
    EXPECT_EQ(typed(UI_VALIDATE_WHOLE, "0xfg f-1."), "0xff1");
    EXPECT_EQ(typed(UI_VALIDATE_DECIMAL_WHOLE, "-1e2.x5-"), "-12.5"); // the fraction shows
    EXPECT_EQ(typed(UI_VALIDATE_NUMBER, "e-1..5e+-3x"), "-1.5e+3");
    EXPECT_EQ(typed(UI_VALIDATE_NUMBER, std::string(500, '7').c_str()), std::string(40, '7'));
    EXPECT_EQ(typed(UI_VALIDATE_NONE, std::string(5000, 'y').c_str()).size(), 1024u);
}

TEST_F(UITest, NumbersAreTakenAsTheyAreCopiedAndRefusalsAreTold) {
    std::string refused, list;
    root.setNotices({}, [&](std::string_view text) { refused = text; });
    field->setListTaker([&](std::string_view text) {
        list = text;
        return text.starts_with("1 2");
    });
    field->setValidator(UI_VALIDATE_NUMBER);
    const auto pasted = [&](const char* text) {
        refused.clear();
        field->setText("");
        click(field);
        root.text(text);
        const std::string result = field->getText().c_str();
        key(KEY_ESCAPE);
        return refused.empty() ? result : "refused " + refused;
    };
    for (const auto& [text, number] : {std::pair(" 19.5 ", "19.5"),
                                       {"19,5", "19.5"},
                                       {"0,125", "0.125"},
                                       {"−155.06", "-155.06"},
                                       {"155.06° W", "-155.06"},
                                       {"N 19.71", "19.71"},
                                       {"12E", "12"},
                                       {"1,234", "refused 1,234"}, // or 1.234?
                                       {"1,2,3", "refused 1,2,3"},
                                       {"-5 S", "refused -5 S"},
                                       {"x", "refused x"},
                                       {"19.7\n155", "refused 19.7 155"},
                                       {"1 2 3", ""}})
        EXPECT_EQ(pasted(text), number) << text;
    EXPECT_EQ(list, "1 2 3");
}

TEST_F(UITest, AnUnfinishedNumberIsPutBackAsItWasFound) {
    for (const auto& [validator, keys] : {std::pair(UI_VALIDATE_NUMBER, "-"),
                                          {UI_VALIDATE_NUMBER, "1e"},
                                          {UI_VALIDATE_NUMBER, "1e999"},
                                          {UI_VALIDATE_NUMBER, "."},
                                          {UI_VALIDATE_DECIMAL_WHOLE, "+"},
                                          {UI_VALIDATE_WHOLE, "0x"}}) {
        field->setValidator(validator);
        field->setText("42");
        focus.clear();
        click(field);
        type(keys);
        key(KEY_RETURN);
        EXPECT_EQ(text(), "42") << keys;
        EXPECT_EQ(focus, "+") << keys; // nothing was entered
    }
}

TEST_F(UITest, AFieldWithItsDigitsCutKeepsThemUntilAnotherNumberIsEntered) {
    field->setValidator(UI_VALIDATE_NUMBER);
    field->setLabel("Lon");
    field->setDecimals(2);
    field->setText("-155.06999");
    UiDrawList list;
    const auto shown = [&] {
        root.draw(list);
        std::string texts;
        for (const UiDrawList::Command& command : list.getCommands())
            if (command.y >= static_cast<float>(field->getY()) && command.length)
                texts += std::string(list.text(command)) + ' ';
        return texts;
    };
    EXPECT_EQ(shown(), "Lon Lon -155.07 -155.07 "); // each with its shadow
    EXPECT_EQ(text(), "-155.06999");
    click(field);
    EXPECT_EQ(text(), "-155.07"); // to work on
    key(KEY_RETURN);
    EXPECT_EQ(text(), "-155.06999");
    click(field);
    key(KEY_END);
    type("5");
    key(KEY_RETURN);
    EXPECT_EQ(text(), "-155.075");
}

TEST_F(UITest, AFieldShowsThePartOfItsTextThatFits) {
    root.setTextWidth([](float, std::string_view text) { return 10.0f * text.size(); });
    field->setFixSize(56, 16); // room for five characters
    field->setText("0123456789");
    UiDrawList list;
    const auto shown = [&] {
        root.update(0);
        root.draw(list);
        for (auto i = list.getCommands().rbegin(); i != list.getCommands().rend(); ++i)
            if (i->kind == UiDrawList::Kind::text) return std::string(list.text(*i));
        return std::string();
    };
    EXPECT_EQ(shown(), "01234");
    click(field);
    key(KEY_END);
    EXPECT_EQ(shown(), "56789");
    root.setFocus(nullptr);
    EXPECT_EQ(shown(), "01234");
}

TEST_F(UITest, TheWheelStepsTheThirdDigitAndCommits) {
    root.mouseMove(at(field).x, at(field).y);
    EXPECT_TRUE(root.wheel(1)); // nobody is in it: a stray scroll
    EXPECT_EQ(text() + std::to_string(commits), "1000");
    click(field);
    const auto rolled = [&](int validator, const char* text, float notches, UIEventKey m = {}) {
        field->setValidator(validator);
        field->setText(text);
        EXPECT_TRUE(root.wheel(notches, m));
        return std::string(field->getText().c_str());
    };
    EXPECT_EQ(rolled(UI_VALIDATE_DECIMAL_WHOLE, "100", 1), "101");
    EXPECT_EQ(rolled(UI_VALIDATE_DECIMAL_WHOLE, "10000", -2), "9800");
    EXPECT_EQ(rolled(UI_VALIDATE_DECIMAL_WHOLE, "", 1), "1");
    EXPECT_EQ(rolled(UI_VALIDATE_NUMBER, "-155.06", 1), "-154.06");
    EXPECT_EQ(rolled(UI_VALIDATE_NUMBER, "19.71", 1, {0, true, false}), "20.71");
    EXPECT_EQ(rolled(UI_VALIDATE_NUMBER, "19.71", 1, {0, false, true}), "19.72");
    field->setStep(0.001);
    EXPECT_EQ(rolled(UI_VALIDATE_NUMBER, "-155.06", 2), "-155.058");
    EXPECT_EQ(rolled(UI_VALIDATE_NUMBER, "19.71", 1, {0, false, true}), "19.7101");
    EXPECT_EQ(commits, 8);
    root.setFocus(nullptr);
    field->setEditable(false);
    EXPECT_EQ(rolled(UI_VALIDATE_NUMBER, "1", 1), "1"); // taken, but not used
    click(field);
    EXPECT_FALSE(field->isFocused());
    EXPECT_EQ(commits, 8);
    root.mouseMove(399, 299);
    EXPECT_FALSE(root.wheel(1));
}

TEST_F(UITest, TabVisitsTheFieldsThatCanBeTypedInto) {
    auto* locked = new UIEditLine(&root, "");
    auto* middle = new UIEditLine(&root, "");
    auto* last = new UIEditLine(&root, "");
    auto* hidden = new UIEditLine(&root, "");
    locked->setEditable(false);
    hidden->setHidden(true);
    for (UIElement* element : {locked, middle, last, hidden})
        panel->addChild(element);
    click(field);
    key(KEY_TAB);
    EXPECT_TRUE(middle->isFocused());
    key(KEY_TAB);
    key(KEY_TAB);
    EXPECT_TRUE(field->isFocused());
    key(KEY_TAB, true);
    EXPECT_TRUE(last->isFocused());
}

// ------------------------------------------------------------------ dialogs

TEST_F(UITest, AModalDialogHasAllTheInputUntilItIsAnswered) {
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
