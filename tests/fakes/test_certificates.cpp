#include "fakes/test_certificates.h"

#include <stdexcept>

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/objects.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace ovrin {

namespace {

void check(bool succeeded) {
    if (!succeeded) throw std::runtime_error("the test certificates can't be made");
}

template <typename Write>
std::string pem(Write write) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> output(BIO_new(BIO_s_mem()), BIO_free);
    check(write(output.get()) == 1);
    char* data = nullptr;
    const long size = BIO_get_mem_data(output.get(), &data);
    return {data, static_cast<std::size_t>(size)};
}

std::string certificatePEM(X509* certificate) {
    return pem([&](BIO* output) { return PEM_write_bio_X509(output, certificate); });
}

}  // namespace

TestAuthority::TestAuthority(const std::string& name)
    : key_(EVP_EC_gen("P-256")), certificate_(makeCertificate(key_.get(), name, Validity::current)) {
    sign(certificate_.get(), {NID_basic_constraints, "critical,CA:TRUE"}, certificate_.get(), key_.get());
}

std::string TestAuthority::certificate() const {
    return certificatePEM(certificate_.get());
}

TestIdentity TestAuthority::issue(const std::string& subject, Validity validity) const {
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate = makeCertificate(key.get(), "Test Server", validity);
    sign(certificate.get(), {NID_subject_alt_name, subject}, certificate_.get(), key_.get());
    return makeIdentity(certificate.get(), key.get());
}

TestIdentity TestAuthority::selfSigned(const std::string& subject) {
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate = makeCertificate(key.get(), "Test Server", Validity::current);
    sign(certificate.get(), {NID_subject_alt_name, subject}, certificate.get(), key.get());
    return makeIdentity(certificate.get(), key.get());
}

TestAuthority::Certificate TestAuthority::makeCertificate(EVP_PKEY* key, const std::string& name, Validity validity) {
    constexpr long day = 24L * 60 * 60;
    Certificate certificate(X509_new());
    check(certificate && key);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -2 * day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validity == Validity::current ? 2 * day : -day);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    return certificate;
}

void TestAuthority::sign(X509* certificate, const Extension& extension, X509* issuer, EVP_PKEY* issuerKey) {
    X509_set_issuer_name(certificate, X509_get_subject_name(issuer));
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> added(
        X509V3_EXT_conf_nid(nullptr, nullptr, extension.identifier, extension.value.c_str()), X509_EXTENSION_free);
    check(added && X509_add_ext(certificate, added.get(), -1) == 1);
    check(X509_sign(certificate, issuerKey, EVP_sha256()) > 0);
}

TestIdentity TestAuthority::makeIdentity(X509* certificate, EVP_PKEY* key) {
    return {.certificate = certificatePEM(certificate), .key = pem([&](BIO* output) {
                                                            return PEM_write_bio_PrivateKey(
                                                                output, key, nullptr, nullptr, 0, nullptr, nullptr);
                                                        })};
}

}  // namespace ovrin
