# Installs the Debian packages named as arguments that are missing. Sourced by the scripts beside it.

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
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}"
}
