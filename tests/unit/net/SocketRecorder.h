// A socket with a receiver that writes down every event, and plays a test's handlers.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/net/cSocketSSL.h"

namespace quorix::testing_net {

using Log = std::vector<std::string>;

class SocketRecorder : public SocketEvents {
public:
    static std::shared_ptr<SocketRecorder> Create() {
        auto made = std::make_shared<SocketRecorder>();
        made->socket = std::make_shared<cSocketSSL>();
        made->socket->Advise(made);
        return made;
    }

    // The same, connecting to the peer that the environment plays.
    static std::shared_ptr<SocketRecorder> Connecting() {
        auto made = Create();
        made->socket->RemoteHost(u"chat.example");
        made->socket->RemotePort(5222);
        made->socket->Connect();
        return made;
    }

    Log TakeLog() { return std::exchange(log, {}); }

    std::shared_ptr<cSocketSSL> socket;
    Log log;
    std::string received;
    std::map<std::string, std::function<void()>> on;  // by the event's name

    void OnConnect() override { Note("connect", ""); }
    void OnClosed() override { Note("closed", ""); }
    void OnSendComplete() override { Note("sent", ""); }
    void OnDataArrival(std::string_view bytes, StringView) override {
        received += bytes;
        Note("data", ":" + std::string(bytes));
    }
    void OnLineDataArrival(StringView line, StringView) override { Note("line", ":" + BytesFromWire(line)); }
    void OnError(std::int32_t Number, StringView Description) override {
        Note("error", ":" + std::to_string(Number) + ":" + BytesFromWire(Description));
    }
    void OnConnectionRequest() override { Note("request", ""); }

private:
    void Note(const std::string& event, const std::string& details) {
        log.push_back(event + details);
        auto handler = on.find(event);
        if (handler != on.end()) handler->second();
    }
};

}  // namespace quorix::testing_net
