#pragma once

#include <memory>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <string>

/// Objects of libcrypto, freed with their holder.
namespace Security {

template <auto Function>
struct FreedBy {
    template <class T>
    void operator()(T* object) const {
        Function(object);
    }
};

using Bio = std::unique_ptr<BIO, FreedBy<BIO_free>>;
using Certificate = std::unique_ptr<X509, FreedBy<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, FreedBy<EVP_PKEY_free>>;

/// A stream that reads a text, which must outlive it.
[[nodiscard]] Bio readerOf(const std::string& text);

/// A stream that keeps what is written.
[[nodiscard]] Bio writer();
[[nodiscard]] std::string writtenTo(const Bio& stream);

/// Throws a \ref Failure unless libcrypto says success.
void requireCrypto(bool success);

} // namespace Security
