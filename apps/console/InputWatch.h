// Standard input as a source of the message loop.
#pragma once

#include <functional>

namespace quorix::console {

class InputWatch {
public:
    explicit InputWatch(std::function<void()> onReadable) : onReadable_(std::move(onReadable)) {}
    ~InputWatch() { Pause(); }
    InputWatch(const InputWatch&) = delete;
    InputWatch& operator=(const InputWatch&) = delete;

    void Resume();
    void Pause();

private:
    std::function<void()> onReadable_;
    unsigned source_ = 0;
};

}  // namespace quorix::console
