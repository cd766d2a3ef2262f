#include "quorix/platform/MessageLoop.h"

#include "quorix/platform/Environment.h"

namespace quorix {

void MessageLoop::Run() { Environment::Current().Run(); }
void MessageLoop::Quit() { Environment::Current().Quit(); }
void MessageLoop::DoEvents() { Environment::Current().DoEvents(); }
int MessageLoop::Descriptor() { return Environment::Current().Descriptor(); }
void MessageLoop::Dispatch() { Environment::Current().Dispatch(); }

}  // namespace quorix
