#include "python/module/Home.h"

#include <utility>

#include "python/module/ThreadEnvironment.h"

namespace quorix::python {
namespace {

thread_local const Home* own = nullptr;  // of the threads that have one

void Empty(Body& body) {
    body.connection.reset();
    body.instance.reset();
}

// Ends with its thread, before what the objects need of that.
struct Tenancy {
    Tenancy() { own = home.get(); }
    ~Tenancy() { home->Close(); }
    Tenancy(const Tenancy&) = delete;
    Tenancy& operator=(const Tenancy&) = delete;

    ThreadEnvironment environment;
    Environment::Use use{environment};
    std::shared_ptr<Home> home = std::make_shared<Home>();
};

}  // namespace

const std::shared_ptr<Home>& Home::Current() {
    thread_local const Tenancy tenancy;
    return tenancy.home;
}

bool Home::IsCurrent() const { return this == own; }

std::shared_ptr<Body> Home::Add(scripting::Instance instance) {
    auto body = std::make_shared<Body>(Body{std::move(instance), nullptr});
    std::lock_guard lock(mutex_);
    living_.insert(body);
    return body;
}

void Home::End(std::shared_ptr<Body> body) {
    {
        std::lock_guard lock(mutex_);
        if (living_.erase(body) == 0) return;  // ended with its thread
        if (!IsCurrent()) {
            graves_.push_back(std::move(body));
            hasGraves_ = true;
            return;
        }
    }
    Empty(*body);
}

void Home::EmptyGraves() {
    std::vector<std::shared_ptr<Body>> ending;
    {
        std::lock_guard lock(mutex_);
        ending.swap(graves_);
        hasGraves_ = false;
    }
    for (const std::shared_ptr<Body>& body : ending) Empty(*body);
}

void Home::Close() {
    EmptyGraves();
    std::unordered_set<std::shared_ptr<Body>> ending;
    {
        std::lock_guard lock(mutex_);
        ending.swap(living_);
    }
    for (const std::shared_ptr<Body>& body : ending) Empty(*body);
}

}  // namespace quorix::python
