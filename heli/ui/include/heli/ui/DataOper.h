// SPDX-License-Identifier: MIT
#pragma once

#include "heli/ui/UIWrap.h"
#include "ig/base/Function.h"
#include "ig/base/jString.h"

#include <type_traits>
#include <utility>

/// An editor bound to a value of type `T` (a `const dvec3&` is one too): one getter, and the
/// setters that a new value goes to.
template <class T>
class DataOper : public UIWrap {
public:
    using Value = std::remove_cvref_t<T>;
    using Setter = ig::Function<void(T&&)>;

    /// Binds a setter and the getter to `owner`, which must outlive the editor.
    template <class Owner, class SetterOperation, class GetterOperation>
    DataOper(Owner* owner, SetterOperation setter, GetterOperation getter)
        : m_getter(owner, getter) {
        addSetter({owner, setter});
    }

    virtual const ig::jString& getName() const { return m_name; }
    virtual void setName(const ig::jString& name) { m_name = name; }
    /// Gives the value to every setter.
    virtual void setValue(T value) {
        for (const Setter& setter : m_setters)
            setter(std::forward<T>(value));
    }
    virtual Value getValue() const { return m_getter(); }

    /// One that reaches the same target as another is not added again.
    void addSetter(Setter setter) { addUnique(m_setters, std::move(setter)); }

protected:
    ig::jVector<Setter> m_setters;
    ig::Function<Value()> m_getter;
    ig::jString m_name;
};
