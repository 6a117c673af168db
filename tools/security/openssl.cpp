#include "openssl.h"

#include "failure.h"

#include <array>
#include <openssl/err.h>

namespace Security {

Bio readerOf(const std::string& text) {
    Bio stream(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    requireCrypto(stream != nullptr);
    return stream;
}

Bio writer() {
    Bio stream(BIO_new(BIO_s_mem()));
    requireCrypto(stream != nullptr);
    return stream;
}

std::string writtenTo(const Bio& stream) {
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(stream.get(), &bytes);
    return size > 0 ? std::string(bytes, static_cast<std::size_t>(size)) : std::string();
}

void requireCrypto(bool success) {
    if (success)
        return;
    std::array<char, 256> text{};
    ERR_error_string_n(ERR_get_error(), text.data(), text.size());
    throw Failure(std::string("the cryptographic library failed: ") + text.data());
}

} // namespace Security
