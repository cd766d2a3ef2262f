// Every class that the automation world sees.
#pragma once

#include <vector>

#include "quorix/automation/ClassTable.h"

namespace quorix::automation {

const std::vector<const ClassTable*>& Classes();

}  // namespace quorix::automation
