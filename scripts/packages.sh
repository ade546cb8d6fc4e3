# Installs the Debian packages named as arguments that are missing, one caller at a time. Sourced by the
# scripts beside it.

# What the programs beside mardle are built with.
tool_libraries=(libcli11-dev libicu-dev nlohmann-json3-dev zlib1g-dev libzip-dev libstemmer-dev nettle-dev)

install_packages() {
  local missing=()
  local package
  for package in "$@"; do
    dpkg -s "$package" > /dev/null 2>&1 || missing+=("$package")
  done
  if [ ${#missing[@]} -eq 0 ]; then
    echo "All packages are installed: $*"
    return
  fi
  local as_root=(flock "${BASH_SOURCE[0]}")
  [ "$(id -u)" -eq 0 ] || as_root+=(sudo)
  echo "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}"
}
