#!/bin/bash
# Installs the build tree below a folder: make_prefix.sh BUILD PREFIX [MOVED_TO]
# With a third argument, the prefix is then moved there, and nothing is left where it was.
set -euo pipefail

build=$1 prefix=$2 moved_to=${3-}
rm -rf -- "$prefix" ${moved_to:+"$moved_to"}
cmake --install "$build" --prefix "$prefix"
if [[ $moved_to ]]; then
    mkdir -p -- "$(dirname -- "$moved_to")"
    mv -- "$prefix" "$moved_to"
fi
