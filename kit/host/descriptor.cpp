#include "descriptor.h"

#include <fcntl.h>

namespace koriil
{

Descriptor::Descriptor(int number) : number_(number)
{
    if (number < 0 || number > STDERR_FILENO)
        return;
    number_ = fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(number);
    errno = error;
}

} // namespace koriil
