// SPDX-License-Identifier: MIT
#pragma once

#include "heli/ui/DataOper.h"
#include "ig/math/vec.h"
#include "ig/ui/UIEditLine.h"

#include <array>
#include <cmath>
#include <new>

// The editors: numbers and vectors in fields that the wheel steps. Each is made with the object
// that has the value, its setter and getter, the layout that gets the fields, the message that a
// change by the operator sends (−1 none), and the fields' name.
//
// A field follows the value while the operator is not typing in it. When the operator leaves it, or
// steps it with the wheel, its text is parsed and, when that is another value than the present one,
// given to every setter; then the message goes out. Text that is no number counts as 0. Afterwards
// the field shows the value as it is then.

/// What the editors have in common: `N` fields that together are one value. `Editor` is the class
/// that derives from it and supplies
///
///     Value parse() const;              the value that the fields' texts stand for
///     void show(const Value&);          writes it into the fields
///     static bool equal(Value, Value);  whether two values count as the same
template <class Editor, class T, int N>
class FieldEditor : public DataOper<T> {
public:
    using Value = typename DataOper<T>::Value;

    ~FieldEditor() override {
        for (ig::UIEditLineWheel* edit : m_edits) {
            disconnect(edit->m_sig_focus, this);
            disconnect(edit->m_sig_value_committed, this);
        }
    }

    /// Nothing while the operator is in one of the fields.
    bool refresh() override {
        for (const ig::UIEditLineWheel* edit : m_edits)
            if (edit->isFocused()) return false;
        const Value value = this->getValue();
        if (Editor::equal(value, editor().parse())) return false;
        editor().show(value);
        return true;
    }
    /// Sets fields and value, without a message; nothing when both are that already.
    void setValue(T value) override {
        if (Editor::equal(this->getValue(), value) && Editor::equal(editor().parse(), value))
            return;
        editor().show(value);
        DataOper<T>::setValue(std::forward<T>(value));
    }
    /// Field `i` in [0, N); the layout owns it.
    ig::UIEditLineWheel* getEdit(int i = 0) const { return m_edits[static_cast<std::size_t>(i)]; }

protected:
    /// `function` names the making operation for the memory tracker.
    template <class Owner, class Setter, class Getter>
    FieldEditor(Owner* owner, Setter setter, Getter getter, ig::UIVLayout* layout, int msg_id,
                const ig::jString& name, const char* function, int validator)
        : DataOper<T>(owner, setter, getter) {
        this->setMsgId(msg_id);
        for (ig::UIEditLineWheel*& edit : m_edits) {
            edit = ig::memNew<ig::UIEditLineWheel>({"src/ui/editors", function}, layout->getRoot(),
                                                   name);
            if (!edit) throw std::bad_alloc(); // as from the engine's own objects
            edit->setValidator(validator);
            edit->m_sig_focus.append({this, &FieldEditor::onFocus});
            edit->m_sig_value_committed.append({this, &FieldEditor::apply});
            layout->addChild(edit, ig::UI_EXPAND_NONE, -1);
        }
    }

    /// Gives the value that the fields stand for to the setters, when it is another one.
    void apply() {
        const Value value = editor().parse();
        if (!Editor::equal(value, this->getValue())) {
            DataOper<T>::setValue(Value(value));
            this->notify();
        }
        editor().show(this->getValue()); // a setter may have limited or refused it
    }

    std::array<ig::UIEditLineWheel*, N> m_edits{};

private:
    Editor& editor() { return static_cast<Editor&>(*this); }

    void onFocus(const ig::UIEventFocus* event) {
        if (!event || !event->gained) apply();
    }
};

class UIFloat : public FieldEditor<UIFloat, float, 1> {
public:
    template <class Owner, class Setter, class Getter>
    UIFloat(Owner* owner, Setter setter, Getter getter, ig::UIVLayout* layout, int msg_id,
            const ig::jString& name)
        : FieldEditor(owner, setter, getter, layout, msg_id, name, "UIFloat::UIFloat",
                      ig::UI_VALIDATE_NUMBER) {
        show(getValue());
    }

    float parse() const { return getEdit()->getText().toFloat(); }
    void show(float value) { getEdit()->setText(ig::ToString(value)); }
    static bool equal(float a, float b) { return a == b; }
};

/// How whole numbers are written and read in a field.
enum NUMBER_BASE { BASE_DECIMAL = 0, BASE_HEXADECIMAL = 1 };

/// Numbers out of range count as the nearest `int`.
int parseInt(const ig::jString& text, int base);
ig::jString formatInt(int value, int base);

template <class Int>
class UIIntBase : public FieldEditor<UIIntBase<Int>, Int, 1> {
public:
    template <class Owner, class Setter, class Getter>
    UIIntBase(Owner* owner, Setter setter, Getter getter, ig::UIVLayout* layout, int msg_id,
              const ig::jString& name)
        : FieldEditor<UIIntBase, Int, 1>(owner, setter, getter, layout, msg_id, name,
                                         "UIIntBase<int>::UIIntBase", ig::UI_VALIDATE_WHOLE) {
        show(this->getValue());
    }

    /// A `NUMBER_BASE`; the field follows at the next refresh.
    virtual int getBase() const { return m_base; }
    virtual void setBase(int base) { m_base = base; }

    Int parse() const { return parseInt(this->getEdit()->getText(), m_base); }
    void show(Int value) { this->getEdit()->setText(formatInt(value, m_base)); }
    static bool equal(Int a, Int b) { return a == b; }

private:
    int m_base = BASE_DECIMAL;
};

class UIInt : public UIIntBase<int> {
public:
    using UIIntBase<int>::UIIntBase;
};

/// Reads a list of the components x, y, z, apart from each other by semicolons, commas or blanks.
/// Two suffice, and may be turned round, when N or S and E or W tell the latitude from the
/// longitude: those that are missing stay. False, and nothing changed, for any other text.
bool parseComponents(std::string_view text, double (&components)[3]);

/// The components x, y, z of a vector in `N` fields, each of which also takes all of them as a
/// list.
template <class Vector, int N>
class UIVecBase : public FieldEditor<UIVecBase<Vector, N>, const Vector&, N> {
    static_assert(N == 3);

public:
    template <class Owner, class Setter, class Getter>
    UIVecBase(Owner* owner, Setter setter, Getter getter, ig::UIVLayout* layout, int msg_id,
              const ig::jString& name)
        : FieldEditor<UIVecBase, const Vector&, N>(owner, setter, getter, layout, msg_id, name,
                                                   "UIVecBase<struct dvec3,3>::UIVecBase",
                                                   ig::UI_VALIDATE_NUMBER) {
        show(this->getValue());
        for (ig::UIEditLineWheel* edit : this->m_edits)
            edit->setListTaker([this](std::string_view list) { return take(list); });
    }
    ~UIVecBase() override {
        for (ig::UIEditLineWheel* edit : this->m_edits)
            edit->setListTaker({});
    }

    /// Of every field, in units of the set-up.
    virtual void setMinWidth(int width) {
        for (ig::UIEditLineWheel* edit : this->m_edits)
            edit->setMinWidth(width);
    }

    Vector parse() const { return {component(0), component(1), component(2)}; }
    void show(const Vector& value) {
        const double components[] = {value.x, value.y, value.z};
        for (int i = 0; i < N; i++) {
            m_shown.assign(components[i]);
            this->getEdit(i)->setText(m_shown);
        }
    }
    /// Smaller differences are what computing the value back and forth leaves.
    static bool equal(const Vector& a, const Vector& b) {
        constexpr double SAME = static_cast<double>(1e-6f);
        const Vector d = a - b;
        return std::abs(d.x) < SAME && std::abs(d.y) < SAME && std::abs(d.z) < SAME;
    }

private:
    bool take(std::string_view list) {
        const Vector now = this->getValue();
        double components[] = {now.x, now.y, now.z};
        if (!parseComponents(list, components)) return false;
        show({components[0], components[1], components[2]});
        this->apply();
        return true;
    }
    double component(int i) const { return this->getEdit(i)->getText().toDouble(); }

    ig::jString m_shown; ///< last, kept for its memory
};

class UIDVec3 : public UIVecBase<ig::dvec3, 3> {
public:
    using UIVecBase<ig::dvec3, 3>::UIVecBase;
};
