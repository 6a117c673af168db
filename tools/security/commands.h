#pragma once

#include "arguments.h"

#include <span>
#include <string_view>

namespace Security {

/// A subcommand of the program.
struct Command {
    std::string_view name;
    const char* options; ///< The letters of its options
    std::string_view usage;
    std::string_view help;
    void (*run)(const Arguments& arguments);
};

/// All subcommands.
std::span<const Command> commands();

void createKeychain(const Arguments& arguments);
void createRecoveryKeychain(const Arguments& arguments);
void unlockKeychain(const Arguments& arguments);
void lockKeychain(const Arguments& arguments);
void showKeychainInfo(const Arguments& arguments);
void exportCertificates(const Arguments& arguments);
void importCertificates(const Arguments& arguments);
void listItems(const Arguments& arguments);

} // namespace Security
