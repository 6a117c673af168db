/// \file
/// Values of the machine-wide registry through the root daemon, for programs without the right to
/// write it themselves.
///
/// Every function has one session of `CallDaemonRegistrySession` and gives its result: 0, a status
/// of `registryprotocol.h`, or a code of the exchange. Text that does not fit its field gives 22
/// without a session.
#pragma once

#include <KxQts/daemon/registryprotocol.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstring>
#include <memory>

namespace Korvex::DaemonRegistry {

/// One request and what came back.
struct Exchange {
    _D_REG_REQUEST request{};
    _D_REG_RESPONSE response{};
    QByteArray sent;     ///< The payload to send
    QByteArray received; ///< The payload that came back
    QString message;     ///< What went wrong

    /// Fills the request's texts. \return Whether they fit.
    bool fill(Command command, const QString& key, const QString& name, unsigned valueType = 0) {
        RequestBody body{};
        body.valueType = valueType;
        const bool fits = copy(key, body.key, sizeof body.key) &&
                          copy(name, body.name, sizeof body.name) && sent.size() <= longestPayload;
        request.command = command;
        std::memcpy(request.body, &body, sizeof body);
        request.payloadLength = fits ? static_cast<int>(sent.size()) : 0;
        return fits;
    }

    /// Has the session. \param timeout How long the answer is waited for, in seconds.
    int run(unsigned timeout) {
        char* payload = nullptr;
        const int result = CallDaemonRegistrySession(request, response, timeout, payload,
                                                     sent.constData(), &message);
        const std::unique_ptr<char[]> owner(payload);
        if (payload)
            received = QByteArray(payload, response.payloadLength);
        return result;
    }

    /// What the response says beside its payload.
    [[nodiscard]] ResponseBody body() const {
        ResponseBody copied{};
        std::memcpy(&copied, response.body, sizeof copied);
        return copied;
    }

private:
    static bool copy(const QString& text, char* field, std::size_t size) {
        const QByteArray bytes = text.toUtf8();
        const auto length = static_cast<std::size_t>(bytes.size());
        if (length >= size || bytes.contains('\0'))
            return false;
        std::memcpy(field, bytes.constData(), length);
        return true;
    }
};

/// Reads a value. \param type,data Receive what `regQueryValueEx` would give.
inline int readValue(const QString& key, const QString& name, unsigned& type, QByteArray& data,
                     unsigned timeout = 10) {
    Exchange exchange;
    if (!exchange.fill(ReadValue, key, name))
        return BadRequest;
    const int result = exchange.run(timeout);
    if (result == Done) {
        type = exchange.body().valueType;
        data = exchange.received;
    }
    return result;
}

/// Writes a value as `regSetValueEx` does, making its key if need be.
inline int setValue(const QString& key, const QString& name, unsigned type, const QByteArray& data,
                    unsigned timeout = 10) {
    Exchange exchange;
    exchange.sent = data;
    if (!exchange.fill(SetValue, key, name, type))
        return BadRequest;
    return exchange.run(timeout);
}

/// Removes a value.
inline int deleteValue(const QString& key, const QString& name, unsigned timeout = 10) {
    Exchange exchange;
    if (!exchange.fill(DeleteValue, key, name))
        return BadRequest;
    return exchange.run(timeout);
}

/// Tells the names of a key's values, without those of keys below it.
inline int enumerateValues(const QString& key, QStringList& names, unsigned timeout = 10) {
    Exchange exchange;
    if (!exchange.fill(EnumerateValues, key, QString()))
        return BadRequest;
    const int result = exchange.run(timeout);
    if (result == Done) {
        names.clear();
        qsizetype begin = 0;
        for (unsigned i = 0; i < exchange.body().count; ++i) {
            const qsizetype end = exchange.received.indexOf('\0', begin);
            if (end < 0)
                break;
            names.append(QString::fromUtf8(exchange.received.constData() + begin, end - begin));
            begin = end + 1;
        }
    }
    return result;
}

} // namespace Korvex::DaemonRegistry
