# shellcheck shell=bash
# Common functions of the scripts; to be sourced. Sets root, the top folder of the clone.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)

fail() {
    echo "$*" >&2
    exit 1
}

# read_lists LIST…: the packages of scripts/packages/LIST.txt, one a line.
read_lists() {
    local list
    for list in "$@"; do
        sed 's/#.*//; s/[[:space:]]//g; /^$/d' "$root/scripts/packages/$list.txt"
    done | sort -u
}

# require_packages LIST…: installs what is missing of the lists. Needs root or sudo only then.
require_packages() {
    local as_root=(env) wanted present missing log=$root/build/apt.log
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "Not a Debian system: nothing is installed; needed is what scripts/packages lists" \
            "in ${*/%/.txt}." >&2
        return
    fi
    wanted=$(read_lists "$@")
    # shellcheck disable=SC2086
    present=$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' $wanted 2>/dev/null |
        sed -n 's/ installed$//p' | sort -u) || true
    missing=$(comm -23 <(echo "$wanted") <(echo "$present") | paste -sd ' ')
    [[ -n $missing ]] || return 0

    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            fail "These packages are missing, and installing them needs root or sudo: $missing"
        as_root=(sudo env)
    fi
    echo "Installing: $missing"
    mkdir -p "$root/build"
    # shellcheck disable=SC2086
    if ! { "${as_root[@]}" apt-get update &&
        "${as_root[@]}" DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends $missing; } </dev/null &>"$log"; then
        cat "$log" >&2
        fail "apt-get could not install: $missing"
    fi
}

# require_breakpad: the sources of google_breakpad's client library, and its tools for the tests, from
# the npm package that carries both; once, unless the system has the library.
require_breakpad() (
    version=0.26.0
    sum=d4227a9100ddd546b05e09a1b77a472b32cfb993dbf31ad9960acdf87ebfdf3296b1429aa53485d8513b8363638bf367562f863ac57033cb26da677a06325482
    address=https://registry.npmjs.org/minidump/-/minidump-$version.tgz
    folder=$root/build/breakpad-$version
    [[ ! -e $folder ]] || exit 0
    ! pkg-config --exists breakpad-client || exit 0

    echo "Fetching google_breakpad"
    mkdir -p "$root/build"
    work=$(mktemp -d "$root/build/breakpad-XXXXXX")
    trap 'rm -rf "$work"' EXIT
    curl --fail --silent --show-error --location --max-time 300 \
        --output "$work/package.tgz" "$address" &&
        sha512sum --check --quiet <<<"$sum  $work/package.tgz" &&
        tar -xzf "$work/package.tgz" -C "$work" --no-same-owner \
            package/deps package/bin/linux-x64 ||
        fail "google_breakpad could not be had from $address."
    # Another may have been faster.
    mv -T "$work/package" "$folder" 2>/dev/null || [[ -e $folder ]] ||
        fail "google_breakpad could not be put into $folder."
)

# build PRESET: configures when the presets or the system's packages changed, and builds. Shows its
# output until it succeeded once; later only when it fails.
build() {
    local preset=$1 folder=$root/build/$1
    require_breakpad || exit
    if [[ ! -e $folder/built ]]; then
        run_build "$preset" || fail "The build of the preset $preset failed."
        touch "$folder/built"
    elif ! run_build "$preset" &>"$folder/build.log"; then
        cat "$folder/build.log" >&2
        fail "The build of the preset $preset failed."
    fi
}

run_build() (
    ninja=build/$1/build.ninja
    cd "$root" || return
    if [[ ! $ninja -nt CMakePresets.json || ! $ninja -nt /var/lib/dpkg/status ]]; then
        cmake --preset "$1" || return
    fi
    cmake --build --preset "$1"
)

# with_display COMMAND…: runs it (a program or a function) under an X server of its own and returns
# its status. Whatever it started ends with it, also on a signal. The screen has the size
# display_size, else 1280x720.
with_display() {
    local number status=0
    display_job='' display_server='' display_log=$(mktemp)
    trap end_display EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM HUP

    set -m # a process group for each job
    coproc exec setpriv --pdeathsig TERM \
        Xvfb -displayfd 1 -screen 0 "${display_size:-1280x720}x24" -nolisten tcp 2>"$display_log"
    display_server=$COPROC_PID
    if ! read -r -t 30 number <&"${COPROC[0]}"; then
        cat "$display_log" >&2
        fail "The X server Xvfb does not start."
    fi
    DISPLAY=:$number WAYLAND_DISPLAY='' QT_QPA_PLATFORM=xcb "$@" </dev/null &
    display_job=$!
    set +m
    wait "$display_job" || status=$?

    end_display
    trap - EXIT INT TERM HUP
    return "$status"
}

end_display() {
    trap '' INT TERM HUP
    [[ -z $display_job ]] || end_group "$display_job"
    [[ -z $display_server ]] || end_group "$display_server"
    rm -f "$display_log"
}

# end_group ID: ends a process group, with force after five seconds.
end_group() {
    local tries=50
    kill -TERM -- "-$1" 2>/dev/null || return 0
    while ((tries-- > 0)); do
        sleep 0.1
        kill -0 -- "-$1" 2>/dev/null || return 0
    done
    kill -KILL -- "-$1" 2>/dev/null || true
}
