#include "fleet_process.h"

#include "text_files.h"

#include <fcntl.h>
#include <unistd.h>

namespace fleet_test
{

namespace
{

int create(const std::string& path)
{
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

} // namespace

FleetProcess::FleetProcess(const tarn::test::TemporaryDirectory& directory, const std::vector<std::string>& words,
                           const std::string& program)
    : outPath_(directory.path("out")), errPath_(directory.path("err"))
{
    const int out = create(outPath_), err = create(errPath_);
    process_ = tarn::test::Process(tarn::test::commandOf("", program, words), {STDIN_FILENO, out, err},
                                   {{"TARN_FLEET", directory.path("fleet.conf")}, {"TARN_LAYOUT", ""}});
    close(out);
    close(err);
}

void FleetProcess::signal(int number) const
{
    process_.signal(number);
}

std::string FleetProcess::out() const
{
    return contents(outPath_);
}

std::string FleetProcess::err() const
{
    return contents(errPath_);
}

FleetRun FleetProcess::finish()
{
    const int exit = process_.finish();
    return {exit, out(), err()};
}

} // namespace fleet_test
