// The preference store, the registry and the login items. Exported names tell what calls take; here
// is also what they give.

#include "calls.h"

#include <KxQts/KxQts.h>

namespace {

using namespace Korvex;

static_assert(is<bool (WPrefs::*)(const QString&, const QString*, bool)>(&WPrefs::initialize));
static_assert(has<WPrefs* (*)(const QString&, const QString&, bool, unsigned*)>(&WPrefs::initKey));
static_assert(has<WPrefs* (*)(WPrefs*, const QString&, bool, bool, unsigned*)>(&WPrefs::initKey));
static_assert(std::is_constructible_v<WPrefs, const QString*, const QString*, bool>);
static_assert(is<WPrefs* (*)(void*)>(&WPrefs::getExistingKey));
static_assert(is<bool (*)(void*)>(&WPrefs::disposeKey));
static_assert(is<const void* (WPrefs::*)(const QString&, unsigned long, const __CFString*)>(
    &WPrefs::getObjectOfType));
static_assert(
    is<bool (WPrefs::*)(const QString&, const void*, const __CFString*)>(&WPrefs::putObject));
static_assert(
    is<bool (WPrefs::*)(const QString&, const void*, const __CFString*)>(&WPrefs::setSyncProperty));
static_assert(
    is<const void* (WPrefs::*)(const QString&, const __CFString*)>(&WPrefs::getSyncProperty));
static_assert(is<bool (WPrefs::*)(const QString&, unsigned*, QByteArray&)>(&WPrefs::queryValue));
static_assert(is<bool (WPrefs::*)(const QString&, unsigned, const QByteArray&)>(&WPrefs::setValue));
static_assert(is<bool (WPrefs::*)(unsigned, QString&, int*)>(&WPrefs::enumKey));
static_assert(is<bool (WPrefs::*)(const QString&)>(&WPrefs::deleteKey));
static_assert(is<bool (WPrefs::*)(const QString&)>(&WPrefs::deleteValue));

static_assert(
    is<bool (WPrefs::*)(const QString&, const __CFString*, QString&)>(&WPrefs::getProfileString));
static_assert(
    is<bool (WPrefs::*)(const QString&, const __CFString*, int&)>(&WPrefs::getProfileInt));
static_assert(
    is<bool (WPrefs::*)(const QString&, const __CFString*, bool&)>(&WPrefs::getProfileBool));
static_assert(is<bool (WPrefs::*)(const QString&, const __CFString*, QByteArray&)>(
    &WPrefs::getProfileBinary));
static_assert(is<bool (WPrefs::*)(const QString&, const __CFString*, const QString*)>(
    &WPrefs::setProfileString));
static_assert(
    is<bool (WPrefs::*)(const QString&, const __CFString*, int*)>(&WPrefs::setProfileInt));
static_assert(
    is<bool (WPrefs::*)(const QString&, const __CFString*, bool*)>(&WPrefs::setProfileBool));
static_assert(is<bool (WPrefs::*)(const QString&, const __CFString*, const QByteArray*)>(
    &WPrefs::setProfileBinary));

static_assert(is<bool (*)(bool, QString&)>(&getPreferencesFilePath));
static_assert(is<const __CFString* (*)(const QString&)>(&createCFString));
static_assert(is<const void* (*)(const __CFDictionary*, const QString&, unsigned long)>(
    &getCFDictionaryKeyValue));
static_assert(
    is<const void* (*)(const __CFArray*, const QString&, unsigned long)>(&getCFArrayKeyValue));
static_assert(is<bool (*)(__CFDictionary*, const QString&, const void*)>(&setCFDictionaryKeyValue));

static_assert(is<unsigned (*)(const QString&, void*, const QString&, unsigned, unsigned, void**)>(
    &regOpenKeyEx));
static_assert(
    is<unsigned (*)(const QString&, void*, const QString&, unsigned, const QString&, unsigned,
                    unsigned, _SECURITY_ATTRIBUTES*, void**, unsigned*)>(&regCreateKeyEx));
static_assert(
    is<unsigned (*)(void*, const QString&, unsigned*, unsigned*, QByteArray&)>(&regQueryValueEx));
static_assert(
    is<unsigned (*)(void*, const QString&, unsigned, unsigned, const QByteArray&)>(&regSetValueEx));
static_assert(is<unsigned (*)(void*, const QString&)>(&regDeleteValue));
static_assert(is<unsigned (*)(const QString&, void*, const QString&)>(&regDeleteKey));
static_assert(is<unsigned (*)(const QString&, void*, unsigned, QString&)>(&regEnumKey));
static_assert(is<unsigned (*)(void*)>(&RegCloseKey));

static_assert(is<bool (*)(const QString&, const QString&, bool&, AutoLaunchedItemAction,
                          const unsigned char*, unsigned long, const unsigned char*, unsigned long,
                          bool)>(&checkAddRemoveLoginItem));
static_assert(is<bool (*)(const QString&, const QString&, AutoLaunchedItemAction,
                          const unsigned char*, unsigned long, const unsigned char*,
                          unsigned long)>(&addRemoveLionGlobalLoginItem));
static_assert(is<bool (*)(const QString&)>(&removeLoginItem));

} // namespace
