#!/usr/bin/env bash
# Makes Qt 6.4.2 (qtbase) and ActiveQt 6.4.2 for 64-bit Windows from their sources, cross-built
# with Debian's mingw-w64 (posix threads, gcc 12), for a machine that has no prebuilt prefix:
# the same install prefix as qt-6.4.2-mingw-w64-x86_64.tar.xz in ../shared/qt-windows.
# Run it under `nice -n 19` beside other builds; see --help.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)

qt_version=6.4.2
deb_version=6.4.2+dfsg-10
orig_name=qt6-base_6.4.2+dfsg.orig.tar.xz
# SHA-256 of Debian's qt6-base_6.4.2+dfsg.orig.tar.xz (the same for every 6.4.2+dfsg-N upload)
orig_sha256=4f14b89a9463a540fd84a6718b8519a2297119b454ef547721015a9e9019ae9e

prefix="$root/build/qt-windows"
activeqt="$root/../shared/qt-windows/qtactiveqt-6.4.2-src.tar.xz"
qtbase=""
work="${TMPDIR:-/tmp}/kestrin-qt-windows"
archive=""
jobs=$(nproc)
keep_work=0
verbose=0

usage() {
    cat <<EOF
Usage: scripts/build-qt-windows.sh [OPTIONS]

Cross-builds Qt $qt_version (qtbase, from Debian's qt6-base $deb_version source package) and
ActiveQt $qt_version for 64-bit Windows with Debian's mingw-w64 and installs them into one
relocatable prefix: Core, Gui, Widgets, PrintSupport, Xml, Test, the Windows platform plugins,
AxBase, AxServer, AxContainer, idc.exe, dumpcpp.exe, dumpdoc.exe and their CMake packages.
Configure a project against it with
  -DCMAKE_TOOLCHAIN_FILE=PREFIX/lib/cmake/Qt6/qt.toolchain.cmake
About an hour on two cores; run it as \`nice -n 19 scripts/build-qt-windows.sh\` beside other work.

Options:
  --prefix DIR      where the prefix goes; must not exist or be empty
                    (default: $root/build/qt-windows)
  --activeqt FILE   ActiveQt $qt_version sources: a .tar.xz/.tar.gz or an unpacked folder
                    (default: $root/../shared/qt-windows/qtactiveqt-6.4.2-src.tar.xz)
  --qtbase PATH     qtbase sources already at hand: Debian's $orig_name, a folder
                    holding it (as \`apt-get source --download-only qt6-base=$deb_version\`
                    leaves it), or an unpacked qtbase $qt_version tree (copied, not changed).
                    Without it the source package is fetched with apt-get source: through this
                    machine's deb-src entries when it has some for bookworm, else through a
                    deb-src entry for bookworm that the script adds in its own apt
                    configuration under the work folder (the system's apt stays as it is).
  --work DIR        scratch folder for downloads, sources and build trees; a second run reuses
                    them (default: \${TMPDIR:-/tmp}/kestrin-qt-windows, removed after success)
  --keep-work       keep the work folder after success
  --archive FILE    also pack the prefix as FILE (.tar.xz), its contents at the top level
  --jobs N          parallel compile jobs (default: $(nproc))
  --verbose         show the configure and build output instead of only writing it to logs
  --help            this text

Needs Debian 12: Qt's host tools (moc, rcc, uic) are Debian's own $qt_version and must match.
Installs what is missing with apt-get (through sudo when not root): g++-mingw-w64-x86-64-posix,
qt6-base-dev, qt6-base-dev-tools, qt6-base-private-dev, ninja-build, cmake, xz-utils. Wine's
tablet headers come from libwine-dev (installed, or its package downloaded and unpacked).
EOF
}

die() {
    echo "build-qt-windows: error: $*" >&2
    exit 1
}
say() { echo "== $*"; }

need_arg() { [ $# -ge 2 ] && [ -n "$2" ] || die "$1 needs a value (see --help)"; }
while [ $# -gt 0 ]; do
    case "$1" in
        --prefix) need_arg "$@"; prefix=$2; shift 2 ;;
        --activeqt) need_arg "$@"; activeqt=$2; shift 2 ;;
        --qtbase) need_arg "$@"; qtbase=$2; shift 2 ;;
        --work) need_arg "$@"; work=$2; shift 2 ;;
        --archive) need_arg "$@"; archive=$2; shift 2 ;;
        --jobs) need_arg "$@"; jobs=$2; shift 2 ;;
        --keep-work) keep_work=1; shift ;;
        --verbose) verbose=1; shift ;;
        -h|--help) usage; exit 0 ;;
        *) die "unknown option '$1' (see --help)" ;;
    esac
done
[[ "$jobs" =~ ^[1-9][0-9]*$ ]] || die "--jobs wants a positive number, not '$jobs'"

abspath() { realpath -m -- "$1"; }
prefix=$(abspath "$prefix")
work=$(abspath "$work")
activeqt=$(abspath "$activeqt")
[ -z "$qtbase" ] || qtbase=$(abspath "$qtbase")
[ -z "$archive" ] || archive=$(abspath "$archive")

case "$prefix/" in
    "$work"/*) die "the prefix ($prefix) must not lie inside the work folder ($work)" ;;
esac
if [ -e "$prefix" ] && [ -n "$(ls -A "$prefix" 2>/dev/null)" ]; then
    die "the prefix $prefix already exists and is not empty. Remove it first, or give another --prefix."
fi
if [ ! -e "$activeqt" ]; then
    die "ActiveQt $qt_version sources not found at $activeqt. Debian does not package ActiveQt.
Give --activeqt with the sources: qtactiveqt-6.4.2-src.tar.xz from the project's shared qt-windows
folder, or Qt's own qtactiveqt-everywhere-src-$qt_version.tar.xz, or an unpacked tree."
fi
if [ -n "$qtbase" ] && [ ! -e "$qtbase" ]; then
    die "--qtbase: $qtbase does not exist"
fi

start=$SECONDS
mkdir -p "$work"/{download,src,logs}
logs="$work/logs"
step=""
on_exit() {
    local rc=$?
    if [ "$rc" -ne 0 ] && [ -n "$step" ]; then
        echo "build-qt-windows: failed while $step (exit $rc)." >&2
        echo "  Logs: $logs; the work folder $work is kept, a second run resumes from it." >&2
    fi
}
trap on_exit EXIT

# Runs a command with its output in a log; on failure shows the end of the log and stops.
run_logged() {
    local log="$logs/$1.log"
    shift
    echo "   \$ $*" >>"$log"
    local rc=0
    if [ "$verbose" -eq 1 ]; then
        "$@" 2>&1 | tee -a "$log" || rc=$?
    else
        "$@" >>"$log" 2>&1 || rc=$?
    fi
    if [ "$rc" -ne 0 ]; then
        echo "---- last lines of $log ----" >&2
        tail -n 40 "$log" >&2
        echo "----" >&2
        die "'$*' failed with exit code $rc while $step (whole output: $log)"
    fi
}

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
apt_as_root=()
[ "$(id -u)" -eq 0 ] && apt_as_root=(-o APT::Sandbox::User=root)

# --- tools -------------------------------------------------------------------------------------
step="installing the build tools"
packages=(g++-mingw-w64-x86-64-posix qt6-base-dev qt6-base-dev-tools qt6-base-private-dev
          ninja-build cmake xz-utils)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    say "installing ${missing[*]}"
    [ -z "$sudo" ] || command -v sudo >/dev/null ||
        die "not root and no sudo: install ${missing[*]} as root first"
    export DEBIAN_FRONTEND=noninteractive
    if ! $sudo apt-get update -qq >"$logs/apt-install.log" 2>&1 ||
       ! $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >>"$logs/apt-install.log" 2>&1; then
        tail -n 20 "$logs/apt-install.log" >&2
        die "could not install ${missing[*]} with apt-get (tried 'apt-get update' and
'apt-get install ${missing[*]}'; output in $logs/apt-install.log). Without the package
registry, install them from local media or use a prebuilt prefix (qt-6.4.2-mingw-w64-x86_64.tar.xz)."
    fi
fi
host_qt=$(dpkg-query -W -f='${Version}' qt6-base-dev-tools)
case "$host_qt" in
    "$qt_version"+*|"$qt_version"-*) ;;
    *) die "the host tools (moc, rcc, uic) must be Qt $qt_version as the sources are, but
qt6-base-dev-tools is $host_qt here. Build on Debian 12 (bookworm)." ;;
esac
for tool in x86_64-w64-mingw32-gcc-posix x86_64-w64-mingw32-g++-posix x86_64-w64-mingw32-windres \
            cmake ninja xz; do
    command -v "$tool" >/dev/null || die "$tool is missing after installing the build tools"
done
avail_kib=$(df -Pk "$work" | awk 'NR == 2 { print $4 }')
[ "$avail_kib" -ge $((6 * 1024 * 1024)) ] ||
    die "the work folder $work has $((avail_kib / 1024)) MiB free; the build needs about 6 GiB"

# --- qtbase sources ----------------------------------------------------------------------------
step="getting the qtbase sources"
dl="$work/download"

sha_ok() { [ "$(sha256sum "$1" | cut -d' ' -f1)" = "$orig_sha256" ]; }

# Downloads the source package into $dl with apt (its options given as arguments): the exact
# Debian 12 upload when it is listed, else any 6.4.2+dfsg upload (they share one original tarball).
apt_source() {
    local versions version
    versions=$(apt-cache "$@" showsrc qt6-base 2>>"$logs/apt-source.log" | sed -n 's/^Version: //p') || true
    if grep -qxF "$deb_version" <<<"$versions"; then
        version=$deb_version
    else
        version=$(grep -E '^6\.4\.2\+dfsg-' <<<"$versions" | head -n 1) || true
    fi
    if [ -z "$version" ]; then
        echo "E: no qt6-base 6.4.2+dfsg source package listed (listed: ${versions:-none})" >>"$logs/apt-source.log"
        return 1
    fi
    (cd "$dl" && apt-get "$@" "${apt_as_root[@]}" source --download-only "qt6-base=$version") \
        >>"$logs/apt-source.log" 2>&1
}

fetch_qtbase() {
    local tried=() mirror keyring aptdir
    : >"$logs/apt-source.log"
    # 1. this machine's own apt sources, when they carry deb-src entries
    if [ -n "$(apt-get indextargets 'Target-Of: deb-src' --format '$(REPO_URI)' 2>/dev/null)" ]; then
        say "fetching qt6-base $deb_version with this machine's deb-src entries"
        tried+=("apt-get source qt6-base=$deb_version with this machine's deb-src entries")
        apt_source && return 0
    fi
    # 2. a deb-src entry for bookworm in an apt configuration of our own, on the machine's mirror
    mirror=$(apt-get indextargets 'Target-Of: deb' --format '$(CODENAME) $(RELEASE) $(REPO_URI)' 2>/dev/null |
             awk '$1 == "bookworm" || $2 == "bookworm" { print $NF; exit }')
    mirror=${mirror:-http://deb.debian.org/debian/}
    keyring=/usr/share/keyrings/debian-archive-keyring.gpg
    [ -f "$keyring" ] || die "$keyring is missing (package debian-archive-keyring)"
    aptdir="$work/apt"
    mkdir -p "$aptdir/sources.list.d" "$aptdir/lists/partial" "$aptdir/cache/archives/partial"
    echo "deb-src [signed-by=$keyring] $mirror bookworm main" >"$aptdir/sources.list"
    local opts=(-o "Dir::Etc::SourceList=$aptdir/sources.list"
                -o "Dir::Etc::SourceParts=$aptdir/sources.list.d"
                -o "Dir::State::Lists=$aptdir/lists" -o "Dir::Cache=$aptdir/cache")
    say "fetching qt6-base $deb_version through 'deb-src $mirror bookworm main' (apt configuration in $aptdir)"
    tried+=("apt-get update, then apt-get source qt6-base=$deb_version, with 'deb-src $mirror bookworm main'")
    if apt-get "${opts[@]}" update >>"$logs/apt-source.log" 2>&1 && apt_source "${opts[@]}"; then
        return 0
    fi
    echo "---- apt's errors (all in $logs/apt-source.log) ----" >&2
    grep -E '^(E|W|Err):' "$logs/apt-source.log" | tail -n 12 >&2 || tail -n 12 "$logs/apt-source.log" >&2
    echo "----" >&2
    local what
    what=$(printf '  - %s\n' "${tried[@]}")
    die "could not download Debian's qt6-base $deb_version source package. Tried:
$what
Without network access to a Debian archive, fetch it on a machine that has one
('apt-get source --download-only qt6-base=$deb_version' with a deb-src line for bookworm) and
pass the folder or $orig_name with --qtbase; or use the prebuilt prefix
qt-6.4.2-mingw-w64-x86_64.tar.xz instead of building."
}

# Prints the qtbase tree inside a folder: the folder itself or its one qtbase-* subfolder.
source_tree_in() {
    local d=$1
    if [ -f "$d/.cmake.conf" ] && [ -f "$d/CMakeLists.txt" ]; then echo "$d"; return; fi
    local sub
    for sub in "$d"/*/; do
        sub=${sub%/}
        if [ -f "$sub/.cmake.conf" ] && [ -f "$sub/CMakeLists.txt" ]; then echo "$sub"; return; fi
    done
    return 1
}

check_version() {  # tree, name
    grep -q "QT_REPO_MODULE_VERSION \"$qt_version\"" "$1/.cmake.conf" ||
        die "$2 in $1 is not version $qt_version ($(grep -h 'QT_REPO_MODULE_VERSION "' "$1/.cmake.conf" || echo 'no version found'))"
}

# Unpacks (or copies) a source into $work/src/NAME unless the same origin is already there.
unpack_source() {  # name, origin (archive or folder)
    local name=$1 origin=$2 dest="$work/src/$1" stamp tree
    stamp="$origin $(stat -c '%s %Y' "$origin")"
    if [ -f "$dest/.origin" ] && [ "$(cat "$dest/.origin")" = "$stamp" ]; then
        return 0
    fi
    say "unpacking $origin"
    rm -rf "$dest" "$work/build-$name"
    mkdir -p "$dest.partial"
    if [ -d "$origin" ]; then
        tree=$(source_tree_in "$origin") || die "$origin holds no $name source tree (.cmake.conf, CMakeLists.txt)"
        cp -a "$tree/." "$dest.partial/"
    else
        tar -xf "$origin" -C "$dest.partial" || die "could not unpack $origin"
        tree=$(source_tree_in "$dest.partial") || die "$origin holds no $name source tree (.cmake.conf, CMakeLists.txt)"
        if [ "$tree" != "$dest.partial" ]; then
            mv "$tree" "$dest" && rm -rf "$dest.partial"
            echo "$stamp" >"$dest/.origin"
            return 0
        fi
    fi
    mv "$dest.partial" "$dest"
    echo "$stamp" >"$dest/.origin"
}

if [ -n "$qtbase" ]; then
    if [ -d "$qtbase" ] && [ -f "$qtbase/$orig_name" ]; then
        qtbase="$qtbase/$orig_name"
    fi
    if [ -f "$qtbase" ]; then
        sha_ok "$qtbase" || echo "note: $qtbase is not Debian's $orig_name (another SHA-256); building it as given"
    fi
    qtbase_origin=$qtbase
else
    if [ -f "$dl/$orig_name" ] && sha_ok "$dl/$orig_name"; then
        say "using $dl/$orig_name from an earlier run"
    else
        rm -f "$dl/$orig_name"
        fetch_qtbase
        [ -f "$dl/$orig_name" ] || die "apt-get source succeeded but left no $orig_name in $dl"
        sha_ok "$dl/$orig_name" || die "$dl/$orig_name has an unexpected SHA-256; remove it and retry"
    fi
    qtbase_origin="$dl/$orig_name"
fi
unpack_source qtbase "$qtbase_origin"
src_base="$work/src/qtbase"
check_version "$src_base" "qtbase"

step="unpacking ActiveQt"
unpack_source activeqt "$activeqt"
src_ax="$work/src/activeqt"
check_version "$src_ax" "ActiveQt"
[ -d "$src_ax/src/activeqt" ] || die "$activeqt does not look like ActiveQt (no src/activeqt)"

# --- the two changes to the qtbase sources -----------------------------------------------------
step="preparing the qtbase sources"
# Debian's source package drops the tablet (wintab) headers that the Windows platform plugin
# includes; Wine's own serve, given the three macros Wine defines elsewhere.
wintab="$src_base/src/3rdparty/wintab"
if [ ! -f "$wintab/wintab.h" ] || [ ! -f "$wintab/pktdef.h" ]; then
    winehdr=/usr/include/wine/wine/windows
    if [ ! -f "$winehdr/wintab.h" ] || [ ! -f "$winehdr/pktdef.h" ]; then
        say "downloading libwine-dev for the tablet headers"
        rm -rf "$dl"/libwine-dev_*.deb "$work/winedev"
        if ! (cd "$dl" && apt-get "${apt_as_root[@]}" download libwine-dev) >"$logs/libwine-dev.log" 2>&1; then
            tail -n 10 "$logs/libwine-dev.log" >&2
            die "could not download libwine-dev for Wine's wintab.h and pktdef.h (tried
'apt-get download libwine-dev'). Install it (apt-get install libwine-dev) and run again."
        fi
        dpkg -x "$dl"/libwine-dev_*.deb "$work/winedev"
        winehdr="$work/winedev/usr/include/wine/wine/windows"
    fi
    [ -f "$winehdr/wintab.h" ] && [ -f "$winehdr/pktdef.h" ] ||
        die "no wintab.h and pktdef.h in $winehdr"
    mkdir -p "$wintab"
    {
        cat <<'EOF'
#ifndef API
#define API WINAPI
#endif
#ifndef DECL_WINELIB_TYPE_AW
# ifdef UNICODE
#  define WINELIB_NAME_AW(x) x##W
#  define DECL_WINELIB_TYPE_AW(type) typedef type##W type;
# else
#  define WINELIB_NAME_AW(x) x##A
#  define DECL_WINELIB_TYPE_AW(type) typedef type##A type;
# endif
#endif
EOF
        cat "$winehdr/wintab.h"
    } >"$wintab/wintab.h"
    cp "$winehdr/pktdef.h" "$wintab/"
fi
# With OpenGL off, the Windows platform plugin still takes its software-GL branch, which needs
# OpenGL.
glfile="$src_base/src/plugins/platforms/windows/qwindowswindow.cpp"
sed -i 's/^#if QT_CONFIG(dynamicgl)$/#if QT_CONFIG(dynamicgl) \&\& QT_CONFIG(opengl)/' "$glfile"
grep -qx '#if QT_CONFIG(dynamicgl) && QT_CONFIG(opengl)' "$glfile" &&
    ! grep -qx '#if QT_CONFIG(dynamicgl)' "$glfile" ||
    die "could not change the OpenGL #if lines of $glfile"

# --- build ---------------------------------------------------------------------------------------
stage="$work/prefix"
toolchain="$work/mingw-w64-x86_64.cmake"
cat >"$toolchain" <<'EOF'
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
EOF
rm -rf "$stage"

step="configuring qtbase"
say "configuring qtbase (log: $logs/qtbase-configure.log)"
run_logged qtbase-configure cmake -S "$src_base" -B "$work/build-qtbase" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DQT_HOST_PATH=/usr \
    -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
    -DCMAKE_INSTALL_PREFIX="$stage" -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
    -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DQT_BUILD_BENCHMARKS=OFF \
    -DFEATURE_sql=OFF -DFEATURE_network=OFF -DFEATURE_dbus=OFF -DFEATURE_opengl=OFF \
    -DFEATURE_concurrent=OFF -DFEATURE_vulkan=OFF -DFEATURE_icu=OFF -DFEATURE_testlib=ON \
    -DFEATURE_xml=ON -DFEATURE_printsupport=ON -DFEATURE_system_zlib=OFF \
    -DFEATURE_system_pcre2=OFF -DFEATURE_system_harfbuzz=OFF -DFEATURE_system_freetype=OFF \
    -DFEATURE_system_jpeg=OFF -DFEATURE_system_doubleconversion=OFF
step="building qtbase"
say "building qtbase with $jobs jobs (log: $logs/qtbase-build.log)"
run_logged qtbase-build cmake --build "$work/build-qtbase" --parallel "$jobs"
step="installing qtbase"
run_logged qtbase-install cmake --install "$work/build-qtbase"

step="configuring ActiveQt"
say "configuring ActiveQt (log: $logs/activeqt-configure.log)"
# idc, dumpcpp and dumpdoc exist only as Windows programs: no host Qt has them, so a cross build
# must build them itself (QT_FORCE_BUILD_TOOLS) instead of looking for them on the host.
run_logged activeqt-configure cmake -S "$src_ax" -B "$work/build-activeqt" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$stage/lib/cmake/Qt6/qt.toolchain.cmake" -DQT_FORCE_BUILD_TOOLS=ON \
    -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DCMAKE_INSTALL_PREFIX="$stage"
step="building ActiveQt"
say "building ActiveQt (log: $logs/activeqt-build.log)"
run_logged activeqt-build cmake --build "$work/build-activeqt" --parallel "$jobs"
step="installing ActiveQt"
run_logged activeqt-install cmake --install "$work/build-activeqt"

# --- make the prefix relocatable and check it ---------------------------------------------------
step="finishing the prefix"
cp "$toolchain" "$stage/"
# The toolchain file chain-loads the compiler settings that travel with the prefix, found from
# its own place, so the prefix can be moved or unpacked anywhere.
qt_toolchain="$stage/lib/cmake/Qt6/qt.toolchain.cmake"
sed -i 's#^set(__qt_initially_configured_toolchain_file ".*")#set(__qt_initially_configured_toolchain_file "${CMAKE_CURRENT_LIST_DIR}/../../../mingw-w64-x86_64.cmake")#' \
    "$qt_toolchain"
grep -qF 'set(__qt_initially_configured_toolchain_file "${CMAKE_CURRENT_LIST_DIR}/../../../mingw-w64-x86_64.cmake")' \
    "$qt_toolchain" || die "could not make the chain-loaded toolchain path in $qt_toolchain relative"

expected=(bin/Qt6Core.dll bin/Qt6Gui.dll bin/Qt6Widgets.dll bin/Qt6PrintSupport.dll bin/Qt6Xml.dll
          bin/Qt6Test.dll bin/idc.exe bin/dumpcpp.exe bin/dumpdoc.exe
          plugins/platforms/qwindows.dll plugins/platforms/qdirect2d.dll
          plugins/platforms/qoffscreen.dll plugins/platforms/qminimal.dll
          plugins/styles/qwindowsvistastyle.dll plugins/imageformats/qgif.dll
          plugins/imageformats/qico.dll plugins/imageformats/qjpeg.dll
          lib/libQt6AxBase.a lib/libQt6AxServer.a lib/libQt6AxContainer.a
          lib/cmake/Qt6/Qt6Config.cmake lib/cmake/Qt6Widgets/Qt6WidgetsConfig.cmake
          lib/cmake/Qt6PrintSupport/Qt6PrintSupportConfig.cmake
          lib/cmake/Qt6AxServer/Qt6AxServerConfig.cmake
          lib/cmake/Qt6AxContainer/Qt6AxContainerConfig.cmake mingw-w64-x86_64.cmake)
absent=()
for f in "${expected[@]}"; do [ -f "$stage/$f" ] || absent+=("$f"); done
[ ${#absent[@]} -eq 0 ] || die "the build finished but the prefix lacks: ${absent[*]}"

step="moving the prefix into place"
if [ -e "$prefix" ] && [ -n "$(ls -A "$prefix" 2>/dev/null)" ]; then
    die "$prefix was filled by someone else during the build; the finished prefix is in $stage"
fi
rmdir "$prefix" 2>/dev/null || true
mkdir -p "$(dirname "$prefix")"
rm -rf "$prefix.partial"
mv "$stage" "$prefix.partial"
mv "$prefix.partial" "$prefix"

if [ -n "$archive" ]; then
    step="packing $archive"
    say "packing $archive"
    mkdir -p "$(dirname "$archive")"
    XZ_OPT=${XZ_OPT:--T$jobs} tar -C "$prefix" -cJf "$archive.partial" .
    mv "$archive.partial" "$archive"
fi

step=""
if [ "$keep_work" -eq 0 ]; then
    rm -rf "$work"
    workmsg="work folder removed"
else
    workmsg="work folder kept: $work"
fi
elapsed=$((SECONDS - start))
echo "Qt $qt_version with ActiveQt for Windows is in $prefix ($((elapsed / 60)) min $((elapsed % 60)) s; $workmsg)."
echo "Use it with -DCMAKE_TOOLCHAIN_FILE=$prefix/lib/cmake/Qt6/qt.toolchain.cmake"
[ -z "$archive" ] || echo "Archive: $archive"
