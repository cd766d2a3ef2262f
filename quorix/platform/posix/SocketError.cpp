#include "quorix/platform/posix/SocketError.h"

#include <sys/socket.h>

#include <cerrno>

namespace quorix {

std::int32_t SocketErrorFromErrno(int number) {
    switch (number) {
        case EINTR: return 10004;
        case EBADF: return 10009;
        case EPERM:  // a firewall's rule
        case EACCES: return 10013;
        case EFAULT: return 10014;
        case EINVAL: return 10022;
        case EMFILE:
        case ENFILE: return 10024;
        case EAGAIN: return 10035;
        case EINPROGRESS: return 10036;
        case EALREADY: return 10037;
        case ENOTSOCK: return 10038;
        case EDESTADDRREQ: return 10039;
        case EMSGSIZE: return 10040;
        case EPROTOTYPE: return 10041;
        case ENOPROTOOPT: return 10042;
        case EPROTONOSUPPORT: return 10043;
        case ESOCKTNOSUPPORT: return 10044;
        case EOPNOTSUPP: return 10045;
        case EPFNOSUPPORT: return 10046;
        case EAFNOSUPPORT: return 10047;
        case EADDRINUSE: return 10048;
        case EADDRNOTAVAIL: return 10049;
        case ENETDOWN: return 10050;
        case ENETUNREACH: return 10051;
        case ENETRESET: return 10052;
        case ECONNABORTED: return 10053;
        case EPIPE:  // what a write to a reset connection gives, where other systems repeat the reset
        case ECONNRESET: return 10054;
        case ENOMEM:
        case ENOBUFS: return 10055;
        case EISCONN: return 10056;
        case ENOTCONN: return 10057;
        case ESHUTDOWN: return 10058;
        case ETOOMANYREFS: return 10059;
        case ETIMEDOUT: return 10060;
        case ECONNREFUSED: return 10061;
        case ELOOP: return 10062;
        case ENAMETOOLONG: return 10063;
        case EHOSTDOWN: return 10064;
        case EHOSTUNREACH: return 10065;
        case ENOTEMPTY: return 10066;
        case EUSERS: return 10068;
        case EDQUOT: return 10069;
        case ESTALE: return 10070;
        case EREMOTE: return 10071;
        default: return number;
    }
}

std::int32_t PendingSocketError(int descriptor) {
    int number = 0;
    socklen_t size = sizeof number;
    if (getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &number, &size) != 0) number = errno;
    return SocketErrorFromErrno(number);
}

}  // namespace quorix
