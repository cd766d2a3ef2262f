// How each kind of server is set up.
#pragma once

#include <memory>

#include "tests/real/RealServer.h"

namespace quorix::real {

std::unique_ptr<RealServer> MakeEjabberd(const Certificate* certificate);
std::unique_ptr<RealServer> MakeProsody(const Certificate* certificate);
std::unique_ptr<RealServer> MakeJabberd2();

}  // namespace quorix::real
