// Converts one text in the locale that it is started in, with the library as clients link it:
//     textprobe widen C3A4      bytes to characters
//     textprobe narrow 20AC     a character to bytes

#include <KxQts/windows.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string bytesFrom(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

template <class Units>
void print(int count, const Units& units) {
    std::printf("%d:", count);
    for (int i = 0; i < count; ++i)
        std::printf(" %x", unsigned(units[std::size_t(i)]));
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return EXIT_FAILURE;
    if (std::string(argv[1]) == "widen") {
        std::array<wchar_t, 261> out{};
        print(MultiByteToWideChar(CP_ACP, 0, bytesFrom(argv[2]).c_str(), -1, out.data(), 261), out);
        return EXIT_SUCCESS;
    }
    const std::wstring text(1, wchar_t(std::stol(argv[2], nullptr, 16)));
    std::array<unsigned char, 32> out{};
    print(WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, reinterpret_cast<char*>(out.data()), 32,
                              nullptr, nullptr),
          out);
    return EXIT_SUCCESS;
}
