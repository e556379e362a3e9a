// The scenarios that are shipped, and generated ones: each can be played, and shows what it is there for.
#include "support.h"

#include "simulator/scenario.h"

#include <filesystem>

namespace simulator_test
{

using tarn::simulator::Interface;
using tarn::simulator::Model;
using tarn::simulator::Radio;

std::string pathOf(const std::string& name)
{
    return std::string(SCENARIOS "/") + name + ".json";
}

std::size_t stationsOf(Model& model, std::uint32_t radioId, std::uint32_t interfaceId)
{
    return model.interfaceOf(radioId, interfaceId).stations.size();
}

TEST(ShippedScenarioTest, EachIsPlayedAndSavedAndPlayedAgain)
{
    std::size_t number = 0;
    for (const auto& file : std::filesystem::directory_iterator(SCENARIOS))
    {
        Model model;
        ASSERT_NO_THROW(readScenarioFile(file.path(), model)) << file.path();
        model.start();
        model.advance(3600 * 1000);
        const Json saved = tarn::simulator::scenarioOf(model);
        Model again;
        ASSERT_NO_THROW(tarn::simulator::readScenario(saved.dump(), "saved", again)) << file.path();
        again.start();
        EXPECT_EQ(tarn::simulator::scenarioOf(again), saved) << file.path();
        ++number;
    }
    EXPECT_EQ(number, 5u);
}

TEST(ShippedScenarioTest, HomeHasClientsInEachBandAndOneWithAnOldPassphrase)
{
    Model model;
    readScenarioFile(pathOf("home"), model);
    model.start();
    EXPECT_EQ(stationsOf(model, 1, 1), 3u);
    EXPECT_EQ(stationsOf(model, 1, 2), 1u); // the guest
    EXPECT_EQ(stationsOf(model, 2, 1), 2u); // those that can do nothing else
    EXPECT_EQ(stationsOf(model, 3, 1), 1u);
}

TEST(ShippedScenarioTest, EmptyHasNobody)
{
    Model model;
    readScenarioFile(pathOf("empty"), model);
    model.start();
    model.advance(3600 * 1000);
    EXPECT_EQ(model.radio(1).stationNumber(), 0u);
    EXPECT_EQ(model.radio(1).channelLoad, 0u);
}

TEST(ShippedScenarioTest, DfsLosesItsChannelToRadarAndGetsItBack)
{
    Model model;
    readScenarioFile(pathOf("dfs"), model);
    model.start();
    Radio& radio = model.radio(1);
    EXPECT_EQ(radio.stationNumber(), 3u);
    model.advance(119999);
    EXPECT_EQ(radio.settings.channel, 100u);
    model.advance(120000);
    EXPECT_EQ(radio.settings.channel, 36u); // crowded, but it can be used at once
    EXPECT_GE(radio.channelLoad, 60u);
    EXPECT_EQ(radio.occupiedChannels, (std::set<std::uint32_t>{100, 104, 108, 112}));
    model.advance(120000 + 1800 * 1000);
    EXPECT_TRUE(radio.occupiedChannels.empty());
}

TEST(GeneratedScenarioTest, HasAsMuchAsItWasAskedFor)
{
    Model model;
    tarn::simulator::readScenario(tarn::simulator::generatedScenario(8, 8, 60).dump(), "generated", model);
    model.start();
    ASSERT_EQ(model.radios.size(), 8u);
    for (const Radio& radio : model.radios)
    {
        ASSERT_EQ(radio.interfaces.size(), 8u);
        for (const Interface& interface : radio.interfaces)
            EXPECT_EQ(interface.stations.size(), 60u) << interface.name;
    }
}

} // namespace simulator_test
