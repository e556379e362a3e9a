// A component of somebody else's in C++, against the installed library.
#include <iostream>

#include <tarn_api.h>
#include <tarn_qtn_monitor_api.h>

int main()
{
    uint32_t level = 0;
    uint32_t enabled = 0;

    if (TarnSetLogLevel("consumer", 5) != TARN_OK || TarnGetLogLevel("consumer", &level) != TARN_OK)
        return 1;
    if (tarn_qtn_mirror_set_mirror_enable("consumer", 1) != 0 || tarn_qtn_mirror_get_mirror_status("consumer", &enabled) != 0)
        return 1;
    std::cout << "log level " << level << ", mirror " << enabled << '\n';
}
