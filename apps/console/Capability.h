// What the terminal's description knows, by the names of terminfo.
#pragma once

namespace quorix::console {

// Once, before the others.
void ReadTerminalDescription();

bool HasCapability(const char* name);

// Does nothing on a terminal that has it not.
void UseCapability(const char* name);

}  // namespace quorix::console
