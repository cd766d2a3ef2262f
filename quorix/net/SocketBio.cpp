#include "quorix/net/SocketBio.h"

#include <memory>

namespace quorix {

namespace {

struct Transport {
    Environment& environment;
    SocketId socket;
};

Transport& TransportOf(BIO* bio) { return *static_cast<Transport*>(BIO_get_data(bio)); }

int Result(BIO* bio, Transfer transfer, int retryFlag) {
    BIO_clear_retry_flags(bio);
    if (transfer.error == SOCKERR_WouldBlock) BIO_set_flags(bio, retryFlag | BIO_FLAGS_SHOULD_RETRY);
    return transfer.count;
}

int Read(BIO* bio, char* buffer, int capacity) {
    Transport& transport = TransportOf(bio);
    Transfer done =
        transport.environment.Receive(transport.socket, buffer, static_cast<std::size_t>(capacity));
    return Result(bio, done, BIO_FLAGS_READ);
}

int Write(BIO* bio, const char* bytes, int count) {
    Transport& transport = TransportOf(bio);
    Transfer done = transport.environment.Send(transport.socket, {bytes, static_cast<std::size_t>(count)});
    return Result(bio, done, BIO_FLAGS_WRITE);
}

long Control(BIO* /*bio*/, int command, long /*number*/, void* /*pointer*/) {
    return command == BIO_CTRL_FLUSH ? 1 : 0;
}

int Destroy(BIO* bio) {
    delete static_cast<Transport*>(BIO_get_data(bio));
    return 1;
}

// Made once, and kept until the process ends.
const BIO_METHOD* Method() {
    static const BIO_METHOD* method = [] {
        BIO_METHOD* made = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "environment socket");
        BIO_meth_set_read(made, Read);
        BIO_meth_set_write(made, Write);
        BIO_meth_set_ctrl(made, Control);
        BIO_meth_set_destroy(made, Destroy);
        return made;
    }();
    return method;
}

}  // namespace

BIO* NewSocketBio(Environment& environment, SocketId socket) {
    BIO* bio = BIO_new(Method());
    if (bio == nullptr) return nullptr;
    BIO_set_data(bio, new Transport{environment, socket});
    BIO_set_init(bio, 1);
    return bio;
}

}  // namespace quorix
