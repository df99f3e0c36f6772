# Shared by run, test, bench and package: packages, build, Wine prefix, display. Sourced, never run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build
export WINEDEBUG=${WINEDEBUG:--all}
# No Mono, no HTML engine, no entries in this machine's menus, no crash dialog: a crash ends the program with its true
# exit code.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-"mscoree,mshtml=;winedbg.exe,winemenubuilder.exe=d"}
export LIBGL_ALWAYS_SOFTWARE=${LIBGL_ALWAYS_SOFTWARE:-}
[ -n "$LIBGL_ALWAYS_SOFTWARE" ] || unset LIBGL_ALWAYS_SOFTWARE

say() { printf '\033[1m==>\033[0m %s\n' "$*"; }
die() { printf 'error: %s\n' "$*" >&2; exit 1; }

build_packages="g++ cmake ninja-build ccache googletest g++-mingw-w64-x86-64-posix librsvg2-bin python3-minimal"
run_packages="wine64 wine xvfb x11-utils imagemagick libgl1-mesa-dri libgl1 fonts-dejavu-core fonts-noto-cjk fonts-open-sans
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-libav"
package_packages="nsis wixl msitools"
signing_packages="osslsigncode"
# Formatting and clang-tidy are checked with one version of the tools (tests/house/clang_tools.py), where there is one.
test_packages="clang-format-14? clang-tidy-14? ffmpeg python3 7zip openssl
    $package_packages $signing_packages"
bench_packages="libyuv-dev libswscale-dev"

is_installed() { [ "$(dpkg-query -W -f='${Status}' "$1" 2>/dev/null)" = "install ok installed" ]; }

# ensure_packages names...: installs what is missing, and says so before it does. A name that ends in "?" is installed
# only where this system's suites have such a package.
ensure_packages() {
    local missing=() wanted=()
    local name
    for name in "$@"; do
        case $name in
            *\?) is_installed "${name%\?}" || wanted+=("${name%\?}") ;;
            *) is_installed "$name" || missing+=("$name") ;;
        esac
    done
    local sudo=
    if [ "$(id -u)" -ne 0 ]; then
        sudo=sudo
        if ! command -v sudo >/dev/null; then
            [ ${#missing[@]} -eq 0 ] || die "neither root nor sudo is here to install these packages: ${missing[*]}"
            return 0
        fi
    fi
    [ ${#missing[@]} -eq 0 ] || $sudo apt-get update -qq
    for name in "${wanted[@]}"; do
        ! apt-cache show "$name" >/dev/null 2>&1 || missing+=("$name")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing with apt: ${missing[*]}"
    $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Compilers whose warnings are known: there are none.
known_gcc="12 14"

# build_preset name [targets...]: configures once, then builds what changed. With PIXORA_STRICT=ON warnings stop it.
build_preset() {
    local preset=$1
    local folder=$build/$preset
    shift
    if [ ! -f "$folder/build.ninja" ] ||
        { [ -n "${PIXORA_STRICT:-}" ] && ! grep -q "^PIXORA_STRICT:BOOL=$PIXORA_STRICT$" "$folder/CMakeCache.txt"; }; then
        say "Configuring $preset"
        cmake --preset "$preset" -S "$root" ${PIXORA_STRICT:+-DPIXORA_STRICT="$PIXORA_STRICT"} >/dev/null
    fi
    say "Building $preset"
    cmake --build "$folder" ${1:+--target "$@"}
    local version
    version=$(sed -n 's/^set(CMAKE_CXX_COMPILER_VERSION "\([0-9]*\).*/\1/p' "$folder"/CMakeFiles/*/CMakeCXXCompiler.cmake)
    case " $known_gcc " in
        *" $version "*) ;;
        *) say "Built by GCC $version. Warnings above are those of a version that the tree has not been kept to." ;;
    esac
}

find_wine() {
    WINE=$(command -v wine64 || true)
    [ -n "$WINE" ] || WINE=/usr/lib/wine/wine64
    [ -x "$WINE" ] || WINE=$(command -v wine) || die "Wine is not installed"
    WINESERVER=$(command -v wineserver || echo /usr/lib/wine/wineserver)
    if [ -z "${PIXORA_SHARED_MEMORY:-}" ]; then
        PIXORA_WINE=$WINE
        PIXORA_NO_SHARED_MEMORY=$build/no-shared-memory.so
        WINE=$root/scripts/wine-without-shm
        export PIXORA_WINE PIXORA_NO_SHARED_MEMORY
        make_no_shared_memory
    fi
    export WINE WINESERVER
}

make_no_shared_memory() {
    local source=$root/scripts/no-shared-memory.c
    [ "$PIXORA_NO_SHARED_MEMORY" -nt "$source" ] && return 0
    mkdir -p "$build"
    gcc -shared -fPIC -O2 -o "$PIXORA_NO_SHARED_MEMORY.$$" "$source"
    mv "$PIXORA_NO_SHARED_MEMORY.$$" "$PIXORA_NO_SHARED_MEMORY"
}

# import_settings file: into the registry of the current prefix.
import_settings() {
    local file
    file=$(mktemp --suffix=.reg)
    { printf '\xff\xfe'; iconv -t UTF-16LE "$1"; } >"$file"
    "$WINE" regedit /S "$file" >/dev/null 2>&1
    rm -f "$file"
}

# ensure_wine_template: a Wine prefix with the fonts and settings of a plain Windows 10 machine, made once.
ensure_wine_template() {
    find_wine
    local template=$build/wine-template
    [ -f "$template/ready" ] && [ "$template/ready" -nt "$root/scripts/wine-settings.reg" ] && return 0
    say "Preparing a Wine prefix (once, about 15 s)"
    rm -rf "$template"
    mkdir -p "$template"
    (
        export WINEPREFIX=$template WINEARCH=win64
        unset DISPLAY
        "$WINE" wineboot -i >/dev/null 2>&1
        import_settings "$root/scripts/wine-settings.reg"
        "$WINE" winecfg -v win10 >/dev/null 2>&1
        "$WINESERVER" -k -w 2>/dev/null || "$WINESERVER" -w
    )
    # The installation makes this folder; the program itself only makes the folders below it.
    mkdir -p "$template/drive_c/ProgramData/Comms"
    touch "$template/ready"
}

# new_prefix folder: a fresh copy of the template. Wine's own programs, nearly all of its 700 MB, are links to one
# copy, since nobody writes to them; what a program could write in place is a file of its own.
new_prefix() {
    ensure_wine_template
    stop_wine "$1"
    rm -rf "$1"
    mkdir -p "$(dirname "$1")"
    cp -al "$build/wine-template" "$1"
    find "$1" -type f ! -iname '*.dll' ! -iname '*.exe' ! -iname '*.nls' -exec bash -c '
        for file; do cp -p "$file" "$file.own" && mv -f "$file.own" "$file" || exit; done' bash {} +
}

# use_prefix folder: from here on Wine works in this prefix.
use_prefix() { export WINEPREFIX=$1; }

# A waiting Wine process keeps the server and the desktop alive: a start then costs milliseconds, not seconds. It waits
# for a key from a pipe that nobody writes to, and that it holds open itself; stop_wine ends it.
keep_wine_alive() {
    local pipe
    pipe=$(mktemp -u)
    mkfifo "$pipe"
    # Not a child of whoever calls: a test that is cut off is ended with all its children.
    ({ rm -f "$pipe"; exec setsid "$WINE" cmd /c "pause"; } <>"$pipe" >/dev/null 2>&1 &)
    # Starts the desktop's process here and now: it lives as long as the waiting one, and would keep open the output of
    # the test that is the first to show a window.
    "$WINE" rundll32 user32.dll,GetDesktopWindow </dev/null >/dev/null 2>&1
}

stop_wine() {
    [ -d "$1" ] || return 0
    WINEPREFIX=$1 "$WINESERVER" -k 2>/dev/null || true
}

# start_display size: a headless X display of our own; sets DISPLAY.
start_display() {
    local size=${1:-1920x1200}
    local pipe
    pipe=$(mktemp -u)
    mkfifo "$pipe"
    Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp -noreset 3>"$pipe" >/dev/null 2>&1 &
    display_pids+=" $!"
    local number=
    read -r -t 60 number <"$pipe" || true
    rm -f "$pipe"
    [ -n "$number" ] || die "the headless display did not start"
    export DISPLAY=:$number
}

display_pids=
stop_display() { [ -z "$display_pids" ] || kill $display_pids 2>/dev/null || true; }

# make_desktops number size: that many desktops for scripts/on-desktop, each with a display of that size.
make_desktops() {
    export PIXORA_DESKTOPS=$build/desktops
    local number
    for number in $(seq "$1"); do
        local desktop=$PIXORA_DESKTOPS/$number
        mkdir -p "$desktop"
        start_display "$2"
        echo "$DISPLAY" >"$desktop/display"
        use_prefix "$desktop/prefix"
        renew_desktop "$desktop"
    done
    unset WINEPREFIX DISPLAY
}

# renew_desktop folder: its programs end, its prefix is a new one. The display stays: what was on it is gone with the
# programs.
renew_desktop() {
    new_prefix "$1/prefix"
    rm -f "$1/used"
    : >"$1/opened-links.txt"
    keep_wine_alive
}

stop_desktops() {
    local desktop
    for desktop in "${PIXORA_DESKTOPS:-$build/desktops}"/*; do
        stop_wine "$desktop/prefix"
    done
    stop_display
}

# wine_log_file [program]: where the program, Pixora unless told, logs in the current prefix.
wine_log_file() {
    find "$WINEPREFIX/drive_c/users" -name "${1:-Pixora}.log" 2>/dev/null | head -1
}
