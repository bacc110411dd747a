# shellcheck shell=bash
# Functions of run, test, .ci/run and the scripts beside it. Source it with the working directory at the root of the tree.

say() { printf '%s\n' "$*" >&2; }

fail() {
  local -r status=$1
  shift
  say "${0##*/}: $*"
  exit "$status"
}

# Prints the number of parallel compilers: the number of cores, or fewer if memory is short (an instrumented test file
# takes over a gigabyte).
jobs_at_once() {
  local cores memory
  cores=$(nproc)
  memory=$(awk '/^MemAvailable:/ { print int($2 / 1572864) }' /proc/meminfo)
  if [ "$memory" -lt "$cores" ]; then cores=$memory; fi
  printf '%s\n' "$((cores > 0 ? cores : 1))"
}

configure() {
  local -r preset=$1 tree=build/$1
  # Ninja configures again if a CMake file has changed, but does not know the presets.
  if [ ! -e "$tree/build.ninja" ] || [ CMakePresets.json -nt "$tree/build.ninja" ]; then
    cmake --preset "$preset" && touch "$tree/build.ninja"
  fi
}

# build PRESET [TARGET...]: configures if needed and builds. Two commands on one tree wait for each other.
build() {
  local -r preset=$1
  shift
  mkdir -p build
  if [ $# -gt 0 ]; then set -- --target "$@"; fi
  # Uses && because errexit is off inside a condition.
  (flock 9 && configure "$preset" && cmake --build --preset "$preset" --parallel "$(jobs_at_once)" "$@") \
    9>"build/$preset.lock"
}

# quietly LOG COMMAND...: prints the command's output on standard error, but only if it fails.
quietly() {
  local -r log=$1
  shift
  mkdir -p "$(dirname "$log")"
  if "$@" >"$log" 2>&1; then return; fi
  cat "$log" >&2
  return 1
}

# Prints the C++ files of the tree, each followed by NUL. Does not use git because an unpacked archive has none.
sources() {
  find bench examples fuzz host services tools \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z
}

# Prints the shell scripts of the tree, each followed by NUL.
shell_scripts() {
  {
    printf '%s\0' run test
    grep -rlZ --binary-files=without-match -E '^#!.*\bbash\b|^# shellcheck shell=bash' .ci scripts services examples tools docs
  } | sort -zu
}

# Prints the lines of scripts/windows-left-out without comments: tests, sources and folders.
left_out_on_windows() { sed -e 's/#.*//' -e 's/[[:space:]]*$//' -e '/^$/d' scripts/windows-left-out; }

# Prints the tests that are left out of a program for Windows, one a line.
tests_left_out_on_windows() { left_out_on_windows | grep -vE '(\.cpp|/)$'; }
