// SPDX-License-Identifier: MIT
#include "heli/ui/editors.h"
#include "ig/app/Message.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"
#include "testkit/AllocationCounter.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ig;

/// Something with values, and what reaches it.
struct Owner {
    int getInt() const { return whole; }
    void setInt(int value) { whole = value, sets++; }
    float getFloat() const { return number; }
    void setFloat(float value) { number = value, sets++; }
    dvec3 getVector() const { return vector; }
    void setVector(const dvec3& value) { vector = value, sets++; }

    int whole = 255;
    float number = 0.1f;
    dvec3 vector{-155.06, 19.71, 40};
    int sets = 0;
};

struct Messages final : MsgNode {
    Messages() { attach(); }
    void processMsg(UiMsg* message) override { seen.push_back(message->id); }
    std::vector<int> seen;
};

struct EditorsTest : testing::Test {
    EditorsTest() : root(std::make_unique<UIRoot>()), panel(new UIHLayout(root.get(), 0, 0)) {
        root->addChild(panel);
        whole = new UIInt(&owner, &Owner::setInt, &Owner::getInt, panel, 7, "");
        number = new UIFloat(&owner, &Owner::setFloat, &Owner::getFloat, panel, -1, "");
        vector = new UIDVec3(&owner, &Owner::setVector, &Owner::getVector, panel, 8, "");
        panel->addWrap(whole);
        panel->addWrap(number);
        panel->addWrap(vector);
    }
    /// What the operator does: into the field, type, out again.
    void enter(UIEditLine* field, const char* text) {
        root->setFocus(field);
        root->keyDown({'a', false, true});
        root->keyDown({KEY_DELETE});
        root->text(text);
        root->setFocus(nullptr);
    }

    Owner owner;
    Messages messages;
    std::unique_ptr<UIRoot> root;
    UIHLayout* panel;
    UIInt* whole;
    UIFloat* number;
    UIDVec3* vector;
};

TEST_F(EditorsTest, FieldsShowTheValueAtOnceAndFollowIt) {
    EXPECT_EQ(whole->getEdit()->getText(), "255");
    EXPECT_EQ(number->getEdit()->getText(), "0.1");
    EXPECT_EQ(vector->getEdit(1)->getText(), "19.71");
    EXPECT_FALSE(whole->refresh());
    owner.whole = -3;
    owner.number = 1 / 3.0f;
    owner.vector.z = 1e-3;
    root->update(0);
    EXPECT_EQ(whole->getEdit()->getText(), "-3");
    EXPECT_EQ(number->getEdit()->getText().toFloat(), 1 / 3.0f);
    EXPECT_EQ(vector->getEdit(2)->getText(), "0.001");
    EXPECT_EQ(owner.sets, 0);
}

TEST_F(EditorsTest, NumbersOnTheMoveAllocateNothing) {
    UiDrawList list;
    const auto frame = [&](int i) {
        owner.whole = i;
        owner.number = 1 / (1 + static_cast<float>(i));
        owner.vector = dvec3(-155.06, 19.71, 40) / 3 + dvec3(1e-5, 1e-5, 0.1) * i;
        root->update(1 / 60.0f);
        root->draw(list);
    };
    for (int i = 0; i < 100; i++)
        frame(i);
    const AllocationCounter allocations;
    for (int i = 100; i < 200; i++)
        frame(i);
    EXPECT_EQ(allocations.count(), 0U);
    EXPECT_EQ(vector->getEdit(2)->getText().toDouble(), owner.vector.z);
}

TEST_F(EditorsTest, AFieldWithTheFocusKeepsWhatIsTypedAndLeavingItApplies) {
    root->setFocus(vector->getEdit(1));
    root->text("-20.5");
    owner.vector.x = 7;
    EXPECT_FALSE(vector->refresh()); // none of the three
    EXPECT_EQ(vector->getEdit(1)->getText(), "-20.5");
    EXPECT_EQ(owner.sets, 0);
    root->setFocus(nullptr);
    EXPECT_EQ(owner.sets, 1);
    EXPECT_EQ(owner.vector, dvec3(-155.06, -20.5, 40));
    EXPECT_EQ(messages.seen, std::vector<int>{8});
    enter(vector->getEdit(1), "-20.5000005"); // no other value
    EXPECT_EQ(owner.sets, 1);
    enter(number->getEdit(), "0.25"); // −1 sends nothing
    EXPECT_EQ(owner.number, 0.25f);
    enter(whole->getEdit(), "500");
    EXPECT_EQ(owner.whole, 500);
    EXPECT_EQ(messages.seen, (std::vector<int>{8, 7}));
    enter(whole->getEdit(), "500");
    EXPECT_EQ(messages.seen.size(), 2u);
}

TEST_F(EditorsTest, UnfinishedTextIsPutBackAndTheFieldShowsWhatBecameOfTheRest) {
    enter(whole->getEdit(), "99999999999999999999999");
    EXPECT_EQ(owner.whole, 2147483647);
    EXPECT_EQ(whole->getEdit()->getText(), "2147483647");
    enter(whole->getEdit(), "-99999999999");
    EXPECT_EQ(owner.whole, -2147483647 - 1);
    const int sets = owner.sets;
    enter(whole->getEdit(), "");
    enter(number->getEdit(), "-");
    enter(vector->getEdit(0), "1e999");
    EXPECT_EQ(owner.sets, sets);
    EXPECT_EQ(vector->getEdit(0)->getText(), "-155.06");
}

TEST_F(EditorsTest, AVectorsFieldsTakeAListThatIsNotAmbiguous) {
    const auto pasted = [&](const char* text) {
        owner.vector = {-155.06, 19.71, 40};
        root->update(0);
        enter(vector->getEdit(1), text);
        return owner.vector;
    };
    const dvec3 before(-155.06, 19.71, 40);
    EXPECT_EQ(pasted("1, -2.5, 300"), dvec3(1, -2.5, 300));
    EXPECT_EQ(pasted("1 -2.5 300"), dvec3(1, -2.5, 300));
    EXPECT_EQ(pasted("1,5; -2,5; 300"), dvec3(1.5, -2.5, 300));
    EXPECT_EQ(pasted("19.5° N, 155.5° W"), dvec3(-155.5, 19.5, 40));
    EXPECT_EQ(pasted("155.5E, 19.5S, 7"), dvec3(155.5, -19.5, 7));
    EXPECT_EQ(messages.seen.size(), 5u);
    for (const char* text : {"1, 2", "1, 2, x", "1, 2, 3, 4", "1 N, 2 N, 3", "5 N, 6, 7", "1,,2"})
        EXPECT_EQ(pasted(text), before) << text;
}

TEST_F(EditorsTest, HexadecimalIsWrittenWithItsPrefixAndReadWithout) {
    whole->setBase(BASE_HEXADECIMAL);
    enter(whole->getEdit(), "1f");
    EXPECT_EQ(owner.whole, 31);
    owner.whole = -1;
    whole->refresh();
    EXPECT_EQ(whole->getEdit()->getText(), "0xffffffff");
}

} // namespace
