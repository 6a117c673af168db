#include "certificates.h"

#include "failure.h"
#include "platform/keychain/status.h"

#include <array>
#include <openssl/err.h>
#include <openssl/pem.h>

namespace Security {

namespace {

/// Certificates are no secrets: nobody is asked for a password, whatever a file says.
int noPassword(char*, int, int, void*) {
    return -1;
}

Certificate nextIn(const Bio& stream) {
    return Certificate(PEM_read_bio_X509(stream.get(), nullptr, noPassword, nullptr));
}

/// Whether reading has ended because there is nothing more, not because of damage.
bool isAtEnd() {
    const unsigned long error = ERR_peek_last_error();
    ERR_clear_error();
    return ERR_GET_LIB(error) == ERR_LIB_PEM && ERR_GET_REASON(error) == PEM_R_NO_START_LINE;
}

Certificate fromDer(const std::string& file) {
    const auto* next = reinterpret_cast<const unsigned char*>(file.data());
    const unsigned char* const end = next + file.size();
    Certificate certificate(d2i_X509(nullptr, &next, static_cast<long>(file.size())));
    if (next != end)
        certificate.reset();
    return certificate;
}

std::string nameText(const X509_NAME* name) {
    const Bio stream = writer();
    X509_NAME_print_ex(stream.get(), name, 0, XN_FLAG_RFC2253);
    return writtenTo(stream);
}

std::string timeText(const ASN1_TIME* time) {
    const Bio stream = writer();
    ASN1_TIME_print_ex(stream.get(), time, ASN1_DTFLGS_ISO8601);
    return writtenTo(stream);
}

std::string serialText(const ASN1_INTEGER* serial) {
    const Bio stream = writer();
    i2a_ASN1_INTEGER(stream.get(), serial);
    return writtenTo(stream);
}

std::string fingerprint(const Certificate& certificate) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    requireCrypto(X509_digest(certificate.get(), EVP_sha256(), digest.data(), &size) == 1);
    std::string text;
    for (unsigned i = 0; i < size; ++i) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        text += i == 0 ? "" : ":";
        text += digits[digest.at(i) >> 4];
        text += digits[digest.at(i) & 0x0F];
    }
    return text;
}

} // namespace

Korvex::KeychainItem itemOf(const Certificate& certificate) {
    const Bio stream = writer();
    requireCrypto(PEM_write_bio_X509(stream.get(), certificate.get()) == 1);
    return {Korvex::KeychainItem::Kind::Certificate, writtenTo(stream)};
}

std::vector<Korvex::KeychainItem> certificatesIn(const std::string& file, const std::string& path) {
    std::vector<Korvex::KeychainItem> items;
    const Bio stream = readerOf(file);
    ERR_clear_error();
    while (const Certificate certificate = nextIn(stream))
        items.push_back(itemOf(certificate));
    if (!isAtEnd())
        items.clear();
    else if (const Certificate single = items.empty() ? fromDer(file) : nullptr)
        items.push_back(itemOf(single));
    if (items.empty())
        require(Korvex::KeychainStatus::UnknownFormat, path);
    return items;
}

std::string describe(const Korvex::KeychainItem& item) {
    if (item.kind == Korvex::KeychainItem::Kind::PrivateKey)
        return "private key (encrypted with the keychain's password)\n";
    const Bio stream = readerOf(item.pem);
    const Certificate certificate = nextIn(stream);
    requireCrypto(certificate != nullptr);
    return "certificate\n  subject: " + nameText(X509_get_subject_name(certificate.get())) +
           "\n  issuer:  " + nameText(X509_get_issuer_name(certificate.get())) +
           "\n  serial:  " + serialText(X509_get0_serialNumber(certificate.get())) +
           "\n  valid:   " + timeText(X509_get0_notBefore(certificate.get())) + " to " +
           timeText(X509_get0_notAfter(certificate.get())) +
           "\n  SHA-256: " + fingerprint(certificate) + '\n';
}

} // namespace Security
