# shellcheck shell=sh
# Sourced by the other scripts: goes to the project's root and installs the Debian packages that are missing.

cd "$(dirname "$0")/.." || exit 2

# need_packages PACKAGE...: does nothing, and touches no network, where all of them are there already.
need_packages() {
  missing=
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  echo "installing:$missing"
  as_root=
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || { echo "not root and no sudo: please install$missing" >&2; exit 2; }
    as_root=sudo
  fi
  log=$(mktemp)
  # shellcheck disable=SC2086  # lists of words
  if ! { $as_root apt-get update && $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    echo "could not install:$missing" >&2
    exit 2
  fi
  rm -f "$log"
}

# At most as many jobs as cores, and no more than memory allows at a gigabyte each.
job_count() {
  cores=$(nproc)
  gigabytes=$(awk '/^MemAvailable/ { print int($2 / 1048576) }' /proc/meminfo)
  [ "$gigabytes" -ge 1 ] || gigabytes=1
  [ "$cores" -le "$gigabytes" ] && echo "$cores" || echo "$gigabytes"
}
