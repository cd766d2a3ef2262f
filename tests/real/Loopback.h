// Ports on 127.0.0.1, and what a server does there without our own client.
#pragma once

namespace quorix::real {

// A port that nobody listens on, given to no other process as long as this one lives, and below the range
// that the system takes for outgoing connections: it stays free while its server is down.
int FreePort();

// Whether this machine has ::1.
bool HasIp6();

// True when something accepts connections on the port.
bool Accepts(int port);

// True when a server on the port answers a query with a result within 10 s.
bool AnswersQuery(int port);

}  // namespace quorix::real
