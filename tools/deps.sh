# Sourced by the set-up scripts: installs the Debian packages they need,
# skipping the package manager when everything is already there.
need_packages() {
    local missing=()
    for pkg in "$@"; do
        dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed" ||
            missing+=("$pkg")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    echo "installing: ${missing[*]}"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
        "${missing[@]}" >/dev/null
}

# The packages every build of this repository needs.
BUILD_PACKAGES=(cmake ninja-build g++ make pkg-config nlohmann-json3-dev)
