// `tarnctl gateway`: no function of the library, but an order to the simulated gateway.
#include "base/join.h"
#include "simulator/order_forms.h"
#include "tarn_frame.h"
#include "tarn_gateway_order.hpp"
#include "tarnctl/usage_error.h"
#include "tarnctl/values.h"
#include "tarnctl/verbs/verbs.h"

#include <filesystem>

#include <nlohmann/json.hpp>

namespace tarn::ctl
{

namespace
{

constexpr std::uint32_t kOrderWait = 30; // seconds: a step may be long

struct GatewayOptions
{
    std::vector<std::string> words;
};

std::string help()
{
    std::string text = "Orders:\n";
    for (const simulator::OrderForm& form : simulator::kOrderForms)
        text += "  " + std::string(form.words) + "\n      " + std::string(form.meaning) + "\n";
    return text + R"(
What a kind of fault does, and all keys, says the documentation of tarn-gateway.

Examples:
  tarnctl gateway station add address=02:00:00:00:02:01 ssid=home pathLoss=80
  tarnctl gateway faults add noAnswer function=TarnGetRadio count=1
  tarnctl gateway set /radios/0/channel 44)";
}

void declareGateway(Syntax& syntax, GatewayOptions& options)
{
    syntax.texts("ORDER", options.words, "The order and what belongs to it");
    syntax.footer(help().c_str());
}

// So that the gateway finds the same words in it again.
std::string lineOf(const std::vector<std::string>& words)
{
    return base::join(words, " ",
                      [](const std::string& word)
                      {
                          std::string quoted = word.empty() ? "''" : "";
                          for (const char character : word)
                          {
                              if (std::string(" \t\r\n'\"\\").find(character) != std::string::npos)
                                  quoted += '\\';
                              quoted += character;
                          }
                          return quoted;
                      });
}

void show(const Console& console, const std::string& order, const Json& answer)
{
    if (order == "log")
        for (const Json& line : answer)
            console.out << line.get<std::string>() << '\n';
    else if (answer.is_string())
        console.out << answer.get<std::string>() << '\n';
    else if (!answer.is_null())
        console.out << answer.dump(1) << '\n';
}

ExitCode gateway(const Console& console, const GatewayOptions& options)
{
    if (options.words.empty())
        throw UsageError("gateway: expected one of " + base::join(simulator::orderNames()));
    const std::string& name = options.words.front();
    requireAction("gateway", name, simulator::orderNames());
    std::vector<std::string> words = options.words;
    if (name == "save" && words.size() == 2)
        words[1] = std::filesystem::absolute(words[1]).string(); // the gateway may run in another directory
    const std::string line = lineOf(words);
    if (line.size() >= TARN_GATEWAY_ORDER_SIZE)
        throw UsageError("gateway: expected an order of at most " + std::to_string(TARN_GATEWAY_ORDER_SIZE - 1) +
                         " characters; got " + std::to_string(line.size()));

    const tarn::gateway::OrderAnswer answer = tarn::gateway::giveOrder(kOwnCallerId, line, kOrderWait);
    if (answer.ipcStatus != 0)
        return simulatorFailure(console, answer.ipcStatus, "takes orders");
    if (answer.status != TARN_GATEWAY_OK)
        return console.fail(ExitCode::kServiceStatus,
                            "the simulated gateway answered with status " + std::to_string(answer.status) + ": " + answer.text);
    const Json value = Json::parse(answer.text);
    if (console.json)
    {
        Json document = Console::document("gateway");
        document["order"] = options.words;
        document["answer"] = value;
        console.write(document);
    }
    else
        show(console, name, value);
    return ExitCode::kSuccess;
}

} // namespace

ExitCode simulatorFailure(const Console& console, std::uint32_t status, const std::string& purpose)
{
    const CallOutcome outcome = outcomeOf(status);
    const std::string why = outcome == CallOutcome::kNoService
                                ? "no simulated gateway is running" + inRuntimeDirectory() + " (only that one " + purpose + ")"
                                : "the simulated gateway cannot be asked";
    return console.fail(exitCodeOf(outcome),
                        why + ": " + tarnIpcStatusName(status) + " (IPC status " + std::to_string(status) + ")");
}

void addGateway(Verbs& verbs)
{
    verbs.add("gateway", "Gives the simulated gateway an order", &declareGateway, &gateway);
}

} // namespace tarn::ctl
