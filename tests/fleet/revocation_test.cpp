// A certificate that is revoked while mosquitto runs, with the configuration that packaging has.
#include "broker.h"
#include "link.h"
#include "operator.h"
#include "shipped_mosquitto.h"
#include "test_authority.h"

#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

class RevocationTest : public ::testing::Test
{
protected:
    // With a list that is empty yet.
    static std::string configuration(const TestAuthority& authority)
    {
        authority.revoke({});
        return replaced(shippedConfiguration(authority.directory()), "\ncafile",
                        "\ncrlfile " + authority.directory() + "/revoked.pem\ncafile");
    }
    tarn::fleet::LinkSettings settings(const std::string& name) const
    {
        tarn::fleet::LinkSettings link = linkOf(name, {broker_.port()});
        authority_.secure(link, name);
        return link;
    }
    bool getsIn(const std::string& name) const
    {
        Operator client(settings(name), Hearing::kNothing);
        EXPECT_TRUE(client.await([&] { return !client.reason().empty() || client.isConnected(); }));
        return client.isConnected();
    }

    const TestAuthority authority_{{"home-1", "home-2", "home-3"}};
    const MosquittoBroker broker_{configuration(authority_)};
};

TEST_F(RevocationTest, LetsNobodyInOnceTheBrokerHasReadTheListAndEndsNoConnection)
{
    Operator connected(settings("home-1"), Hearing::kNothing);
    ASSERT_TRUE(connected.await([&] { return connected.isConnected(); })) << connected.reason();
    authority_.revoke({"home-1", "home-2"});
    EXPECT_TRUE(getsIn("home-2")) << "the broker has not read it";
    broker_.readAgain();
    bool isHome2In = true;
    for (int look = 0; look < 200 && isHome2In; ++look)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        isHome2In = getsIn("home-2");
    }
    EXPECT_FALSE(isHome2In);
    EXPECT_FALSE(getsIn("home-1"));
    EXPECT_TRUE(getsIn("home-3"));
    EXPECT_FALSE(connected.await([&] { return !connected.isConnected(); }, std::chrono::milliseconds(100)));
}

} // namespace
} // namespace fleet_test
