#include "registrystore.h"

#include <KxQts/registry/prefs.h>

#include <QByteArray>
#include <QString>

#include <cstring>
#include <memory>
#include <optional>

namespace Kxqtsd {

namespace {

using namespace Korvex::DaemonRegistry;
using Korvex::WPrefs;

constexpr int lastValueKind = 4; // arrays, dictionaries and what is unknown are no values

/// What a request asks for, in terms of the store.
struct Request {
    unsigned command = 0;
    unsigned valueType = 0;
    QString key;
    QString name;
    QByteArray payload;
};

/// A response under way.
struct Response {
    Status status = Done;
    ResponseBody body{};
    QByteArray payload;
};

/// The text in a field; nothing when it has no end or is no UTF-8.
template <std::size_t size>
std::optional<QString> textIn(const char (&field)[size]) {
    const std::size_t length = strnlen(field, size);
    const QString text = QString::fromUtf8(field, static_cast<qsizetype>(length));
    if (length == size || text.contains(QChar::ReplacementCharacter))
        return std::nullopt;
    return text;
}

std::optional<Request> read(const _D_REG_REQUEST& record, const std::string& payload) {
    RequestBody body{};
    std::memcpy(&body, record.body, sizeof body);
    const auto key = textIn(body.key);
    const auto name = textIn(body.name);
    if (!key || key->isEmpty() || !name)
        return std::nullopt;
    return Request{record.command, body.valueType, *key, *name, QByteArray::fromStdString(payload)};
}

Response readValue(WPrefs& key, const Request& request) {
    Response response;
    if (!key.queryValue(request.name, &response.body.valueType, response.payload))
        response.status = NoSuchValue;
    return response;
}

Response setValue(WPrefs& key, const Request& request) {
    return {
        key.setValue(request.name, request.valueType, request.payload) ? Done : NotStored, {}, {}};
}

Response deleteValue(WPrefs& key, const Request& request) {
    return {key.deleteValue(request.name) ? Done : NoSuchValue, {}, {}};
}

Response enumerateValues(WPrefs& key) {
    Response response;
    QString name;
    int kind = 0;
    for (unsigned i = 0; key.enumKey(i, name, &kind); ++i) {
        if (kind == 0 || kind > lastValueKind)
            continue;
        ++response.body.count;
        response.payload += name.toUtf8() + '\0';
    }
    return response;
}

/// Opens a key of the machine-wide store for a request. Only a value that is to be stored needs
/// none that exists.
std::unique_ptr<WPrefs, bool (*)(void*)> open(const Request& request) {
    return {WPrefs::initKey(QString(), request.key, request.command != SetValue, nullptr),
            [](void* key) { return WPrefs::disposeKey(key); }};
}

Response serve(const Request& request) {
    if (request.command < ReadValue || request.command > EnumerateValues)
        return {BadRequest, {}, {}};
    const auto key = open(request);
    if (!key)
        return {request.command == SetValue ? NotStored : NoSuchValue, {}, {}};
    switch (request.command) {
    case ReadValue:
        return readValue(*key, request);
    case SetValue:
        return setValue(*key, request);
    case DeleteValue:
        return deleteValue(*key, request);
    default:
        return enumerateValues(*key);
    }
}

std::string bytesOf(unsigned command, const Response& response) {
    _D_REG_RESPONSE record{};
    record.command = command;
    std::memcpy(record.body, &response.body, sizeof response.body);
    record.status = response.status;
    record.payloadLength = static_cast<int>(response.payload.size());
    std::string bytes(reinterpret_cast<const char*>(&record), sizeof record);
    return bytes.append(response.payload.constData(),
                        static_cast<std::size_t>(response.payload.size()));
}

} // namespace

std::string answerRegistryRequest(const _D_REG_REQUEST& record, const std::string& payload) {
    const std::optional<Request> request = read(record, payload);
    Response response = request ? serve(*request) : Response{BadRequest, {}, {}};
    if (response.payload.size() > longestPayload)
        response.status = TooMuchData;
    if (response.status != Done)
        response.payload.clear();
    return bytesOf(record.command, response);
}

std::string registryResponse(unsigned command, unsigned status) {
    return bytesOf(command, {static_cast<Status>(status), {}, {}});
}

} // namespace Kxqtsd
