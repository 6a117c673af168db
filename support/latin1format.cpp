#include "support/latin1format.h"

#include <QString>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Korvex {

namespace {

constexpr int unspecified = -1;
// More would only fill memory, and Qt does not survive it when there is too little.
constexpr int largestNumber = 65535; // of a width or precision
constexpr std::string_view flagLetters = "#0- +'";

/// An argument list that can be handed from function to function.
struct Arguments {
    explicit Arguments(va_list from) { va_copy(list, from); }
    ~Arguments() { va_end(list); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    va_list list;
};

// The largest integers have no length of their own here.
static_assert(sizeof(std::intmax_t) == sizeof(long long));

enum class Length { None, Char, Short, Long, LongLong, LongDouble, Size, PtrDiff };

/// What stands between a percent sign and the letter of a conversion, and that letter.
struct Conversion {
    std::string_view flags;
    int width = unspecified;
    int precision = unspecified;
    Length length = Length::None;
    char letter = '\0';
};

/// A conversion written out again, for arguments that are widened to the length given.
class Specification {
public:
    Specification(const Conversion& conversion, std::string_view length) {
        append("%");
        for (const char flag : flagLetters) {
            if (conversion.flags.find(flag) != std::string_view::npos)
                append({&flag, 1});
        }
        if (conversion.width != unspecified)
            append(conversion.width);
        if (conversion.precision != unspecified) {
            append(".");
            append(conversion.precision);
        }
        append(length);
        append({&conversion.letter, 1});
    }

    [[nodiscard]] const char* text() const { return characters.data(); }

private:
    void append(std::string_view part) { end = std::ranges::copy(part, end).out; }
    void append(int number) {
        end = std::to_chars(end, characters.data() + characters.size(), number).ptr;
    }

    // Room for all flags once, two numbers of 10 digits and the rest.
    std::array<char, 40> characters{};
    char* end = characters.data();
};

class Formatter {
public:
    Formatter(const char* format, va_list args) : next(format), arguments(args) {}

    QByteArray run();

private:
    [[nodiscard]] Conversion parse();
    [[nodiscard]] int parseNumber();
    [[nodiscard]] Length parseLength();
    [[nodiscard]] bool skip(std::string_view text);

    [[nodiscard]] bool convert(const Conversion& conversion);
    void convertSigned(const Conversion& conversion);
    void convertUnsigned(const Conversion& conversion);
    void convertFloating(const Conversion& conversion);
    void convertText(const Conversion& conversion);
    void convertWideText(const Conversion& conversion);
    void appendPadded(const Conversion& conversion, QByteArrayView text);

    template <class T>
    T argument() {
        return va_arg(arguments.list, T);
    }

    template <class T>
    void appendByQt(const Conversion& conversion, std::string_view length, T value) {
        const Specification specification(conversion, length);
        result += QString::asprintf(specification.text(), value).toLatin1();
    }

    const char* next;
    Arguments arguments;
    QByteArray result;
};

QByteArray Formatter::run() {
    while (const char* percent = std::strchr(next, '%')) {
        result.append(next, percent - next);
        next = percent + 1;
        if (skip("%")) {
            result.append('%');
            continue;
        }
        // What is no conversion, or only the beginning of one, stands for itself.
        if (convert(parse()))
            ++next;
        else
            result.append(percent, next - percent);
    }
    return result.append(next);
}

/// Reads a conversion; its letter is where reading goes on.
Conversion Formatter::parse() {
    Conversion conversion;
    conversion.flags = {next, std::strspn(next, flagLetters.data())};
    next += conversion.flags.size();
    conversion.width = parseNumber();
    if (skip("."))
        conversion.precision = *next == '*' ? parseNumber() : std::max(parseNumber(), 0);
    conversion.length = parseLength();
    conversion.letter = *next;
    return conversion;
}

bool Formatter::skip(std::string_view text) {
    const bool found = std::strncmp(next, text.data(), text.size()) == 0;
    next += found ? text.size() : 0;
    return found;
}

/// A number that is written out or is the next argument. None, and a negative one, is unspecified.
int Formatter::parseNumber() {
    if (skip("*"))
        return std::clamp(argument<int>(), unspecified, largestNumber);
    const std::size_t digits = std::strspn(next, "0123456789");
    int number = digits > 0 ? largestNumber : unspecified;
    std::from_chars(next, next + digits, number);
    next += digits;
    return std::min(number, largestNumber);
}

Length Formatter::parseLength() {
    struct Modifier {
        std::string_view text;
        Length length;
    };
    static constexpr std::array<Modifier, 10> modifiers{{{"hh", Length::Char},
                                                         {"h", Length::Short},
                                                         {"ll", Length::LongLong},
                                                         {"l", Length::Long},
                                                         {"q", Length::LongLong},
                                                         {"L", Length::LongDouble},
                                                         {"j", Length::LongLong},
                                                         {"z", Length::Size},
                                                         {"Z", Length::Size},
                                                         {"t", Length::PtrDiff}}};
    for (const Modifier& modifier : modifiers) {
        if (skip(modifier.text))
            return modifier.length;
    }
    return Length::None;
}

/// \return False for a letter that stands for no conversion.
bool Formatter::convert(const Conversion& conversion) {
    switch (conversion.letter) {
    case 'd':
    case 'i':
        convertSigned(conversion);
        return true;
    case 'o':
    case 'u':
    case 'x':
    case 'X':
        convertUnsigned(conversion);
        return true;
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
        convertFloating(conversion);
        return true;
    case 'c':
        appendByQt(conversion, conversion.length == Length::Long ? "l" : "", argument<int>());
        return true;
    case 's':
        convertText(conversion);
        return true;
    case 'p':
        appendByQt(conversion, "", argument<void*>());
        return true;
    case 'n':
        // Taken, but nothing is stored there: text from outside may end up in a title.
        (void)argument<void*>();
        return true;
    default:
        return false;
    }
}

void Formatter::convertSigned(const Conversion& conversion) {
    switch (conversion.length) {
    case Length::None:
    case Length::Char:
    case Length::Short:
        return appendByQt(conversion, "", argument<int>());
    case Length::Long:
        return appendByQt(conversion, "l", argument<long>());
    case Length::Size:
    case Length::PtrDiff:
        return appendByQt(conversion, "ll", static_cast<long long>(argument<std::ptrdiff_t>()));
    case Length::LongLong:
    case Length::LongDouble:
        return appendByQt(conversion, "ll", argument<long long>());
    }
}

void Formatter::convertUnsigned(const Conversion& conversion) {
    switch (conversion.length) {
    case Length::None:
    case Length::Char:
    case Length::Short:
        return appendByQt(conversion, "", argument<unsigned>());
    case Length::Long:
        return appendByQt(conversion, "l", argument<unsigned long>());
    case Length::Size:
    case Length::PtrDiff:
        return appendByQt(conversion, "ll",
                          static_cast<unsigned long long>(argument<std::size_t>()));
    case Length::LongLong:
    case Length::LongDouble:
        return appendByQt(conversion, "ll", argument<unsigned long long>());
    }
}

void Formatter::convertFloating(const Conversion& conversion) {
    if (conversion.length == Length::LongDouble)
        appendByQt(conversion, "L", argument<long double>());
    else
        appendByQt(conversion, "", argument<double>());
}

void Formatter::convertText(const Conversion& conversion) {
    if (conversion.length == Length::Long)
        return convertWideText(conversion);
    const char* text = argument<const char*>();
    if (!text)
        text = "";
    // With a precision the text need not end with a zero.
    const std::size_t length = conversion.precision == unspecified
                                   ? std::strlen(text)
                                   : strnlen(text, static_cast<std::size_t>(conversion.precision));
    appendPadded(conversion, {text, static_cast<qsizetype>(length)});
}

void Formatter::convertWideText(const Conversion& conversion) {
    const char16_t* text = argument<const char16_t*>();
    qsizetype length = 0;
    while (text && length != conversion.precision && text[length] != u'\0')
        ++length;
    appendPadded(conversion, QStringView(text, length).toLatin1());
}

void Formatter::appendPadded(const Conversion& conversion, QByteArrayView text) {
    const qsizetype padding = std::max<qsizetype>(conversion.width - text.size(), 0);
    const bool left = conversion.flags.find('-') != std::string_view::npos;
    result.append(left ? 0 : padding, ' ').append(text).append(left ? padding : 0, ' ');
}

} // namespace

QByteArray formatLatin1(const char* format, va_list args) {
    return Formatter(format, args).run();
}

} // namespace Korvex
