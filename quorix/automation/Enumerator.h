// The automation world's way through a list: a copy of it, walked at the client's pace.
#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "quorix/automation/Unknown.h"
#include "quorix/automation/Variant.h"

namespace quorix::automation {

// One more owner of an element, and one less.
inline void CopyElement(VARIANT* target, const VARIANT& source) {
    VariantInit(target);
    VariantCopy(target, const_cast<VARIANT*>(&source));
}
inline void CopyElement(CONNECTDATA* target, const CONNECTDATA& source) {
    *target = source;
    target->pUnk->AddRef();
}
inline void CopyElement(IConnectionPoint** target, IConnectionPoint* source) {
    *target = source;
    source->AddRef();
}
inline void EndElement(VARIANT& element) { VariantClear(&element); }
inline void EndElement(CONNECTDATA& element) { element.pUnk->Release(); }
inline void EndElement(IConnectionPoint* element) { element->Release(); }

template <class Interface, class Element>
class Enumerator : public Unknown<Interface> {
public:
    // Copies the elements.
    explicit Enumerator(const std::vector<Element>& elements) : elements_(elements.size()) {
        for (std::size_t i = 0; i < elements.size(); ++i) CopyElement(&elements_[i], elements[i]);
    }
    ~Enumerator() override {
        for (Element& element : elements_) EndElement(element);
    }

    STDMETHODIMP Next(ULONG wanted, Element* out, ULONG* fetched) override {
        if (out == nullptr || (fetched == nullptr && wanted != 1)) return E_POINTER;
        const auto given = static_cast<ULONG>(std::min<std::size_t>(wanted, elements_.size() - next_));
        for (ULONG i = 0; i < given; ++i) CopyElement(&out[i], elements_[next_++]);
        if (fetched != nullptr) *fetched = given;
        return given == wanted ? S_OK : S_FALSE;
    }

    STDMETHODIMP Skip(ULONG count) override {
        const std::size_t skipped = std::min<std::size_t>(count, elements_.size() - next_);
        next_ += skipped;
        return skipped == count ? S_OK : S_FALSE;
    }

    STDMETHODIMP Reset() override {
        next_ = 0;
        return S_OK;
    }

    STDMETHODIMP Clone(Interface** out) override {
        if (out == nullptr) return E_POINTER;
        auto* copy = new Enumerator(elements_);
        copy->next_ = next_;
        *out = copy;
        return S_OK;
    }

private:
    std::vector<Element> elements_;
    std::size_t next_ = 0;
};

}  // namespace quorix::automation
