#include "support.h"

namespace simulator_test
{

using MirrorTest = SimulatorTest;

struct Telnet
{
    std::uint32_t count = 99;
    std::uint32_t status = 99;

    bool operator==(const Telnet& other) const
    {
        return count == other.count && status == other.status;
    }
};

Telnet telnet()
{
    Telnet result;
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_get_telnet_status)(&result.count, &result.status));
    return result;
}

TEST_F(MirrorTest, MirrorIsSwitched)
{
    std::uint32_t status = 99;
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_get_mirror_status)(&status));
    EXPECT_EQ(0U, status);
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_mirror_enable)(1));
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_get_mirror_status)(&status));
    EXPECT_EQ(1U, status);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qtn_mirror_set_mirror_enable)(2));
    EXPECT_EQ((Telnet{0, 0}), telnet()); // the other half of the same reply
}

TEST_F(MirrorTest, TelnetCountsEachProcessOnce)
{
    EXPECT_EQ((Telnet{0, 0}), telnet());
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_telnet_enable)(1, 100));
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_telnet_enable)(1, 100));
    EXPECT_EQ((Telnet{1, 1}), telnet());
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_telnet_enable)(1, 200));
    EXPECT_EQ((Telnet{2, 1}), telnet());
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_telnet_enable)(0, 100));
    EXPECT_EQ((Telnet{1, 1}), telnet());
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qtn_mirror_set_telnet_enable)(0, 100));
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_telnet_enable)(0, 200));
    EXPECT_EQ((Telnet{0, 0}), telnet());
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qtn_mirror_set_telnet_enable)(2, 100));
    for (std::uint32_t process = 1; process <= 64; ++process)
        EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_telnet_enable)(1, process));
    EXPECT_EQ(kModuleFull, CALL(tarn_qtn_mirror_set_telnet_enable)(1, 65));
}

TEST_F(MirrorTest, ProxysSwitchHoldsTelnetToo)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_telnet_enable)(1));
    EXPECT_EQ((Telnet{1, 1}), telnet());
    EXPECT_EQ(kDone, CALL(tarn_qtn_mirror_set_telnet_enable)(1, 100));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_telnet_enable)(0));
    EXPECT_EQ((Telnet{1, 1}), telnet()); // process 100 still needs it
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_telnet_enable)(0));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_telnet_enable)(2));
}

} // namespace simulator_test
