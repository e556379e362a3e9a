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
    EXPECT_EQ(CALL(tarn_qtn_mirror_get_telnet_status)(&result.count, &result.status), kDone);
    return result;
}

TEST_F(MirrorTest, MirrorIsSwitched)
{
    std::uint32_t status = 99;
    EXPECT_EQ(CALL(tarn_qtn_mirror_get_mirror_status)(&status), kDone);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_mirror_enable)(1), kDone);
    EXPECT_EQ(CALL(tarn_qtn_mirror_get_mirror_status)(&status), kDone);
    EXPECT_EQ(status, 1u);
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_mirror_enable)(2), kModuleInvalidValue);
    EXPECT_EQ(telnet(), (Telnet{0, 0})); // the other half of the same reply
}

TEST_F(MirrorTest, TelnetCountsEachProcessOnce)
{
    EXPECT_EQ(telnet(), (Telnet{0, 0}));
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(1, 100), kDone);
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(1, 100), kDone);
    EXPECT_EQ(telnet(), (Telnet{1, 1}));
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(1, 200), kDone);
    EXPECT_EQ(telnet(), (Telnet{2, 1}));
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(0, 100), kDone);
    EXPECT_EQ(telnet(), (Telnet{1, 1}));
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(0, 100), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(0, 200), kDone);
    EXPECT_EQ(telnet(), (Telnet{0, 0}));
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(2, 100), kModuleInvalidValue);
    for (std::uint32_t process = 1; process <= 64; ++process)
        EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(1, process), kDone);
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(1, 65), kModuleFull);
}

TEST_F(MirrorTest, ProxysSwitchHoldsTelnetToo)
{
    EXPECT_EQ(CALL(tarn_qcsapi_telnet_enable)(1), kDone);
    EXPECT_EQ(telnet(), (Telnet{1, 1}));
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(1, 100), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_telnet_enable)(0), kDone);
    EXPECT_EQ(telnet(), (Telnet{1, 1})); // process 100 still needs it
    EXPECT_EQ(CALL(tarn_qcsapi_telnet_enable)(0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_telnet_enable)(2), kModuleInvalidValue);
}

} // namespace simulator_test
