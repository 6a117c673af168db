#pragma once

#include "platform/linux/locale.h"

#include <iconv.h>
#include <span>

namespace Korvex {

/// A converter between two encodings. One thread uses it at a time.
class Converter {
public:
    /// \param locale Whose replacements a converter to "...//TRANSLIT" uses; null for none.
    Converter(const char* to, const char* from, const char* locale = nullptr);
    ~Converter();

    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// False when the system does not know one of the encodings. Nothing else may be called then.
    [[nodiscard]] bool isOpen() const;

    /// Converts as much as it can and moves both spans on past what is done.
    /// \return 0, or the number of the error that stopped it: EILSEQ, EINVAL or E2BIG.
    [[nodiscard]] int run(std::span<const char>& input, std::span<char>& room);

    /// Writes what the converter still holds back and the way into its initial state.
    /// \return 0 or E2BIG.
    [[nodiscard]] int finish(std::span<char>& room);

    /// Returns to the initial state and forgets what is held back.
    void reset();

private:
    iconv_t descriptor;
    Locale replacements;
};

} // namespace Korvex
