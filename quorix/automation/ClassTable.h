// What the automation world may do with a class: one line for each member, bound by name.
//
// The type library gives the same names their numbers, parameters and types; neither says what the other
// says.
#pragma once

#include <functional>
#include <tuple>
#include <vector>

#include "quorix/automation/Variant.h"

namespace quorix::automation {

class EventSource;

// The arguments of one call, one for each parameter; those left out say so (see IsMissing).
class Arguments {
public:
    explicit Arguments(std::vector<const VARIANT*> values) : values_(std::move(values)) {}

    template <class T>
    T Take(std::size_t position) const {
        try {
            return FromVariant<T>(*values_.at(position));
        } catch (const BadArgument& bad) {
            throw BadArgument{bad.code, static_cast<unsigned>(position)};
        }
    }

private:
    std::vector<const VARIANT*> values_;
};

using Instance = std::shared_ptr<void>;
using Thunk = std::function<Variant(const Instance&, const Arguments&)>;

struct Member {
    const wchar_t* name;
    WORD kind;           // DISPATCH_METHOD, DISPATCH_PROPERTYGET or DISPATCH_PROPERTYPUT
    unsigned arguments;  // the new value of a put included
    unsigned optional;   // how many of them, at the end, may be left out
    Thunk call;
};

class ClassTable {
public:
    const wchar_t* Name() const { return name_; }
    const std::vector<Member>& Members() const { return members_; }

    // An object that the automation world creates; empty where only the library makes them.
    const std::function<Instance()>& Create() const { return create_; }

    // The events of an instance; empty where the class has none.
    const std::function<std::shared_ptr<EventSource>(const Instance&)>& Events() const { return events_; }

protected:
    explicit ClassTable(const wchar_t* name) : name_(name) {}

    const wchar_t* name_;
    std::vector<Member> members_;
    std::function<Instance()> create_;
    std::function<std::shared_ptr<EventSource>(const Instance&)> events_;
};

// Builds the table of T. Members are member functions of T, or functions whose first parameter is the T, by
// reference or, when it is needed to keep a part of it alive, by its pointer.
template <class T>
class Class : public ClassTable {
public:
    explicit Class(const wchar_t* name) : ClassTable(name) {}

    Class& Creatable(std::shared_ptr<T> (*create)() = [] { return std::make_shared<T>(); }) {
        create_ = [create]() -> Instance { return create(); };
        return *this;
    }

    template <class Source>
    Class& Raises() {
        events_ = [](const Instance& instance) -> std::shared_ptr<EventSource> {
            return std::make_shared<Source>(std::static_pointer_cast<T>(instance));
        };
        return *this;
    }

    template <class V, class A, class B, class C>
    Class& Property(const wchar_t* name, V (B::*get)() const, void (C::*set)(A)) {
        Get(name, get);
        return Add<T&, A>(name, DISPATCH_PROPERTYPUT, 0, set);
    }

    template <class V, class B>
    Class& Get(const wchar_t* name, V (B::*get)() const) {
        return Add<T&>(name, DISPATCH_PROPERTYGET, 0, get);
    }
    template <class V, class B>
    Class& Get(const wchar_t* name, V (B::*get)()) {
        return Add<T&>(name, DISPATCH_PROPERTYGET, 0, get);
    }
    template <class V, class... A>
    Class& Get(const wchar_t* name, V (*get)(T&, A...)) {
        return Add<T&, A...>(name, DISPATCH_PROPERTYGET, 0, get);
    }
    template <class V, class... A>
    Class& Get(const wchar_t* name, V (*get)(const std::shared_ptr<T>&, A...)) {
        return Add<const std::shared_ptr<T>&, A...>(name, DISPATCH_PROPERTYGET, 0, get);
    }
    template <class A>
    Class& Put(const wchar_t* name, void (*put)(T&, A)) {
        return Add<T&, A>(name, DISPATCH_PROPERTYPUT, 0, put);
    }

    template <class V, class B, class... A>
    Class& Method(const wchar_t* name, V (B::*method)(A...), unsigned optional = 0) {
        return Add<T&, A...>(name, DISPATCH_METHOD, optional, method);
    }
    template <class V, class B, class... A>
    Class& Method(const wchar_t* name, V (B::*method)(A...) const, unsigned optional = 0) {
        return Add<T&, A...>(name, DISPATCH_METHOD, optional, method);
    }
    template <class V, class... A>
    Class& Method(const wchar_t* name, V (*function)(T&, A...), unsigned optional = 0) {
        return Add<T&, A...>(name, DISPATCH_METHOD, optional, function);
    }
    template <class V, class... A>
    Class& Method(const wchar_t* name, V (*function)(const std::shared_ptr<T>&, A...),
                  unsigned optional = 0) {
        return Add<const std::shared_ptr<T>&, A...>(name, DISPATCH_METHOD, optional, function);
    }

private:
    template <class Self, class... A, class F>
    Class& Add(const wchar_t* name, WORD kind, unsigned optional, F function) {
        Thunk thunk = [function](const Instance& instance, const Arguments& arguments) {
            const auto object = std::static_pointer_cast<T>(instance);
            if constexpr (std::is_same_v<Self, T&>) {
                return Call<A...>(function, *object, arguments, std::index_sequence_for<A...>());
            } else {
                return Call<A...>(function, object, arguments, std::index_sequence_for<A...>());
            }
        };
        members_.push_back({name, kind, sizeof...(A), optional, std::move(thunk)});
        return *this;
    }

    template <class... A, class F, class Self, std::size_t... I>
    static Variant Call(F function, Self& object, const Arguments& arguments, std::index_sequence<I...>) {
        // Braces, so that the first bad argument is the one reported.
        std::tuple<Held<A>...> held{arguments.Take<Held<A>>(I)...};
        if constexpr (std::is_void_v<std::invoke_result_t<F, Self&, Held<A>&...>>) {
            std::invoke(function, object, std::get<I>(held)...);
            return {};
        } else {
            return Result(std::invoke(function, object, std::get<I>(held)...));
        }
    }

    static Variant Result(Variant made) { return made; }
    template <class V>
    static Variant Result(const V& value) {
        return ToVariant(value);
    }
};

}  // namespace quorix::automation
