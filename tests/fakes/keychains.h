#pragma once

#include "platform/keychain/status.h"
#include "platform/keychains.h"
#include "platform/replaceable.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace KxTest {

/// Keychains that exist only here. They are in force while this lives.
class FakeKeychains : public Korvex::Keychains {
public:
    /// The keychains by their paths, with their passwords.
    std::map<std::string, std::string> passwords;
    /// Statuses that calls fail with, whatever the keychain is.
    int openFails = 0;
    int lockFails = 0;
    /// What was called, in order.
    std::vector<std::string> calls;

    int open(const char* path, std::unique_ptr<Korvex::OpenKeychain>& opened) override {
        calls.push_back(std::string("open ") + path);
        if (openFails != 0)
            return openFails;
        const auto found = passwords.find(path);
        if (found == passwords.end())
            return Korvex::KeychainStatus::NoSuchKeychain;
        opened = std::make_unique<Opened>(*this, found->second);
        return 0;
    }

private:
    class Opened : public Korvex::OpenKeychain {
    public:
        Opened(FakeKeychains& ofAll, std::string withPassword)
            : all(ofAll), password(std::move(withPassword)) {}
        ~Opened() override { all.calls.emplace_back("release"); }

        int unlock(std::string_view text) override {
            all.calls.push_back("unlock " + std::string(text));
            return text == password ? 0 : Korvex::KeychainStatus::WrongPassword;
        }
        int lock() override {
            all.calls.emplace_back("lock");
            return all.lockFails;
        }

    private:
        FakeKeychains& all;
        std::string password;
    };

    Korvex::Replacement<Korvex::Keychains> inForce{*this};
};

} // namespace KxTest
