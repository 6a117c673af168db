#include "certificates.h"
#include "commands.h"
#include "failure.h"
#include "platform/descriptor.h"
#include "platform/keychain/files.h"
#include "platform/keychain/status.h"
#include "platform/keychain/storedkeychain.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace Security {

namespace {

namespace Status = Korvex::KeychainStatus;
using Kind = Korvex::KeychainItem::Kind;

std::vector<Korvex::KeychainItem> itemsOf(const std::string& path) {
    Korvex::StoredKeychain keychain;
    require(keychain.open(path), path);
    require(keychain.verify(), path);
    return keychain.items();
}

void requireSystem(int error, const std::string& path) {
    if (error != 0)
        throw Failure(path + ": " + std::strerror(error));
}

std::string readFile(const std::string& path) {
    const Korvex::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    requireSystem(file.isOpen() ? 0 : errno, path);
    std::string bytes;
    requireSystem(Korvex::WholeFile::read(file.get(), Korvex::KeychainDocument::largestSize, bytes),
                  path);
    return bytes;
}

/// Puts a file in its place as a whole. What is there and is no file stays: a link that somebody
/// has left in a folder that all may write to leads nowhere.
void writeFile(const std::string& path, const std::string& bytes) {
    constexpr mode_t readableByAll = 0644;
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        throw Failure(path + ": this is no file");
    Korvex::WholeFile::Place place;
    requireSystem(place.find(path), path);
    requireSystem(
        Korvex::WholeFile::replace(place.folder.get(), place.name, bytes, {readableByAll}), path);
}

/// Certificates are all that goes in and out of a keychain.
void requireCertificates(const Arguments& arguments) {
    const std::string kind = arguments.has('t') ? arguments.valueOf('t') : "certs";
    if (kind != "certs" && kind != "cert")
        throw UsageError("only certificates can be exported and imported: -t certs");
}

} // namespace

void exportCertificates(const Arguments& arguments) {
    const std::string path = arguments.valueOf('k');
    requireCertificates(arguments);
    arguments.requireNoOperand();
    std::string certificates;
    for (const Korvex::KeychainItem& item : itemsOf(path)) {
        if (item.kind == Kind::Certificate)
            certificates += item.pem;
    }
    require(certificates.empty() ? Status::ItemNotFound : Status::Success, path);
    if (arguments.has('o'))
        writeFile(arguments.valueOf('o'), certificates);
    else
        std::fputs(certificates.c_str(), stdout);
}

void importCertificates(const Arguments& arguments) {
    const std::string file = arguments.operand("file");
    const std::string path = arguments.valueOf('k');
    requireCertificates(arguments);
    const auto certificates = certificatesIn(readFile(file), file);
    require(Korvex::StoredKeychain::add(path, certificates), path);
}

void listItems(const Arguments& arguments) {
    for (const Korvex::KeychainItem& item : itemsOf(arguments.operand("keychain")))
        std::fputs(describe(item).c_str(), stdout);
}

} // namespace Security
