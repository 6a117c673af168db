#!/bin/bash
# Does what the README tells a newcomer to do: readme.sh PREFIX README
set -euo pipefail

prefix=$1 readme=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/kxqts readme.XXXXXX")
trap 'rm -rf -- "$work"' EXIT

sed -n '/^```c$/,/^```$/{/^```/d;p}' "$readme" >"$work/hello.c"
cd -- "$work"
for definitions in "" "-DUNICODE -D_UNICODE"; do
    rm -f hello hello.txt
    # shellcheck disable=SC2086
    "$prefix/bin/kxcc" $definitions hello.c -o hello
    [[ $(./hello) == "22 bytes written" ]]
    [[ $(cat hello.txt) == $'Hello from WriteFile\r' ]]
done
echo "The program of the README builds and runs."
