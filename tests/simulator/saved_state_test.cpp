// A saved state is a scenario: a gateway that plays it is in the same state, and answers as the first one does.
#include "support.h"

#include "contract/contract.h"
#include "simulator/dispatcher.h"
#include "simulator/scenario.h"

#include <random>

namespace simulator_test
{

namespace contract = tarn::contract;
using tarn::simulator::Dispatcher;
using tarn::simulator::Model;

using Message = std::vector<std::uint8_t>;

// A request of arbitrary bytes, most of which name objects that exist.
Message arbitraryRequest(const contract::Command& command, std::mt19937& random)
{
    Message message(command.length);
    const bool isBlank = random() % 2 == 0;
    for (std::uint8_t& byte : message)
        byte = isBlank ? 0 : static_cast<std::uint8_t>(random());
    for (const contract::Argument& argument : command.arguments)
        if (argument.encoding == contract::Encoding::kId)
            std::memset(message.data() + argument.offset, 0, 4);
        else if (argument.name == "ifname" || argument.name == "intf_name")
            std::memcpy(message.data() + argument.offset, "wifi0", 6);
        else if (argument.encoding == contract::Encoding::kWord && random() % 2 == 0)
        {
            const auto small = static_cast<std::uint32_t>(random() % 3);
            std::memcpy(message.data() + argument.offset, &small, sizeof small);
        }
    return message;
}

class SavedStateTest : public ::testing::Test
{
protected:
    SavedStateTest()
    {
        for (const contract::Contract& service : contract::all())
            dispatchers_.emplace_back(service, true);
        tarn::simulator::readDefaultScenario(model_);
        model_.start();
    }

    // The same requests to each of the models. Their replies, one behind the other, are to be the same.
    void send(const std::vector<Model*>& models, int rounds, std::uint32_t seed)
    {
        std::mt19937 random(seed);
        for (int round = 0; round < rounds; ++round)
            for (std::size_t i = 0; i < dispatchers_.size(); ++i)
                for (const contract::Command& command : contract::all()[i].commands)
                {
                    const Message request = arbitraryRequest(command, random);
                    Message first;
                    for (Model* model : models)
                    {
                        Message reply = request;
                        dispatchers_[i].serve(*model, command.command, command.length, reply.data());
                        if (first.empty())
                            first = reply;
                        ASSERT_EQ(reply, first) << command.function;
                    }
                }
    }

    Model model_;
    std::vector<Dispatcher> dispatchers_;
};

TEST_F(SavedStateTest, GoesOnAsTheFirstOneWouldHave)
{
    send({&model_}, 4, 1);
    model_.advance(2500);
    send({&model_}, 1, 2);
    const std::string saved = tarn::simulator::scenarioOf(model_).dump();

    Model other;
    readScenario(saved, "saved", other);
    other.start();
    EXPECT_EQ(tarn::simulator::scenarioOf(other), Json::parse(saved));
    EXPECT_EQ(other.time, 2500u);

    send({&model_, &other}, 2, 3);
    EXPECT_EQ(tarn::simulator::scenarioOf(other), tarn::simulator::scenarioOf(model_));
    for (const tarn::simulator::Milliseconds time : {2501, 4000, 64000})
    {
        model_.advance(time);
        other.advance(time);
        EXPECT_EQ(tarn::simulator::scenarioOf(other), tarn::simulator::scenarioOf(model_)) << time;
    }
    send({&model_, &other}, 1, 4);
}

// What is read of a state that was saved is what was written: once more, it is the same text.
TEST_F(SavedStateTest, IsTheSameTextWhenItIsSavedAgain)
{
    const std::string saved = tarn::simulator::scenarioOf(model_).dump(1);
    Model other;
    readScenario(saved, "saved", other);
    EXPECT_EQ(tarn::simulator::scenarioOf(other).dump(1), saved);
}

} // namespace simulator_test
