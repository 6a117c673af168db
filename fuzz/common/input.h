#pragma once

#include <QString>
#include <QStringDecoder>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace KxFuzz {

/// Takes an input apart, from its beginning on. What is not there any more is zero or empty. Texts
/// end with a zero byte, so that seeds can be read and written by people.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : left(reinterpret_cast<const char*>(data), size) {}

    /// The bytes of a number as they lie in memory.
    template <class Number>
    Number number() {
        Number value{};
        const std::string_view bytes = take(sizeof value);
        std::memcpy(&value, bytes.data(), bytes.size());
        return value;
    }

    /// A number below a limit.
    std::size_t below(std::size_t limit) { return number<std::uint16_t>() % limit; }
    bool flag() { return (number<std::uint8_t>() & 1) != 0; }

    /// Bytes without a zero.
    std::string text() {
        const std::string_view taken = take(left.find('\0'));
        take(1);
        return std::string(taken);
    }
    /// UTF-8, a mark of byte order included, or else Latin-1.
    QString qtText() {
        const QByteArray read = QByteArray::fromStdString(text());
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
        const QString decoded = decoder(read);
        return decoder.hasError() ? QString::fromLatin1(read) : decoded;
    }

    std::string bytes(std::size_t count) { return std::string(take(count)); }
    std::string rest() { return std::string(take(left.size())); }
    [[nodiscard]] bool isEmpty() const { return left.empty(); }

private:
    std::string_view take(std::size_t count) {
        const std::string_view taken = left.substr(0, std::min(count, left.size()));
        left.remove_prefix(taken.size());
        return taken;
    }

    std::string_view left;
};

} // namespace KxFuzz
