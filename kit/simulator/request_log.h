// The log of requests: which function was called, by whom, with which arguments, what it was answered, and why it was refused.
//
//     1.250 ledd (471) TarnGetRadioChainRssiAt radioId=1 chainIndex=9: 16 (NO_SUCH_OBJECT), chain 9; radio radio0 has 4, from 0
#pragma once

#include "clock.h"
#include "dispatcher.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>

struct KorIilRequest;

namespace tarn::simulator
{

// Whether requests are logged, and the lines of the last of them.
class RequestLog
{
public:
    using Write = std::function<void(const std::string& line)>;

    explicit RequestLog(Write write) : write_(std::move(write))
    {
    }

    // Gets each line from now on.
    void setWriter(Write write)
    {
        write_ = std::move(write);
    }

    void switchTo(bool isOn)
    {
        isOn_ = isOn;
    }

    bool isOn() const
    {
        return isOn_;
    }

    void add(const std::string& line);

    // Oldest first; at most kKept.
    const std::deque<std::string>& lines() const
    {
        return lines_;
    }

private:
    static constexpr std::size_t kKept = 1000;

    Write write_;
    bool isOn_ = false;
    std::deque<std::string> lines_;
};

// The request in front of the colon, without the time. Of records and blocks it has the parts that are not zero.
std::string requestText(const Dispatcher& dispatcher, const GatewayLayout& layout, const KorIilRequest& request,
                        const void* message);

// What is behind the colon. `message` is the reply.
std::string replyText(const Dispatcher& dispatcher, const GatewayLayout& layout, const KorIilRequest& request,
                      const void* message, std::uint32_t ipcStatus, const std::string& reason);

// "12.345"
std::string timeText(Milliseconds time);

} // namespace tarn::simulator
