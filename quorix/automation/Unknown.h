// Reference counting and interface look-up, once for every object that leaves this component.
#pragma once

#include <ocidl.h>
#include <unknwn.h>

#include <atomic>

namespace quorix::automation {

// How many objects and locks keep the component loaded.
std::atomic<long>& LoadCount();

// What an interface extends, for those that extend more than IUnknown.
template <class Interface>
struct BaseOf {
    using type = IUnknown;
};
template <>
struct BaseOf<IProvideClassInfo2> {
    using type = IProvideClassInfo;
};

// Implements IUnknown for the interfaces named; the first is the object's identity. Starts with one
// reference, which belongs to the maker.
template <class First, class... Others>
class Unknown : public First, public Others... {
public:
    Unknown() { ++LoadCount(); }
    virtual ~Unknown() { --LoadCount(); }
    Unknown(const Unknown&) = delete;
    Unknown& operator=(const Unknown&) = delete;

    STDMETHODIMP QueryInterface(REFIID id, void** out) override {
        if (out == nullptr) return E_POINTER;
        *out = Interface(id);
        if (*out == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references_); }
    STDMETHODIMP_(ULONG) Release() override {
        const long left = --references_;
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

protected:
    // The interface of that id, null when there is none. The first in the list answers for IUnknown.
    virtual void* Interface(REFIID id) {
        void* found = AsOne<First>(id);
        ((found = found == nullptr ? AsOne<Others>(id) : found), ...);
        return found;
    }

    // One more reference, unless the last one has already gone.
    bool AddRefIfAlive() {
        long seen = references_;
        while (seen > 0) {
            if (references_.compare_exchange_weak(seen, seen + 1)) return true;
        }
        return false;
    }

private:
    template <class Own>
    void* AsOne(REFIID id) {
        const bool answers =
            IsEqualIID(id, __uuidof(Own)) || IsEqualIID(id, __uuidof(typename BaseOf<Own>::type));
        return answers ? static_cast<Own*>(this) : nullptr;
    }

    std::atomic<long> references_{1};
};

}  // namespace quorix::automation
