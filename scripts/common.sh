# Shared by the scripts beside it, which source it. Sets root (of the tree) and jobs, and goes there.
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

# Installs what is missing, or says what to do.
install_missing () { # <purpose>...
  local missing as_root="" log
  missing=$(missing_packages "$@" | xargs)
  [ -n "$missing" ] || return 0
  if ! command -v apt-get >/dev/null; then
    echo "This needs Debian packages, and there is no apt-get here: $missing" >&2
    exit 1
  fi
  if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "Packages are missing, and there is neither root nor sudo to install them. As root, run:" >&2
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

# The files that belong to the tree, with NUL behind each; what a build leaves behind does not.
tracked_files () {
  if git -c safe.directory='*' rev-parse --git-dir >/dev/null 2>&1; then
    git -c safe.directory='*' ls-files -z
  else
    find . -path ./build -prune -o -type f -printf '%P\0'
  fi
}
