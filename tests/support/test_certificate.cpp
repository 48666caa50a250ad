#include "support/test_certificate.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace tremor::testing {

namespace {

template <auto release>
struct Release {
    template <class Object>
    void operator()(Object* object) const {
        release(object);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using File = std::unique_ptr<std::FILE, Release<std::fclose>>;

void require(bool done) {
    if (!done)
        throw std::runtime_error("no test certificate");
}

void addExtension(X509* certificate, int nid, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value));
    require(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

Certificate selfSigned(EVP_PKEY* key) {
    Certificate certificate(X509_new());
    require(certificate != nullptr);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 24L * 3600);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME* name = X509_get_subject_name(certificate.get());
    const std::string host = "localhost";
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(host.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate.get(), NID_subject_alt_name, "DNS:localhost");
    require(X509_sign(certificate.get(), key, EVP_sha256()) != 0);
    return certificate;
}

} // namespace

TestCertificate::TestCertificate(const std::string& folder)
    : certificateFile_(folder + "/localhost.pem"), keyFile_(folder + "/localhost.key") {
    const Key key(EVP_EC_gen("P-256"));
    require(key != nullptr);
    const Certificate certificate = selfSigned(key.get());
    const File certificateFile(std::fopen(certificateFile_.c_str(), "w"));
    const File keyFile(std::fopen(keyFile_.c_str(), "w"));
    require(certificateFile && keyFile);
    require(PEM_write_X509(certificateFile.get(), certificate.get()) == 1);
    require(PEM_write_PrivateKey(keyFile.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) ==
            1);
}

} // namespace tremor::testing
