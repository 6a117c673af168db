#!/bin/bash
# Builds the library as a part of another project: subdirectory.sh SOURCE BUILD CMAKE_OPTION...
set -euo pipefail

source=$1 build=$2
shift 2
tests=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")
unset LD_LIBRARY_PATH

rm -rf -- "$build"
cmake -G Ninja -S "$tests/subdirectory" -B "$build" -DKXQTS_SOURCE="$source" \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON "$@"

commands=$(grep '"command"' "$build/compile_commands.json" | grep kxqts_objects)
if grep -e '-Werror' <<<"$commands"; then
    echo "the library's warnings are errors in a project that has not asked for it"
    exit 1
fi
if ninja -C "$build" -t targets all | grep -E '^(kxqts/(tests|tools|bench)/|test_|test:)'; then
    echo "the library's tests are built in a project that has not asked for them"
    exit 1
fi

# What is built is what the compiler cache knows already.
cmake -DKXQTS_WERROR=ON "$build" >/dev/null
cmake --build "$build"
cd -- "$build"
./client_c
./client_cpp
