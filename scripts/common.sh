# Sourced by the other scripts. Sets root, the folder of the tree, and jobs, and changes to root.
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
jobs=$(nproc)

missing_packages () { # <purpose>...
  local purpose package
  for purpose; do
    sed -n "s/^$purpose //p" scripts/packages
  done | while read -r package; do
    dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || echo "$package"
  done
}

# Installs the packages that are missing, or prints how to.
install_missing () { # <purpose>...
  local missing as_root="" log
  missing=$(missing_packages "$@" | xargs)
  [ -n "$missing" ] || return 0
  if ! command -v apt-get >/dev/null; then
    echo "These Debian packages are missing, and there is no apt-get to install them: $missing" >&2
    exit 1
  fi
  if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "Packages are missing. This is not root and there is no sudo. As root, run:" >&2
      echo "  apt-get update && apt-get install --no-install-recommends $missing" >&2
      exit 1
    fi
    as_root="sudo --preserve-env=DEBIAN_FRONTEND"
  fi
  echo "installing: $missing"
  log=$(mktemp)
  # shellcheck disable=SC2086
  if ! { $as_root apt-get -qq update && $as_root apt-get -qq install -y --no-install-recommends $missing; } \
    </dev/null >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "The packages could not be installed." >&2
    exit 1
  fi
  rm -f "$log"
}

# Prints the files of the tree, each followed by NUL, without those that a build makes.
tracked_files () {
  if git -c safe.directory='*' rev-parse --git-dir >/dev/null 2>&1; then
    git -c safe.directory='*' ls-files -z
  else
    find . -path ./build -prune -o -type f -printf '%P\0'
  fi
}
