// Certificates for TLS servers in tests, made when they are needed: an authority of one's own and what it issues.
#pragma once

#include <memory>
#include <string>

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace ovrin {

// What a TLS server needs, in PEM.
struct TestIdentity {
    std::string certificate;
    std::string key;
};

enum class Validity { current, expired };

class TestAuthority {
public:
    explicit TestAuthority(const std::string& name = "Test Authority");

    // PEM of the authority's own certificate: what a client must trust.
    std::string certificate() const;

    // subject: as in a subjectAltName extension, "DNS:example.test" or "IP:127.0.0.1".
    TestIdentity issue(const std::string& subject, Validity validity = Validity::current) const;
    // A server that vouches for itself.
    static TestIdentity selfSigned(const std::string& subject);

private:
    template <auto Function>
    struct Deleter {
        template <typename Value>
        void operator()(Value* value) const {
            Function(value);
        }
    };
    using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
    using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;

    struct Extension {
        int identifier;
        std::string value;
    };

    static Certificate makeCertificate(EVP_PKEY* key, const std::string& name, Validity validity);
    static void sign(X509* certificate, const Extension& extension, X509* issuer, EVP_PKEY* issuerKey);
    static TestIdentity makeIdentity(X509* certificate, EVP_PKEY* key);

    Key key_;
    Certificate certificate_;
};

}  // namespace ovrin
