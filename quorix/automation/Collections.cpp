#include "quorix/automation/Collections.h"

#include "quorix/automation/Enumerator.h"

namespace quorix::automation {

Variant MakeEnumerator(const std::vector<Variant>& values) {
    Variant made;
    made.punkVal = new Enumerator<IEnumVARIANT, VARIANT>(std::vector<VARIANT>(values.begin(), values.end()));
    made.vt = VT_UNKNOWN;
    return made;
}

bool IsKey(const Variant& index) { return index.vt == VT_BSTR; }

}  // namespace quorix::automation
