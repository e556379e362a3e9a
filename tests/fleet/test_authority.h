// An authority for tests and its certificates, as packaging/make-test-authority makes them.
#pragma once

#include "fleet/broker_link.h"
#include "support/temporary_directory.h"

#include <string>
#include <vector>

namespace fleet_test
{

class TestAuthority
{
public:
    enum class Validity
    {
        kHolds,
        kExpired
    };

    // With certificates for a broker on this machine and for these names of gateways and operators.
    explicit TestAuthority(const std::vector<std::string>& names, Validity validity = Validity::kHolds);

    // Certificates for more names.
    void certify(const std::vector<std::string>& names, Validity validity = Validity::kHolds) const;
    // Then revoked.pem, the list for mosquitto's `crlfile`, has these too.
    void revoke(const std::vector<std::string>& names) const;

    // Has ca.pem, broker.pem and broker.key, and of each name NAME.pem and NAME.key.
    const std::string& directory() const
    {
        return directory_.path();
    }

    // The client has the certificate of this name, and trusts the brokers of this authority.
    void secure(tarn::fleet::LinkSettings& client, const std::string& name) const;
    // The one of these, which switches TLS on, and the other.
    void setTrust(tarn::fleet::LinkSettings& client) const;
    void setCertificate(tarn::fleet::LinkSettings& client, const std::string& name) const;

private:
    void run(const std::string& option, const std::vector<std::string>& names) const;

    tarn::test::TemporaryDirectory directory_;
};

} // namespace fleet_test
