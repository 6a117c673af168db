# Roots: small Debian systems in folders, in which the tree is built or its packages are tried. Sourced
# after steps.sh. They are made once, from the repositories that apt is configured with, and kept below
# build/roots. Entering one needs the rights of root; what is mounted then is gone with the command.

roots=$PWD/build/roots

# The repositories of this Debian release that apt knows, as lines of a sources.list.
debian_sources() {
    local release
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    apt-get indextargets 'Identifier: Packages' 'Origin: Debian' 'Component: main' \
        --format 'deb $(REPO_URI) $(RELEASE) main' |
        grep -E " $release(-updates|-security)? main\$" | sort -u
}

# make_root NAME ARCHITECTURE [PACKAGE...]: makes build/roots/NAME unless it is there, whole, and with
# the same packages.
make_root() {
    local name=$1 architecture=$2 root=$roots/$1
    shift 2
    [[ ! -e $root.packages || $* != "$(<"$root.packages")" ]] || return 0
    if ((EUID != 0)); then
        echo "$0: making a Debian system needs the rights of root" >&2
        return 1
    fi
    heading "making a Debian system for $architecture in build/roots/$name"
    rm -rf -- "$root" "$root.packages"
    mkdir -p "$roots"
    if ! { bootstrap "$root" "$architecture" && in_root "$name" add_packages "$@"; } \
        >"$root.log" 2>&1; then
        tail -n 30 "$root.log"
        return 1
    fi
    echo "$*" >"$root.packages"
}

bootstrap() {
    local root=$1 sources release mirror proxy
    [[ $(debian_sources) ]] || apt-get update -q
    sources=$(debian_sources)
    read -r _ mirror release _ < <(grep -Ev -- '-(updates|security) main$' <<<"$sources")
    eval "$(apt-config shell proxy Acquire::http::Proxy)"
    ${proxy:+env http_proxy="$proxy"} unshare --mount \
        debootstrap --arch="$2" --variant=minbase "$release" "$root" "$mirror"
    # It can be made again, so it need not survive a loss of power, nor tell about itself.
    printf '%s\n' force-unsafe-io path-exclude={/usr/share/doc,/usr/share/man}/'*' \
        >"$root/etc/dpkg/dpkg.cfg.d/root"
    apt-config dump Acquire >"$root/etc/apt/apt.conf.d/90acquire"
    printf '%s\n' "$sources" >"$root/etc/apt/sources.list"
}

# Run inside a root.
add_packages() {
    export DEBIAN_FRONTEND=noninteractive
    # A mirror that is just being updated may lack an index; what is left may do.
    apt-get update -q || echo "going on without what could not be fetched"
    apt-get upgrade -q -y
    (($# == 0)) || apt-get install -q -y --no-install-recommends "$@"
}

# in_root NAME FUNCTION [ARGUMENT...]: runs a function of these files in build/roots/NAME, where the
# tree and the compiler cache are where they are outside. Its processes are of the root's architecture.
in_root() {
    local root=$roots/$1 personality
    shift
    case $(dpkg --root="$root" --print-architecture) in
    i386) personality=linux32 ;;
    *) personality=linux64 ;;
    esac
    cp /etc/resolv.conf /etc/hosts "$root/etc/"
    unshare --mount --propagation private setarch "$personality" \
        bash -c 'source .ci/steps.sh; source .ci/roots.sh; enter_root "$@"' "$0" "$root" "$@"
}

# Run in a mount namespace of its own. The root becomes the root of it, rather than one that chroot
# sets: the kernel gives programs behind chroot no namespaces of users, which tests make.
enter_root() {
    local root=$1 folder
    shift
    mount --bind "$root" "$root"
    for folder in /proc /sys /dev; do
        mount --rbind "$folder" "$root$folder"
    done
    for folder in /tmp /run; do
        mount -t tmpfs -o mode=1777 tmpfs "$root$folder"
    done
    # What was downloaded once serves the next root, too.
    mkdir -p "$roots/archives/partial"
    mount --bind "$roots/archives" "$root/var/cache/apt/archives"
    for folder in "$PWD" "$CCACHE_DIR"; do
        mkdir -p "$folder" "$root$folder"
        mount --bind "$folder" "$root$folder"
    done
    cd "$root"
    pivot_root . mnt
    exec env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
        CI="${CI-}" CCACHE_DIR="$CCACHE_DIR" CCACHE_BASEDIR="$CCACHE_BASEDIR" \
        bash -euc 'umount -l /mnt; cd "$1"; shift
            source .ci/steps.sh; source .ci/roots.sh; source .ci/packages.sh; "$@"' \
        "$0" "$OLDPWD" "$@"
}
