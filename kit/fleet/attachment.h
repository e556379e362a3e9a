// A gateway behind a broker as if it were here: services of the workstation's IPC that stand for its services. Every program
// that finds them through KORIIL_DIR talks to that gateway.
#pragma once

#include "contract_table.h"
#include "exchange.h"
#include "kor_iil_service.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace tarn::fleet
{

class Attachment
{
public:
    // Opens the services in the runtime directory. `layout` may be null; it and the settings have to stay where they are.
    // Throws std::runtime_error if a service cannot be opened, and what Exchange throws.
    Attachment(const LinkSettings& settings, const std::string& gateway, const layout::Layout* layout);
    ~Attachment();
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;

    // Waits until the gateway has answered. False if it does not within the limit, with a trace, or if it is given up.
    bool awaitGateway(std::chrono::milliseconds limit);
    // Ends what waits, from any thread: for who is about to end it.
    void giveUp();

    ExchangeCounters counters() const
    {
        return exchange_->counters();
    }

private:
    // One of the services, served on a thread of its own.
    struct Door
    {
        Attachment* attachment = nullptr;
        const ContractService* service = nullptr;
        std::mutex mutex; // of `opened`, against its being closed while an event is published
        KorIilService* opened = nullptr;
        std::thread thread;
        std::optional<std::uint32_t> lastEvent; // its sequence number, of the broker's thread alone
    };

    static std::uint32_t handle(void* door, const KorIilRequest* request, void* message);
    static std::uint32_t open(Door& door);
    void serve(Door& door);
    void closeAll();

    void hearState(const Envelope& envelope);
    void hearEvent(const Envelope& envelope);
    void publish(Door& door, const Envelope& envelope);
    void loseEvents();

    const std::string gateway_;
    const layout::Layout* const layout_;
    std::atomic<bool> isStopping_{false};
    Door doors_[kContractServiceCount];

    // Of the broker's thread alone: the gateway's latest connection.
    std::uint64_t run_ = 0;
    std::uint32_t connection_ = 0;
    bool hasConnected_ = false;

    std::unique_ptr<Exchange> exchange_; // the last to be made and the first to end
};

} // namespace tarn::fleet
