# Functions of the commands at the root: progress messages, installing packages, builds, and the table of ./check's steps.
# Source it from the root of the checkout.

export DEBIAN_FRONTEND=noninteractive
# The compiler cache is in the user's cache folder and serves all checkouts: paths below the checkout are made relative,
# and the build folder is ignored.
export CCACHE_DIR="${CCACHE_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/ccache}" CCACHE_MAXSIZE="${CCACHE_MAXSIZE:-5G}"
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1

BUILD_PACKAGES="build-essential cmake ninja-build ccache libgtest-dev libgmock-dev libbenchmark-dev unixodbc-dev freetds-dev libsqlite3-dev libssl-dev locales qt6-base-dev libfontconfig-dev libxcb1-dev libxtst-dev"
# python3-pkg-resources: python3-tds looks for its own version with it and does not depend on it.
RUN_PACKAGES="tdsodbc freetds-bin python3 python3-pymssql python3-pyodbc python3-tds python3-pkg-resources"
# The programs that work at the console on Linux read its windows as a screen reader does.
SCREEN_PACKAGES="xvfb openbox weston qt6-wayland xdotool imagemagick dbus-daemon at-spi2-core gir1.2-atspi-2.0 python3-gi python3-pyatspi python3-xlib"
WINDOWS_PACKAGES="g++-mingw-w64-x86-64 g++-mingw-w64-i686 lld wine wine64 tcl $SCREEN_PACKAGES"
STYLE_PACKAGES="clang-format clang-tidy"
PACKAGING_PACKAGES="msitools wixl faketime pandoc xz-utils dpkg-dev"

started=$SECONDS

# say TEXT: prints a line with the time since the start.
say() { printf '[%2d:%02d] %s\n' $(((SECONDS - started) / 60)) $(((SECONDS - started) % 60)) "$*"; }

# need PACKAGE…: installs the missing packages.
need() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "missing packages, and neither root nor sudo to install them: ${missing[*]}" >&2; exit 1; }
        root=(sudo)
    fi
    say "installing ${#missing[@]} packages: ${missing[*]}"
    mkdir -p build
    if ! { "${root[@]}" apt-get update -qq && "${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"; } > build/packages.log 2>&1; then
        tail -20 build/packages.log >&2
        echo "the packages could not be installed; the whole output is in build/packages.log" >&2
        exit 1
    fi
}

# watch LOG PID: until the process ends, prints the progress of the build or of ctest every 15 seconds.
watch() {
    local log=$1 pid=$2 last= now
    while kill -0 "$pid" 2>/dev/null; do
        for _ in $(seq 30); do
            sleep 0.5
            kill -0 "$pid" 2>/dev/null || return 0
        done
        now=$(grep -oE '^ *\[?[0-9]+/[0-9]+\]?' "$log" | tail -1)
        [ "$now" = "$last" ] || say "  $(basename "$log" .log) $now"
        last=$now
    done
}

# build PRESET [TARGET…]: configures the tree once, in batches (KV_UNITY), and builds it; prints the progress, and the
# errors if it fails. A tree that is already configured is not configured again.
build() {
    local preset=$1 pid
    shift
    say "building $preset${*:+: $*}"
    mkdir -p build
    local log=build/$preset.log
    # Tests that run at the same time get the processor first: some wait for a server no longer than a second.
    { { [ -e "build/$preset/build.ninja" ] || cmake --preset "$preset" -DKV_UNITY=ON; } && nice cmake --build --preset "$preset" ${*:+--target "$@"}; } > "$log" 2>&1 &
    pid=$!
    watch "$log" $pid
    if ! wait $pid; then
        grep -E 'error|warning|Error|FAILED|undefined' "$log" | head -40 >&2
        tail -5 "$log" >&2
        echo "the build failed; the whole output is in $log" >&2
        exit 1
    fi
}

# step NAME COMMAND [ARGUMENT…]: runs a command, records its time and exit code, and returns the exit code.
steps=$PWD/build/steps
step() {
    local name=$1 begun=$((SECONDS - started)) code=0 cpu
    shift
    say "$name"
    mkdir -p build
    # In a subshell `times` counts only this command.
    ( set +e; "$@"; code=$?; times > "$steps.$BASHPID.times"; exit $code ) &
    local pid=$!
    wait $pid || code=$?
    cpu=$(awk -F'[ms ]+' 'NR == 2 { printf "%d", $1 * 60 + $2 + $3 * 60 + $4 }' "$steps.$pid.times" 2> /dev/null)
    rm -f "$steps.$pid.times"
    printf '%s\t%d\t%d\t%d\t%d\n' "$name" $begun $((SECONDS - started - begun)) "${cpu:-0}" $code >> "$steps"
    [ $code = 0 ] || say "FAILED: $name"
    return $code
}

# show_steps: prints a table of the steps in the order of their start. Steps that ran in parallel overlap.
show_steps() {
    echo
    printf '%-34s %8s %8s %8s\n' step began took "CPU time"
    sort -t"$(printf '\t')" -k2,2n "$steps" | awk -F'\t' '
        function clock(seconds) { return sprintf("%d:%02d", seconds / 60, seconds % 60) }
        { printf "%-34s %8s %8s %8s%s\n", $1, clock($2), clock($3), clock($4), $5 ? "  FAILED" : ""; sum += $4 }
        END { printf "%-34s %8s %8s %8s\n", "all", "", "", clock(sum) }'
    echo
}

# failed_steps: prints the names of the failed steps, one on each line.
failed_steps() { [ ! -e "$steps" ] || awk -F'\t' '$5 { print $1 }' "$steps"; }
