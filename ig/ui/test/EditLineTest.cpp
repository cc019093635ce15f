// SPDX-License-Identifier: MIT
#include "UITest.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UiDrawList.h"

#include <cmath>

namespace ig {
namespace {

using EditLineTest = UITest;

TEST_F(EditLineTest, AClickSelectsTheFieldSoThatTypingReplacesItsText) {
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

TEST_F(EditLineTest, CaretSelectionAndClipboardStepByWholeCharacters) {
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

TEST_F(EditLineTest, ADragAfterTheFirstClickSelectsWithinTheText) {
    field->setText("12345");
    root.update(0);
    click(field);
    const auto behind = [this](const char* part) {
        return static_cast<float>(field->getX()) + 3 + root.getTextWidth(13, part) + 1;
    };
    const float y = static_cast<float>(field->getY()) + 5;
    root.mouseDown({0, behind("1"), y});
    root.mouseMove(behind("123"), y);
    root.mouseUp({0, behind("123"), y});
    EXPECT_EQ(type("x"), "1x45");
}

TEST_F(EditLineTest, ValidatorsTakeOnlyWhatCanBecomeANumber) {
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

TEST_F(EditLineTest, NumbersAreTakenAsTheyAreCopiedAndRefusalsAreTold) {
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

TEST_F(EditLineTest, AnUnfinishedNumberIsPutBackAsItWasFound) {
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

TEST_F(EditLineTest, AFieldWithItsDigitsCutKeepsThemUntilAnotherNumberIsEntered) {
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

TEST_F(EditLineTest, AFieldShowsThePartOfItsTextThatFits) {
    field->setFixSize(2 * 3 + static_cast<int>(std::ceil(root.getTextWidth(13, "01234"))), 16);
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

TEST_F(EditLineTest, TheWheelStepsTheThirdDigitAndCommits) {
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

TEST_F(EditLineTest, TabVisitsTheFieldsThatCanBeTypedInto) {
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

} // namespace
} // namespace ig
