// The exchanges with daemons and drivers. Exported names tell what calls take; here is also what
// they give.

#include "calls.h"

#include <KxQts/KxQts.h>

namespace {

using namespace Korvex;

static_assert(std::has_virtual_destructor_v<WDaemonSocket> &&
              std::has_virtual_destructor_v<ZRDaemonSocket> &&
              std::has_virtual_destructor_v<ZRDaemonRegistrySocket>);
static_assert(is<int (WDaemonSocket::*)(unsigned short)>(&WDaemonSocket::init));
static_assert(is<int (WDaemonSocket::*)(unsigned, const unsigned*, unsigned, const unsigned char*,
                                        unsigned)>(&WDaemonSocket::send));
static_assert(
    is<int (WDaemonSocket::*)(wdaemon_response*, unsigned, unsigned)>(&WDaemonSocket::recv));
static_assert(is<void (WDaemonSocket::*)()>(&WDaemonSocket::close));
static_assert(
    is<int (*)(unsigned short, unsigned, unsigned, const unsigned*, unsigned, const unsigned char*,
               unsigned, unsigned char*, unsigned*)>(&daemonSession));

static_assert(is<int (ZRDaemonSocket::*)()>(&ZRDaemonSocket::initSocket));
static_assert(is<int (ZRDaemonSocket::*)(unsigned, const char*, const unsigned*, unsigned)>(
    &ZRDaemonSocket::sendDataToSocket));
static_assert(is<int (ZRDaemonSocket::*)(unsigned*, unsigned)>(&ZRDaemonSocket::getDataFromSocket));
static_assert(is<void (ZRDaemonSocket::*)()>(&ZRDaemonSocket::closeSocket));
static_assert(is<int (*)(unsigned, unsigned, const QString*, const unsigned*, unsigned, QString*)>(
    &CallDaemonSession));

static_assert(is<int (ZRDaemonRegistrySocket::*)()>(&ZRDaemonRegistrySocket::initSocket));
static_assert(is<int (ZRDaemonRegistrySocket::*)(const _D_REG_REQUEST&, const char*)>(
    &ZRDaemonRegistrySocket::sendDataToSocket));
static_assert(is<int (ZRDaemonRegistrySocket::*)(_D_REG_RESPONSE&, unsigned, char*&)>(
    &ZRDaemonRegistrySocket::getDataFromSocket));
static_assert(is<void (ZRDaemonRegistrySocket::*)()>(&ZRDaemonRegistrySocket::closeSocket));
static_assert(is<int (*)(const _D_REG_REQUEST&, _D_REG_RESPONSE&, unsigned, char*&, const char*,
                         QString*)>(&CallDaemonRegistrySession));

static_assert(is<int (*)(const char*, unsigned, int&)>(&KextConnect));
static_assert(is<int (*)(int, unsigned, void*, unsigned*)>(&KextControl));
static_assert(is<int (*)(int, unsigned)>(&KextCommand));
static_assert(is<BOOL (*)(int, unsigned, void*, unsigned, void*, unsigned, unsigned*,
                          _OVERLAPPED*)>(&DeviceIoControl));

} // namespace
