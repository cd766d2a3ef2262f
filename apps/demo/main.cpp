// The demonstration: a session logs in to a server in the same process, over real loopback sockets, and does
// what a client does in its day. Every step is printed as it happens; the exit code is 0 when all were seen.
#include <cstdio>

#include "apps/demo/Demo.h"

int main() {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    return quorix::demo::RunDemo() ? 0 : 1;
}
