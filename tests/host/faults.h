// System calls of the library that fail when a test says so: the program is linked with --wrap for each.
#pragma once

namespace host_test
{

// The next poll of this process fails with this errno.
void failNextPoll(int error);

// The next packet that a delivering thread receives is lost: its recv fails with this errno.
void failNextDelivery(int error);

} // namespace host_test
