# Makes the Debian packages and tries them in a system that has nothing but what they ask for. Sourced
# after roots.sh.

packages=$PWD/build/packages/packages

make_packages() {
    configure packages
    build packages
    heading "packing"
    rm -rf "$packages"
    cpack --config build/packages/CPackConfig.cmake -B "$packages" >build/packages/cpack.log || {
        cat build/packages/cpack.log
        return 1
    }
    ls -l "$packages"/*.deb
    heading "lintian"
    lintian --fail-on error --allow-root "$packages"/*.deb
}

try_packages() {
    make_root bare "$(dpkg --print-architecture)"
    heading "trying the packages in a bare system"
    rm -rf "$roots/trial"
    cp -a --reflink=auto "$roots/bare" "$roots/trial"
    in_root trial try_in_root
    rm -rf "$roots/trial"
}

# Run inside the root.
try_in_root() {
    local debs names trial=/tmp/trial
    export DEBIAN_FRONTEND=noninteractive
    mkdir "$trial"
    debs=("$packages"/*.deb)
    mapfile -t names < <(for_each_deb Package)
    heading "what ${names[*]} depend on"
    apt-get update -q >"$trial/apt.log" || true
    apt-get satisfy -q -y --no-install-recommends "$(dependencies_elsewhere)" >>"$trial/apt.log" ||
        { cat "$trial/apt.log"; return 1; }
    all_files >"$trial/before"
    heading "installing"
    dpkg -i "${debs[@]}"
    heading "using"
    (use_packages)
    all_files >"$trial/used"
    heading "removing"
    dpkg -r "${names[@]}"
    all_files >"$trial/removed"
    echo "left, as it is not a part of any package:"
    comm -13 "$trial/before" "$trial/removed"
    [[ -e /Library/Preferences/com.korvex.registry.plist ]]
    dpkg -P "${names[@]}"
    all_files >"$trial/purged"
    if ! diff "$trial/before" "$trial/purged"; then
        echo "the purged packages have changed the system"
        return 1
    fi
    echo "nothing is left once they are purged"
}

for_each_deb() {
    local deb
    for deb in "$packages"/*.deb; do
        dpkg-deb --field "$deb" "$1"
    done
}

# What the packages need beside each other.
dependencies_elsewhere() {
    for_each_deb Depends | sed 's/, */\n/g' | grep -Ev '^kxqts' | sort -u | paste -s -d, -
}

# Everything but what belongs to dpkg, to apt, or to the world outside.
all_files() {
    local other=(/proc /sys /dev /tmp "$PWD" "$CCACHE_DIR" /root/.ccache /var/cache /var/lib/apt /var/log
        /var/lib/dpkg)
    find / \( -false $(printf -- '-o -path %s ' "${other[@]}") \) -prune -o -print | LC_ALL=C sort
}

# A user's first steps, with what is installed alone.
use_packages() {
    unset CCACHE_DIR CCACHE_BASEDIR
    local tree=$PWD client
    set -x
    kx --version
    kxcc --version
    kx reg set HKLM/Software/Trial Greeting hello
    kx reg list HKLM
    test -e /Library/Preferences/com.korvex.registry.plist
    for client in windows_client.c windows_client.cpp client.c client.cpp; do
        "$tree/tests/install/client.sh" /usr kxcc "$tree/tests/install/$client"
    done
    cd /tmp/trial
    kxcc "$tree/examples/textlog.cpp" -o textlog
    kxcc "$tree/examples/askdaemon.cpp" -o askdaemon
    kxqtsd --foreground 2>kxqtsd.log &
    until grep -q serving kxqtsd.log; do
        kill -0 $! || { cat kxqtsd.log; return 1; }
        sleep 0.1
    done
    ./askdaemon --set Software/Trial Answer "from the daemon" || { kill $!; return 1; }
    ./askdaemon --get Software/Trial Answer || { kill $!; return 1; }
    kill $!
    wait $!
}
