// Builds the table of a class, one line for each member.
#pragma once

#include <tuple>

#include "quorix/scripting/Conversion.h"

namespace quorix::scripting {

// Members are member functions of T, or functions whose first parameter is the T, by reference or, when it is
// needed to keep a part of it alive, by its pointer.
template <class T>
class Class : public ClassTable {
public:
    explicit Class(const char* name) : ClassTable(name) {}

    Class& Creatable(std::shared_ptr<T> (*create)() = [] { return std::make_shared<T>(); }) {
        create_ = [create]() -> Instance { return create(); };
        return *this;
    }

    Class& Raises(const std::vector<Event>& events,
                  Connection (*listen)(const std::shared_ptr<T>&, std::shared_ptr<Listener>)) {
        events_ = &events;
        listen_ = [listen](const Instance& instance, std::shared_ptr<Listener> listener) {
            return listen(std::static_pointer_cast<T>(instance), std::move(listener));
        };
        return *this;
    }

    template <class V, class A, class B, class C>
    Class& Property(const char* name, V (B::*get)() const, void (C::*set)(A)) {
        Get(name, get);
        return Add<T&, void, A>(name, MemberKind::Put, 0, set);
    }

    template <class V, class B>
    Class& Get(const char* name, V (B::*get)() const) {
        return Add<T&, V>(name, MemberKind::Get, 0, get);
    }
    template <class V, class B>
    Class& Get(const char* name, V (B::*get)()) {
        return Add<T&, V>(name, MemberKind::Get, 0, get);
    }
    template <class V, class... A>
    Class& Get(const char* name, V (*get)(T&, A...)) {
        return Add<T&, V, A...>(name, MemberKind::Get, 0, get);
    }
    template <class V, class... A>
    Class& Get(const char* name, V (*get)(const std::shared_ptr<T>&, A...)) {
        return Add<const std::shared_ptr<T>&, V, A...>(name, MemberKind::Get, 0, get);
    }
    template <class A>
    Class& Put(const char* name, void (*put)(T&, A)) {
        return Add<T&, void, A>(name, MemberKind::Put, 0, put);
    }

    // The last `optional` parameters may be left out.
    template <class V, class B, class... A>
    Class& Method(const char* name, V (B::*method)(A...), unsigned optional = 0) {
        return Add<T&, V, A...>(name, MemberKind::Method, optional, method);
    }
    template <class V, class B, class... A>
    Class& Method(const char* name, V (B::*method)(A...) const, unsigned optional = 0) {
        return Add<T&, V, A...>(name, MemberKind::Method, optional, method);
    }
    template <class V, class... A>
    Class& Method(const char* name, V (*function)(T&, A...), unsigned optional = 0) {
        return Add<T&, V, A...>(name, MemberKind::Method, optional, function);
    }
    template <class V, class... A>
    Class& Method(const char* name, V (*function)(const std::shared_ptr<T>&, A...), unsigned optional = 0) {
        return Add<const std::shared_ptr<T>&, V, A...>(name, MemberKind::Method, optional, function);
    }

private:
    template <class Self, class V, class... A, class F>
    Class& Add(const char* name, MemberKind kind, unsigned optional, F function) {
        auto thunk = [function](const Instance& instance, const Values& arguments) {
            const auto object = std::static_pointer_cast<T>(instance);
            if constexpr (std::is_same_v<Self, T&>) {
                return CallWith<A...>(function, *object, arguments, std::index_sequence_for<A...>());
            } else {
                return CallWith<A...>(function, object, arguments, std::index_sequence_for<A...>());
            }
        };
        std::vector<Parameter> parameters{{TypeOf<std::remove_cvref_t<A>>(), false}...};
        for (std::size_t i = parameters.size() - optional; i < parameters.size(); ++i) {
            parameters[i].isOptional = true;
        }
        members_.push_back(
            {name, kind, std::move(parameters), TypeOf<std::remove_cvref_t<V>>(), std::move(thunk)});
        return *this;
    }

    template <class V>
    static V Take(const Values& arguments, std::size_t position) {
        try {
            return FromValue<V>(arguments.at(position));
        } catch (const AutomationError& error) {
            throw ArgumentError(error.Number(), position);
        }
    }

    template <class... A, class F, class Self, std::size_t... I>
    static Value CallWith(F function, Self& object, const Values& arguments, std::index_sequence<I...>) {
        // Braces, so that the first bad argument is the one reported.
        std::tuple<std::remove_cvref_t<A>...> taken{Take<std::remove_cvref_t<A>>(arguments, I)...};
        if constexpr (std::is_void_v<std::invoke_result_t<F, Self&, std::remove_cvref_t<A>&...>>) {
            std::invoke(function, object, std::get<I>(taken)...);
            return {};
        } else {
            return ToValue(std::invoke(function, object, std::get<I>(taken)...));
        }
    }
};

// The part of `owner` that `part` refers to, keeping the owner alive.
template <class Part, class Owner>
std::shared_ptr<Part> PartOf(const std::shared_ptr<Owner>& owner, Part& part) {
    return {owner, &part};
}

// The parameters of an event from the function that it calls.
template <class Events, class... A>
Event EventOf(const char* name, void (Events::*)(A...)) {
    return {name, {TypeOf<std::remove_cvref_t<A>>()...}};
}

// Tells `listener` of `event`, if it wants to know.
template <class... A>
void Tell(Listener& listener, const Event& event, const A&... arguments) {
    if (!listener.Wants(event)) return;
    Values values;
    values.reserve(sizeof...(A));
    (values.push_back(ToValue(arguments)), ...);
    listener.OnEvent(event, values);
}

}  // namespace quorix::scripting
