// Counted pointers to interfaces.
#pragma once

#include <wrl/client.h>

namespace quorix::automation {

using Microsoft::WRL::ComPtr;

// Takes over the one reference that the maker of `made` holds. (The headers' own Attach adds another.)
template <class T>
ComPtr<T> Adopt(T* made) {
    ComPtr<T> owner;
    *owner.GetAddressOf() = made;
    return owner;
}

}  // namespace quorix::automation
