/// \file
/// The event log in Qt's types. `RegisterEventSourceA` and its siblings stand on these.
#pragma once

#include <KxQts/export.h>

#include <QByteArray>
#include <QStringList>

/// Gives the handle of the event log. \return 0x5A5A5A50, always.
KXQTS_EXPORT void* registerEventSource();

/// Tells whether an event is well formed: it has strings and data. Its text is composed and
/// delivered nowhere.
/// \param eventLog,type,userSid Ignored.
/// \return False without strings, with `errno` 87, and without data, with `errno` left alone.
KXQTS_EXPORT bool reportEvent(void* eventLog, unsigned short type, unsigned short category,
                              unsigned int eventId, void* userSid, const QStringList& strings,
                              const QByteArray& data);
