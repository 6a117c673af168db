# Steps that ./demo, ./check and .ci/run share; sourced by them, from the top of the tree.

set -euo pipefail
export LC_ALL=C.UTF-8
jobs=$(nproc)
# Whoever has a compiler cache already keeps it; else nothing is written outside the build folder.
if [[ ! ${CCACHE_DIR-} ]]; then
    CCACHE_DIR=$(ccache --get-config cache_dir 2>/dev/null) && [[ -d $CCACHE_DIR ]] ||
        CCACHE_DIR=$PWD/build/ccache
fi
export CCACHE_DIR
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$PWD}
mkdir -p build

heading() {
    printf '\n== %s\n' "$*"
}

# The packages of the given groups of cmake/debian-packages.txt.
packages_of() {
    local name group _
    while read -r name group _; do
        [[ " $* " != *" $group "* ]] || echo "$name"
    done < <(grep -v '^#' cmake/debian-packages.txt)
}

# Those of them that are not installed.
missing_packages() {
    local name
    while read -r name; do
        dpkg-query -W -f '${db:Status-Status}\n' "$name" 2>/dev/null | grep -qx installed ||
            echo "$name"
    done < <(packages_of "$@")
}

# Installs what is missing. Without the right to do so it says how, and the run ends.
install_packages() {
    local missing
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]})) || return 0
    if ((EUID != 0)); then
        printf '%s: these packages are missing; install them first, as root:\n' "$0"
        printf '  apt-get install --no-install-recommends %s\n' "${missing[*]}"
        exit 1
    fi >&2
    heading "installing ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -q
    apt-get install -q -y --no-install-recommends "${missing[@]}" </dev/null
}

# Configures a preset. What CMake says is shown when it fails.
configure() {
    local log
    heading "configuring $1"
    log=build/configure-$1.log
    if ! cmake --preset "$@" >"$log" 2>&1; then
        cat "$log"
        return 1
    fi
}

# Builds targets of a preset, all of them without a name: build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    heading "building $preset${*:+: $*}"
    cmake --build --preset "$preset" --parallel "$jobs" ${*:+--target "$@"}
}

# Runs the tests of a preset, then names those that were skipped. The last line is ctest's own.
run_tests() {
    local log result=0
    heading "testing $1"
    log=build/$1/ctest.log
    ctest --test-dir "build/$1" --output-on-failure -j"$jobs" </dev/null 2>&1 | tee "$log" || result=1
    printf '\nSkipped tests: %s\n' "$(skipped_tests "$log")"
    closing_line "$log"
    return "$result"
}

# All of the above for one preset.
build_and_test() {
    configure "$1"
    build "$1"
    run_tests "$1"
}

skipped_tests() {
    local names
    mapfile -t names < <(sed -n 's/^[[:blank:]]*[0-9]* - \(.*\) (\(Skipped\|Disabled\|Not Run\))$/\1/p' "$1")
    if ((${#names[@]})); then
        echo "${#names[@]} (${names[*]})"
    else
        echo none
    fi
}

closing_line() {
    grep '% tests passed, ' "$1" | tail -n 1
}
