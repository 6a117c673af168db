#!/bin/bash
# What the compiler wrapper promises beyond building a client: kxcc.sh PREFIX
set -euo pipefail

prefix=$1
tests=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")
kxcc=$prefix/bin/kxcc
unset LD_LIBRARY_PATH CC CXX

work=$(mktemp -d "${TMPDIR:-/tmp}/kxqts kxcc.XXXXXX")
trap 'rm -rf -- "$work"' EXIT
cd -- "$work"

fail() {
    echo "failed: $*"
    exit 1
}

needs_qt() { [[ $(readelf -d "$1") =~ NEEDED.*libQt6 ]]; }

cat >main.c <<'SOURCE'
#include <KxQts/windows.h>
extern int shared_answer(void);
int main(void) { return shared_answer() == 42 && !CloseHandle(0) ? 0 : 1; }
SOURCE
echo 'int shared_answer(void) { return 42; }' >answer.c
echo 'auto answer() { return 42; } extern "C" int shared_answer() { return answer(); }' >answer.cpp
cat >"a blank.cpp" <<'SOURCE'
#include <KxQts/KxQts.h>
#if __cplusplus < 202002L
#error "C++20 is the default"
#endif
int main() { return QStringLiteral("x").size() == 1 && !CloseHandle(nullptr) ? 0 : 1; }
SOURCE
cp main.c "a blank.c"

echo "== help and version"
[[ $("$kxcc" --help) == "Usage: kxcc"* ]] || fail "--help"
[[ $("$kxcc" --version) == "kxcc "[0-9]*.[0-9]* ]] || fail "--version"
! "$kxcc" >/dev/null 2>&1 || fail "no argument is an error"

echo "== several sources, blanks in names"
"$kxcc" main.c answer.c && ./a.out || fail "two sources in C, and no -o"
! needs_qt a.out || fail "a program in C is bound to Qt"
"$kxcc" "a blank.c" answer.c -o "a program" && "./a program" || fail "blanks, C"
"$kxcc" "a blank.cpp" -o "a program" && "./a program" || fail "blanks, C++"
needs_qt "a program" || fail "a program that uses Qt is not bound to it"

echo "== both languages in one call"
"$kxcc" -std=c99 -Werror -Wall main.c answer.cpp -o mixed && ./mixed || fail "C and C++"
"$kxcc" -std=c++20 -Werror -Wall answer.cpp main.c -o mixed && ./mixed || fail "C++ and C"
! needs_qt mixed || fail "a program without Qt is bound to it"
! "$kxcc" -c main.c answer.cpp -o one.o 2>/dev/null || fail "one output for two objects"

echo "== compiling and linking apart"
"$kxcc" -c main.c && "$kxcc" -c answer.cpp -o "an answer.o" || fail "-c"
"$kxcc" main.o "an answer.o" -o apart && ./apart || fail "objects"
"$kxcc" main.c "an answer.o" -o apart && ./apart || fail "a source and an object"
"$kxcc" -c main.c answer.cpp && "$kxcc" main.o answer.o -o apart && ./apart || fail "-c, both languages"
ar rc libanswer.a answer.o
"$kxcc" main.c -L. -lanswer -lstdc++ -o apart && ./apart || fail "a library of the client's"

echo "== language and standard"
cp answer.cpp answer.txt
"$kxcc" -x c++ -c answer.txt -o answer.o || fail "-x c++"
"$kxcc" -x c++ answer.txt -x c main.c -o told && ./told || fail "-x c++ and -x c"
"$kxcc" -x c main.c answer.c -o told && ./told || fail "-x c"
echo 'int main() { return __cplusplus == 201703L ? 0 : 1; }' >standard.cpp
"$kxcc" -std=c++17 standard.cpp -o standard && ./standard || fail "a standard of one's own"
"$kxcc" -E main.c | grep CloseHandle >seen || fail "-E"

echo "== flags for other build systems"
eval "cc $("$kxcc" --cflags) main.c answer.c -o plain $("$kxcc" --libs)" && ./plain || fail "--cflags"
eval "c++ $("$kxcc" --cxxflags) 'a blank.cpp' -o plain $("$kxcc" --libs)" && ./plain ||
    fail "--cxxflags"

echo "== reached through links"
mkdir -p links/more
ln -s "$kxcc" links/kxcc
ln -s ../kxcc links/more/kxcc
links/more/kxcc main.c answer.c -o linked && ./linked || fail "a link to a link"
PATH=$PWD/links:$PATH
kxcc main.c answer.c -o linked && ./linked || fail "found in PATH"

echo "== other compilers"
printf '#!/bin/bash\necho C >>used\nexec cc "$@"\n' >"my-cc"
printf '#!/bin/bash\necho "C++ $1" >>used\nshift\nexec c++ "$@"\n' >"my-c++"
chmod +x my-cc my-c++
CC=./my-cc CXX="./my-c++ option" "$kxcc" main.c answer.cpp -o other && ./other || fail "CC and CXX"
[[ $(cat used) == $'C\nC++ option\nC++ option' ]] || fail "who was called: $(cat used)"

echo "== a library in the manner of a DLL, loaded at run time"
cat >plugin.cpp <<'SOURCE'
#include <windows.h>
#include <tchar.h>
#include <stdio.h>
extern "C" __declspec(dllexport) int WINAPI PluginRun(LPCTSTR name, LPTSTR text, int size) {
    return _tprintf(_T("%s\n"), name) < 0 ? -1 : _sntprintf(text, size, _T("<%s>"), name);
}
BOOL APIENTRY DllMain(HMODULE, DWORD reason, LPVOID) { return reason <= DLL_THREAD_DETACH; }
SOURCE
cat >host.cpp <<'SOURCE'
#include <KxQts/KxQts.h>
#include <windows.h>
#include <tchar.h>
typedef int(WINAPI* PLUGINRUN)(LPCTSTR, LPTSTR, int);
int main(int, char** argv) {
    HMODULE module = loadLibrary(argv[1]);
    const auto run = module ? (PLUGINRUN)(void*)GetProcAddress(module, "PluginRun") : nullptr;
    TCHAR text[20] = {};
    return run && run(_T("x"), text, 20) == 3 && text[1] == _T('x') && FreeLibrary(module) ? 0 : 1;
}
SOURCE
for definitions in "" "-DUNICODE -D_UNICODE"; do
    # shellcheck disable=SC2086
    "$kxcc" $definitions -Wall -Wextra -Werror -shared plugin.cpp -o plugin.so || fail "-shared"
    # shellcheck disable=SC2086
    "$kxcc" $definitions -Wall -Wextra -Werror host.cpp -o host || fail "who loads it"
    [[ $(./host "$PWD/plugin.so") == x ]] || fail "the library is called"
done

echo "== failures are told"
! "$kxcc" -c missing.c 2>/dev/null || fail "a missing source"
echo 'int main(' >broken.c
! "$kxcc" broken.c answer.cpp -o broken 2>/dev/null || fail "a broken source among others"

echo "== a client with functions of the library's names"
"$kxcc" -rdynamic "$tests/client_defines.cpp" -o defines && ./defines || fail "names of its own"
