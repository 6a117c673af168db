#!/bin/bash
# Builds a client against the installed tree and runs it: client.sh PREFIX WAY SOURCE
# WAY is how the client finds the library: cmake, pkgconfig or kxcc. Every client is built with and
# without UNICODE, and without a single warning. A source whose name begins with windows_ includes
# <windows.h> and its like.
set -euo pipefail

prefix=$1 way=$2 source=$(realpath -- "$3")
tests=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")
strict=(-Wall -Wextra -Wpedantic -Werror)
unset LD_LIBRARY_PATH LIBRARY_PATH CPATH CMAKE_PREFIX_PATH PKG_CONFIG_PATH

work=$(mktemp -d "${TMPDIR:-/tmp}/kxqts client.XXXXXX")
trap 'rm -rf -- "$work"' EXIT
cd -- "$work"
export HOME=$work KXQTS_ROOT=$work

case $source in
*.c) language=C compiler=(cc -std=c99) ;;
*) language=CXX compiler=(c++ -std=c++20 -fPIC) ;;
esac
case $(basename -- "$source") in
windows_*) target=KxQts::Windows module=kxqts-windows ;;
*) target=KxQts::KxQts module=kxqts ;;
esac

build_with_cmake() {
    cmake -G Ninja -S "$tests/cmake" -B build -DCMAKE_PREFIX_PATH="$prefix" \
        -DLANGUAGE="$language" -DSOURCE="$source" -DTARGET="$target" \
        -DCMAKE_${language}_FLAGS="$*" >configure.log 2>&1 || { cat configure.log; exit 1; }
    cmake --build build
    cp build/client client
}

build_with_pkgconfig() {
    local flags
    flags=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs "$module")
    # The module quotes what a shell would split.
    eval "flags=($flags)"
    "${compiler[@]}" "${strict[@]}" "$@" "$source" -o client "${flags[@]}"
}

build_with_kxcc() {
    local standard=()
    [[ $language == CXX ]] || standard=(-std=c99)
    "$prefix/bin/kxcc" "${standard[@]}" "${strict[@]}" "$@" "$source" -o client
}

for definitions in "" "-DUNICODE -D_UNICODE"; do
    echo "== $way, $(basename -- "$source") $definitions"
    rm -rf build client
    # shellcheck disable=SC2086
    "build_with_$way" $definitions
    ldd client >libraries
    found=$(sed -n 's/^[[:blank:]]*libKxQts.so => \(.*\) (0x[0-9a-f]*)$/\1/p' libraries)
    if [[ $(realpath -- "$found") != "$(realpath -- "$prefix")/lib/Korvex/libKxQts.so" ]]; then
        echo "the client runs with '$found', which is not the installed library"
        cat libraries
        exit 1
    fi
    ./client
done
