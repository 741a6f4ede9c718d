# SPDX-License-Identifier: MIT
# Sourced by ./run and ./test: what both need before they do their job.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '== %s\n' "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 2
}

# Installs the packages of packages.txt that are not there.
install_packages() {
    [[ -e .git ]] || fail "a git checkout, please: the checks ask git which files there are"
    local missing=() package
    while read -r package; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done < <(grep -Ev '^(#|$)' scripts/packages.txt)
    ((${#missing[@]})) || return 0

    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail "as root or with sudo, please: missing packages ${missing[*]}"
        as_root=(sudo)
    fi
    say "installing ${missing[*]}"
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# Configures a preset where needed, with further arguments, and builds it or some targets of it.
# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    [[ -f build/$preset/build.ninja ]] || cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" ${@:+--target "$@"}
}
