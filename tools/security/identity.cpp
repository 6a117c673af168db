#include "identity.h"

#include "certificates.h"
#include "failure.h"
#include "openssl.h"

#include <algorithm>
#include <array>
#include <openssl/bn.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>
#include <string>
#include <unistd.h>

namespace Security {

namespace {

using BigNumber = std::unique_ptr<BIGNUM, FreedBy<BN_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, FreedBy<X509_EXTENSION_free>>;
using PlainKey = std::unique_ptr<PKCS8_PRIV_KEY_INFO, FreedBy<PKCS8_PRIV_KEY_INFO_free>>;
using Algorithm = std::unique_ptr<X509_ALGOR, FreedBy<X509_ALGOR_free>>;
using EncryptedKey = std::unique_ptr<X509_SIG, FreedBy<X509_SIG_free>>;

constexpr unsigned keySize = 3072;
constexpr int serialBits = 127;
constexpr int yearsOfValidity = 20;
constexpr long daysInYear = 365;
constexpr std::size_t longestName = 64; // that a certificate takes

std::string hostName() {
    std::array<char, 256> buffer{};
    gethostname(buffer.data(), buffer.size() - 1);
    std::string name(buffer.data());
    std::erase_if(name, [](char character) { return character < ' ' || character > '~'; });
    return name.empty() ? "this machine" : name;
}

std::string commonName() {
    constexpr std::string_view before = "Recovery Key (";
    return std::string(before) + hostName().substr(0, longestName - before.size() - 1) + ')';
}

void setSerial(X509* certificate) {
    const BigNumber number(BN_new());
    requireCrypto(number &&
                  BN_rand(number.get(), serialBits, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) == 1 &&
                  BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr);
}

void setName(X509* certificate) {
    const std::string name = commonName();
    X509_NAME* const subject = X509_get_subject_name(certificate);
    requireCrypto(X509_NAME_add_entry_by_NID(subject, NID_commonName, MBSTRING_ASC,
                                             reinterpret_cast<const unsigned char*>(name.data()),
                                             static_cast<int>(name.size()), -1, 0) == 1 &&
                  X509_set_issuer_name(certificate, subject) == 1);
}

void setValidity(X509* certificate) {
    requireCrypto(X509_gmtime_adj(X509_getm_notBefore(certificate), 0) &&
                  X509_time_adj_ex(X509_getm_notAfter(certificate), yearsOfValidity * daysInYear, 0,
                                   nullptr));
}

void addExtension(X509* certificate, int kind, const char* value) {
    X509V3_CTX context{};
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_nconf_nid(nullptr, &context, kind, value));
    requireCrypto(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

Certificate makeCertificate(const Key& key) {
    Certificate certificate(X509_new());
    requireCrypto(certificate && X509_set_version(certificate.get(), X509_VERSION_3) == 1 &&
                  X509_set_pubkey(certificate.get(), key.get()) == 1);
    setSerial(certificate.get());
    setName(certificate.get());
    setValidity(certificate.get());
    addExtension(certificate.get(), NID_subject_key_identifier, "hash");
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate.get(), NID_key_usage, "critical,keyEncipherment,dataEncipherment");
    requireCrypto(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0);
    return certificate;
}

EncryptedKey encrypted(const Key& key, std::string_view password) {
    using namespace Korvex::Cryptography;
    const PlainKey plain(EVP_PKEY2PKCS8(key.get()));
    Algorithm algorithm(PKCS5_pbe2_set_scrypt(EVP_aes_256_cbc(), nullptr, 0, nullptr, scryptCost,
                                              scryptBlockSize, scryptParallelization));
    requireCrypto(plain && algorithm);
    EncryptedKey result(PKCS8_set0_pbe(password.data(), static_cast<int>(password.size()),
                                       plain.get(), algorithm.get()));
    requireCrypto(result != nullptr);
    (void)algorithm.release(); // the encrypted key has it now
    return result;
}

Korvex::KeychainItem itemOf(const EncryptedKey& key) {
    const Bio stream = writer();
    requireCrypto(PEM_write_bio_PKCS8(stream.get(), key.get()) == 1);
    return {Korvex::KeychainItem::Kind::PrivateKey, writtenTo(stream)};
}

} // namespace

std::vector<Korvex::KeychainItem> makeRecoveryIdentity(std::string_view password) {
    const Key key(EVP_RSA_gen(keySize));
    requireCrypto(key != nullptr);
    return {itemOf(makeCertificate(key)), itemOf(encrypted(key, password))};
}

} // namespace Security
