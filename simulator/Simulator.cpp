#include "simulator/Simulator.h"

#include <utility>

#include "simulator/FnxSimulator.h"

namespace ZrSimulator {

class Simulator::UnboundBorder final : public Border {
public:
    explicit UnboundBorder(Simulator& simulator) : simulator(simulator) {}

    std::optional<HRESULT> enter(Operation operation) override {
        std::optional<HRESULT> answer;
        // Without a connection there is none to ask about, and no runtime that could hang in it.
        if (operation == Operation::IsConnected || operation == Operation::Disconnect)
            return answer;
        for (const auto& entry : simulator.copyRuntimes()) {
            const auto its = entry.second->clientBorder()->enter(operation);
            if (!answer)
                answer = its;
        }
        return answer;
    }

private:
    Simulator& simulator;
};

Simulator::Simulator() : unboundBorder(std::make_shared<UnboundBorder>(*this)) {}

Simulator& Simulator::instance() {
    static Simulator* const simulator = new Simulator;
    return *simulator;
}

void Simulator::load(Plant plant) {
    Runtimes added;
    for (auto& [netId, definition] : plant.runtimes)
        added.emplace(netId, std::make_shared<Runtime>(std::move(definition)));

    Lock loading(loadMutex);
    Runtimes replaced = added;
    {
        Lock lock(mutex);
        runtimes.swap(replaced);
    }
    if (plant.localNetId)
        ZrFnxSimulatorSetLocalNetId(&*plant.localNetId);
    // First for all of them: a notification of one may wait for a call to another.
    for (const auto& entry : replaced)
        entry.second->clientBorder()->faults.close();
    for (const auto& entry : replaced)
        entry.second->shutDown();
    for (const auto& entry : added)
        entry.second->start();
}

std::shared_ptr<Runtime> Simulator::find(const FnxNetId& netId) {
    Lock lock(mutex);
    const auto found = runtimes.find(netId);
    return found == runtimes.end() ? nullptr : found->second;
}

Simulator::Runtimes Simulator::copyRuntimes() {
    Lock lock(mutex);
    return runtimes;
}

}  // namespace ZrSimulator
