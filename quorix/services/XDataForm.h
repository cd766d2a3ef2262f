// Reads a data form (jabber:x:data).
#pragma once

#include "quorix/services/cXData.h"
#include "quorix/xml/ParsedXml.h"

namespace quorix {

// Appends the fields of the `x` element to `form`; title and instructions are replaced. Values stay wire
// text.
void FillXData(cXData& form, const ParsedNode& x);

}  // namespace quorix
