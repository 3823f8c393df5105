# What must be installed, and how. For the scripts of the project's root: source it, then call
# installMissing with the lists that are needed. Nothing is asked of apt while all is in place.

toBuild=(g++ cmake ninja-build pkg-config gettext tzdata
    libical-dev libtomlplusplus-dev libcli11-dev nlohmann-json3-dev nettle-dev)
toTest=(doctest-dev faketime khal khard python3 strace vdirsyncer)
# clang does not bring its run-time libraries, which hold libFuzzer and the sanitizers.
toFuzz=(clang libclang-rt-14-dev)

isInstalled() {
    [[ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" == installed ]]
}

asRoot() {
    if [[ "$(id -u)" == 0 ]]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "This needs root or sudo: $*" >&2
        return 1
    fi
}

installMissing() {
    local missing=() package
    for package in "$@"; do
        isInstalled "$package" || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "Only Debian 12 is looked after here; needed are: ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}"
    local options=(-qq -o DPkg::Lock::Timeout=600 -o Dpkg::Use-Pty=0)
    asRoot env DEBIAN_FRONTEND=noninteractive apt-get "${options[@]}" update
    asRoot env DEBIAN_FRONTEND=noninteractive apt-get "${options[@]}" install -y \
        --no-install-recommends "${missing[@]}"
}

# A second build of the same sources costs little where this is installed; nobody needs it.
useCcache() {
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER="${CMAKE_CXX_COMPILER_LAUNCHER-ccache}"
    fi
}
