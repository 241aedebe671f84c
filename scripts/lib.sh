# shellcheck shell=bash disable=SC2034 # what the sourcing scripts use
# Shared by scripts/demo and scripts/test; sourced, not run.

say() { printf '\n\033[1m== %s\033[0m\n' "$*"; }
give_up() {
    printf '\n%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

apt() { # apt-get, as root
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@"
}

# need yes|no PACKAGE...: makes the Debian packages present; with "no" it only asks for them.
need() {
    local may_install=$1 missing=() package
    shift
    command -v dpkg-query >/dev/null || give_up "this is no Debian system; it needs: $*"
    for package in "$@"; do
        case $(dpkg-query -W -f '${Status}' "$package" 2>/dev/null) in
            *' installed') ;;
            *) missing+=("$package") ;;
        esac
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    [ "$may_install" = yes ] || give_up "missing packages; as root: apt-get install ${missing[*]}"
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        give_up "installing needs root, and there is no sudo; as root: apt-get install ${missing[*]}"
    fi
    say "Installing ${missing[*]}"
    # The package lists of a new machine are empty or old, so a first failure means little.
    apt install --no-install-recommends "${missing[@]}" && return 0
    say "Updating the package lists"
    apt update || give_up "apt-get update failed: is there a network, and may $(id -un) use it?"
    apt install --no-install-recommends "${missing[@]}" ||
        give_up "apt-get could not install: ${missing[*]}"
}

packages_to_build=(g++ cmake ninja-build libboost-dev libcli11-dev nlohmann-json3-dev zlib1g-dev)
packages_to_test=(binutils clang-format jq libgtest-dev libgmock-dev liblognorm-utils lnav logrotate
    python3-jsonschema rcs)
packages_to_test_all=(abigail-tools clang clang-tidy doxygen make strace valgrind)
packages_to_test_i386=(abigail-tools jq liblognorm-utils lnav logrotate g++-multilib lib32z1-dev googletest
    binutils)
packages_to_test_install=(clang dpkg-dev lintian pkg-config systemd)
packages_for_picture=(chromium fonts-noto-color-emoji)
