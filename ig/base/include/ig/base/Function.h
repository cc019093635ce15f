// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jVector.h"

#include <cstring>
#include <functional>
#include <memory>
#include <utility>

namespace ig {

/// What a `Function` is bound to: an object and an operation of it. Two functions with equal keys
/// reach the same target.
struct FunctionKey {
    const void* object = nullptr;
    unsigned char operation[2 * sizeof(void*)] = {}; ///< bytes of the member-function pointer

    friend bool operator==(const FunctionKey& a, const FunctionKey& b) {
        return a.object == b.object &&
               std::memcmp(a.operation, b.operation, sizeof a.operation) == 0;
    }
};

template <class Signature>
class Function;

/// A callable made of a target key and a reference-counted handler. Copies share the handler. Bound
/// objects are not owned: whoever binds one takes the function off its list before the object goes.
template <class R, class... Args>
class Function<R(Args...)> {
public:
    Function() = default;
    /// Binds a member operation of `object` that takes these arguments; the key tells the pair.
    template <class T, class Base, class... Params>
    Function(T* object, R (Base::*operation)(Params...)) {
        bind(object, operation);
    }
    template <class T, class Base, class... Params>
    Function(T* object, R (Base::*operation)(Params...) const) {
        bind(object, operation);
    }
    /// Binds any callable under a key of the caller's choice (usually `this`), so that it can be
    /// found and taken off a list again.
    Function(const void* key, std::function<R(Args...)> callable)
        : m_key{key, {}}, m_handler(std::make_shared<const Handler>(std::move(callable))) {}

    explicit operator bool() const { return m_handler != nullptr; }
    const FunctionKey& getKey() const { return m_key; }

    R operator()(Args... args) const { return (*m_handler)(std::forward<Args>(args)...); }

private:
    using Handler = std::function<R(Args...)>;

    template <class T, class Operation>
    void bind(T* object, Operation operation) {
        static_assert(sizeof operation <= sizeof m_key.operation);
        m_key.object = object;
        std::memcpy(m_key.operation, &operation, sizeof operation);
        m_handler = std::make_shared<const Handler>([object, operation](Args... args) -> R {
            return (object->*operation)(std::forward<Args>(args)...);
        });
    }

    FunctionKey m_key;
    std::shared_ptr<const Handler> m_handler;
};

/// A list of listeners. Whoever owns the list calls `emit`; listeners are called from first to last
/// in the order in which they were added, synchronously; empty functions are passed over. They must
/// not change the list meanwhile.
template <class... Args>
using SignalList = jVector<Function<void(Args...)>>;

template <class... Args, class... Values>
void emit(const jVector<Function<void(Args...)>>& list, Values&&... values) {
    for (const auto& listener : list)
        if (listener) listener(values...);
}

/// Adds `function` unless the list holds one with the same key. True when it was added.
template <class Signature>
bool addUnique(jVector<Function<Signature>>& list, Function<Signature> function) {
    for (const auto& element : list)
        if (element.getKey() == function.getKey()) return false;
    list.append(std::move(function));
    return true;
}

/// Takes every function bound to `object` off the list.
template <class Signature>
void disconnect(jVector<Function<Signature>>& list, const void* object) {
    for (int i = list.size() - 1; i >= 0; i--)
        if (list[i].getKey().object == object) list.remove(i);
}

} // namespace ig
