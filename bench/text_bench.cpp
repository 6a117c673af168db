// Text conversions beside the least that they can be made of.

#include "ratios.h"

#include <KxQts/support/text.h>

#include <array>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iconv.h>
#include <string>

namespace {

std::string asciiText(std::size_t length) {
    std::string text(length, 'x');
    for (std::size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>('a' + i % 26);
    return text;
}

/// German text of a length in bytes, an eighth of its letters beyond ASCII.
std::string utf8Text(std::size_t length) {
    std::string text;
    while (text.size() + 9 <= length)
        text += "Gr\xC3\xB6\xC3\x9F"
                "en ";
    return text;
}

void FloorWiden(benchmark::State& state) {
    const std::string text = asciiText(static_cast<std::size_t>(state.range(0)));
    std::array<wchar_t, 260> out{};
    for (auto _ : state) {
        const char* bytes = text.data();
        benchmark::DoNotOptimize(bytes);
        for (std::size_t i = 0; i < text.size(); ++i)
            out[i] = static_cast<unsigned char>(bytes[i]);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(FloorWiden)->Arg(200);

void MultiByteToWide(benchmark::State& state) {
    const std::string text = asciiText(static_cast<std::size_t>(state.range(0)));
    std::array<wchar_t, 260> out{};
    for (auto _ : state)
        benchmark::DoNotOptimize(
            MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, out.data(), int(out.size())));
}
BENCHMARK(MultiByteToWide)->Arg(16)->Arg(200);

void WideToMultiByte(benchmark::State& state) {
    const std::string text = asciiText(static_cast<std::size_t>(state.range(0)));
    const std::wstring wide(text.begin(), text.end());
    std::array<char, 40> out{};
    for (auto _ : state)
        benchmark::DoNotOptimize(WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, out.data(),
                                                     int(out.size()), nullptr, nullptr));
}
BENCHMARK(WideToMultiByte)->Arg(16);

void FloorIconvToWide(benchmark::State& state) {
    const std::string text = utf8Text(static_cast<std::size_t>(state.range(0)));
    std::array<wchar_t, 260> out{};
    iconv_t converter = iconv_open("WCHAR_T", "UTF-8");
    for (auto _ : state) {
        char* from = const_cast<char*>(text.data());
        std::size_t left = text.size();
        char* to = reinterpret_cast<char*>(out.data());
        std::size_t room = sizeof out;
        benchmark::DoNotOptimize(iconv(converter, &from, &left, &to, &room));
    }
    iconv_close(converter);
}
BENCHMARK(FloorIconvToWide)->Arg(30)->Arg(200);

void Utf8ToWide(benchmark::State& state) {
    const std::string text = utf8Text(static_cast<std::size_t>(state.range(0)));
    std::array<wchar_t, 260> out{};
    for (auto _ : state)
        benchmark::DoNotOptimize(
            MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, out.data(), int(out.size())));
}
BENCHMARK(Utf8ToWide)->Arg(30)->Arg(200);

const wchar_t* const wideText = L"Größen und Maße für Öl";

void FloorIconvToBytes(benchmark::State& state) {
    std::array<char, 31> out{};
    iconv_t converter = iconv_open("UTF-8", "WCHAR_T");
    for (auto _ : state) {
        char* from = const_cast<char*>(reinterpret_cast<const char*>(wideText));
        std::size_t left = (std::wcslen(wideText) + 1) * sizeof(wchar_t);
        char* to = out.data();
        std::size_t room = out.size();
        benchmark::DoNotOptimize(iconv(converter, &from, &left, &to, &room));
    }
    iconv_close(converter);
}
BENCHMARK(FloorIconvToBytes);

void WideToUtf8(benchmark::State& state) {
    std::array<char, 40> out{};
    for (auto _ : state)
        benchmark::DoNotOptimize(WideCharToMultiByte(CP_ACP, 0, wideText, -1, out.data(),
                                                     int(out.size()), nullptr, nullptr));
}
BENCHMARK(WideToUtf8);

void FloorSwprintf(benchmark::State& state) {
    std::array<wchar_t, 2048> out{};
    for (auto _ : state)
        benchmark::DoNotOptimize(
            std::swprintf(out.data(), out.size(), L"%ls=%d of %ls", L"value", 42, L"everything"));
}
BENCHMARK(FloorSwprintf);

void FormatWithWideArguments(benchmark::State& state) {
    const QString format = QStringLiteral("%s=%d of %s");
    QString out;
    for (auto _ : state)
        benchmark::DoNotOptimize(formatWithWCharQString(out, format, L"value", 42, L"everything"));
}
BENCHMARK(FormatWithWideArguments);

} // namespace

int main(int argc, char** argv) {
    setenv("LC_ALL", "C.UTF-8", 1); // what these texts are encoded in
    return KxBench::run(argc, argv,
                        {{"MultiByteToWide/200", "FloorWiden/200", 2},
                         {"Utf8ToWide/30", "FloorIconvToWide/30", 1.5},
                         {"Utf8ToWide/200", "FloorIconvToWide/200", 1.5},
                         {"WideToUtf8", "FloorIconvToBytes", 1.5},
                         {"FormatWithWideArguments", "FloorSwprintf", 5}});
}
