# Functions that build, run tests and count, for scripts/test and scripts/soak.
total_passed=0
total_failed=0

count () { # <name> <passed> <failed> <since>
  total_passed=$((total_passed + $2))
  total_failed=$((total_failed + $3))
  printf '%-10s %5d passed, %d failed  (%d s)\n' "$1" "$2" "$3" $((SECONDS - $4))
}

# Runs a command as one test. Its output is shown when it fails.
check () { # <what> <command>...
  local what=$1 log
  shift
  log=$(mktemp)
  if "$@" >"$log" 2>&1 </dev/null; then
    step_passed=$((step_passed + 1))
  else
    step_failed=$((step_failed + 1))
    echo "FAILED: $what"
    tail -n "${SHOW_LINES:-60}" "$log"
  fi
  rm -f "$log"
}

# Runs a command that the tests need. It is no test itself, so it is counted only when it fails.
need () { # <what> <command>...
  local before=$step_passed
  check "$@"
  step_passed=$before
}

build () { # <preset> <argument of cmake>...
  local preset=$1
  shift
  cmake --preset "$preset" "$@" && ninja -C "build/$preset" -j "$jobs"
}

show_failures () { # <log folder>
  local file failed
  for file in "$1"/*.count; do
    read -r _ failed <"$file"
    [ "$failed" = 0 ] && continue
    echo "FAILED: ${file%.count}.log"
    grep -avE '^\[       OK \]|^\[ RUN|^\[---' "${file%.count}.log" | tail -n "${SHOW_LINES:-60}"
  done
}

# Runs every test program of a build, in parts at the same time: most of their time is waiting.
run_programs () { # <preset> <launcher>
  local logs=build/test-logs/$1 program parts part passed failed
  rm -rf "$logs"
  mkdir -p "$logs"
  for program in build/"$1"/bin/test_* build/"$1"/bin/alone_*; do
    [ -x "$program" ] || continue
    parts=${TEST_PARTS:-4}
    # These test what a process does first, so one process runs all of their cases.
    case $program in */alone_*) parts=1 ;; esac
    for ((part = 0; part < parts; ++part)); do
      echo "$logs $2 $program $part $parts"
    done
  done | xargs -P $((2 * jobs)) -L 1 --process-slot-var=SLOT scripts/run-test-program
  show_failures "$logs"
  read -r passed failed < <(cat "$logs"/*.count | awk '{p += $1; f += $2} END {print p + 0, f + 0}')
  step_passed=$((step_passed + passed))
  step_failed=$((step_failed + failed))
  if [ "$passed" = 0 ]; then
    echo "FAILED: no test ran"
    step_failed=$((step_failed + 1))
  fi
}

build_and_run () { # <preset> <launcher> <argument of cmake>...
  local preset=$1 launcher=$2
  shift 2
  need "build of $preset" build "$preset" -DORVA_TESTS=ON "$@"
  [ "$step_failed" = 0 ] && run_programs "$preset" "$launcher"
}

# Programs that run at the same time need a Wine prefix each. Makes one and copies it.
prepare_wine () {
  local slot
  rm -rf "$WINE_PREFIXES"
  mkdir -p "$WINE_PREFIXES"
  WINEDEBUG=-all WINEPREFIX=$WINE_PREFIXES/first timeout 300 wineboot -i || return 1
  WINEPREFIX=$WINE_PREFIXES/first wineserver -w
  for ((slot = 0; slot < 2 * jobs; ++slot)); do
    cp -a "$WINE_PREFIXES/first" "$WINE_PREFIXES/$slot" || return 1
  done
}

leave_wine () {
  local prefix
  for prefix in "$WINE_PREFIXES"/*; do
    WINEPREFIX=$prefix wineserver -k 2>/dev/null
  done
}

launcher_of_tsan () {
  if setarch -R true 2>/dev/null; then echo fixed; else echo none; fi
}

run_fuzz_targets () {
  local program
  for program in build/fuzz/bin/fuzz_*; do
    [ -x "$program" ] && check "$(basename "$program")" fuzz_for_a_while "$program"
  done
}

# New inputs are written to a folder in the build. The corpus of the tree is only read.
fuzz_for_a_while () { # <program>
  local name found corpus
  name=$(basename "$1")
  found=build/fuzz/found/$name
  corpus=fuzz/corpus/${name#fuzz_}
  mkdir -p "$found"
  [ -d "$corpus" ] || corpus=
  # shellcheck disable=SC2086
  "$1" -max_total_time="${FUZZ_SECONDS:-5}" -timeout=20 -artifact_prefix="$found/" "$found" $corpus
}

run_step () {
  local since=$SECONDS
  step_passed=0
  step_failed=0
  "step_$1"
  count "$1" $step_passed $step_failed "$since"
}

# Prints the last line. Fails if anything failed.
print_total () {
  echo "$total_passed passed, $total_failed failed"
  [ "$total_failed" = 0 ]
}
