# Sourced by ./run and ./test: installs what packages.txt names and this machine lacks, then builds a preset.

missing_packages() {
    sed -e 's/#.*//' -e '/^[[:space:]]*$/d' packages.txt | while read -r package; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || printf '%s ' "$package"
    done
}

install_packages() {
    local stamp=build/packages.stamp missing as_root=()
    [ "$stamp" -nt packages.txt ] && return 0
    missing=$(missing_packages)
    if [ -n "$missing" ]; then
        if [ "$(id -u)" -ne 0 ]; then
            if ! command -v sudo >/dev/null; then
                echo "These Debian packages are missing, and there is no sudo to install them: $missing" >&2
                return 1
            fi
            as_root=(sudo)
        fi
        echo "Installing $missing" >&2
        "${as_root[@]}" apt-get update -qq >&2 || true
        # shellcheck disable=SC2086  # the list is meant to be split
        if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends $missing >&2; then
            echo "These Debian packages could not be installed: $missing" >&2
            return 1
        fi
    fi
    mkdir -p build && touch "$stamp"
}

# build PRESET [TARGET...]: quiet when all goes well, the whole log when not.
build() {
    local preset=$1 log=build/$1.log
    shift
    mkdir -p build
    [ -e "build/$preset/build.ninja" ] || echo "Building; this takes some minutes the first time" >&2
    if [ ! -e "build/$preset/build.ninja" ]; then
        cmake --preset "$preset" -DTARNOVEL_BATCHES=ON >"$log" 2>&1 || { cat "$log" >&2; return 1; }
    fi
    cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { cat "$log" >&2; return 1; }
}
