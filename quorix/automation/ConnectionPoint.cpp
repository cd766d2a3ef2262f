#include <olectl.h>

#include <vector>

#include "quorix/automation/Enumerator.h"
#include "quorix/automation/Object.h"

namespace quorix::automation {
namespace {

std::vector<CONNECTDATA> Connections(const EventSource& source) {
    std::vector<CONNECTDATA> all;
    for (const auto& [cookie, sink] : source.Sinks()) all.push_back({sink.target.Get(), cookie});
    return all;
}

class ConnectionPoint : public Unknown<IConnectionPoint> {
public:
    explicit ConnectionPoint(Object& owner) : owner_(&owner) {}

    STDMETHODIMP GetConnectionInterface(IID* id) override {
        if (id == nullptr) return E_POINTER;
        *id = owner_->Bound().Declared().eventsId;
        return S_OK;
    }

    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override {
        if (container == nullptr) return E_POINTER;
        return owner_->QueryInterface(IID_PPV_ARGS(container));
    }

    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override {
        if (!owner_->OnItsThread()) return RPC_E_WRONG_THREAD;
        return owner_->Events()->Advise(sink, owner_->Bound().Declared().eventsId, cookie);
    }

    STDMETHODIMP Unadvise(DWORD cookie) override {
        if (!owner_->OnItsThread()) return RPC_E_WRONG_THREAD;
        return owner_->Events()->Unadvise(cookie);
    }

    STDMETHODIMP EnumConnections(IEnumConnections** connections) override {
        if (connections == nullptr) return E_POINTER;
        if (!owner_->OnItsThread()) return RPC_E_WRONG_THREAD;
        *connections = new Enumerator<IEnumConnections, CONNECTDATA>(Connections(*owner_->Events()));
        return S_OK;
    }

private:
    ComPtr<Object> owner_;
};

}  // namespace

IConnectionPoint* MakeConnectionPoint(Object& owner) { return new ConnectionPoint(owner); }

IEnumConnectionPoints* MakeConnectionPointList(Object& owner) {
    const ComPtr<IConnectionPoint> only = Adopt<IConnectionPoint>(MakeConnectionPoint(owner));
    return new Enumerator<IEnumConnectionPoints, IConnectionPoint*>({only.Get()});
}

}  // namespace quorix::automation
