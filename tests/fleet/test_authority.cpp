#include "test_authority.h"

#include "support/process.h"

#include <cstdio>
#include <stdexcept>

namespace fleet_test
{

TestAuthority::TestAuthority(const std::vector<std::string>& names, Validity validity)
{
    certify(names, validity);
}

void TestAuthority::certify(const std::vector<std::string>& names, Validity validity) const
{
    run(validity == Validity::kExpired ? "--expired" : "", names);
}

void TestAuthority::revoke(const std::vector<std::string>& names) const
{
    run("--revoke", names);
}

void TestAuthority::run(const std::string& option, const std::vector<std::string>& names) const
{
    std::vector<std::string> words{PACKAGING "/make-test-authority"};
    if (!option.empty())
        words.push_back(option);
    words.push_back(directory());
    words.insert(words.end(), names.begin(), names.end());
    if (tarn::test::Process(words).finish() != 0)
        throw std::runtime_error(words.front() + " has failed");
}

void TestAuthority::secure(tarn::fleet::LinkSettings& client, const std::string& name) const
{
    setTrust(client);
    setCertificate(client, name);
}

void TestAuthority::setTrust(tarn::fleet::LinkSettings& client) const
{
    std::snprintf(client.authorities, sizeof client.authorities, "%s", directory_.path("ca.pem").c_str());
}

void TestAuthority::setCertificate(tarn::fleet::LinkSettings& client, const std::string& name) const
{
    std::snprintf(client.certificate, sizeof client.certificate, "%s.pem", directory_.path(name).c_str());
    std::snprintf(client.key, sizeof client.key, "%s.key", directory_.path(name).c_str());
}

} // namespace fleet_test
