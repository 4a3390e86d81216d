# Sourced by run.sh and the scripts beside it: installs what a bare Debian 12 lacks, or says what to install.

zax_packages="g++ cmake ninja-build qt6-base-dev zlib1g-dev libcli11-dev libcsv-dev rapidjson-dev"
zax_test_packages="locales qt6-l10n-tools valgrind libc6-dbg"
zax_benchmark_packages="gnuplot-nox"
zax_asan_packages="clang-14 libclang-rt-14-dev llvm-14"
zax_coverage_packages="gcovr"
zax_tidy_packages="clang-14 clang-tidy-14 clang-format-14"

# What sanitizers found is told with names of functions.
export ASAN_SYMBOLIZER_PATH=/usr/bin/llvm-symbolizer-14

# zax_as_root COMMAND...: runs COMMAND as root, through sudo where need be; fails when there is no way to.
zax_as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo "$@"
    else
        return 1
    fi
}

# zax_install PACKAGE...: makes sure that the Debian packages are there.
zax_install() {
    local missing=()
    local package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ "${#missing[@]}" -eq 0 ] && return 0
    echo "Installing: ${missing[*]}" >&2
    if ! { zax_as_root apt-get update -qq &&
        zax_as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >&2
    then
        echo "Could not install them. As root: apt-get install ${missing[*]}" >&2
        return 1
    fi
}

# zax_need_locale: makes sure that the locale with a decimal comma is there.
zax_need_locale() {
    locale -a 2>/dev/null | grep -qix 'de_DE\.utf-\?8' && return 0
    if ! zax_as_root localedef -i de_DE -f UTF-8 de_DE.UTF-8; then
        echo "The locale de_DE.UTF-8 is missing. As root: localedef -i de_DE -f UTF-8 de_DE.UTF-8" >&2
        return 1
    fi
}

# zax_require_known NAME KNOWN...: ends the script when NAME is none of the known ones.
zax_require_known() {
    local name=$1
    shift
    printf '%s\n' "$@" | grep -qxF -e "$name" && return 0
    echo "There is no $name, but these: $*" >&2
    exit 2
}

# zax_configure PRESET: makes the build folder, or looks for what has come since: presets that changed, packages.
zax_configure() {
    cmake --preset "$1" --log-level=NOTICE >&2
}

# zax_build PRESET [TARGET...]: configures and builds.
zax_build() {
    local preset=$1
    shift
    zax_configure "$preset" || return
    cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}
