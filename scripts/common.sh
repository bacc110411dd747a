# shellcheck shell=bash
# What run, test and .ci/run share. Sourced with the working directory at the root of the tree.

say() { printf '%s\n' "$*" >&2; }

fail() {
  local -r status=$1
  shift
  say "${0##*/}: $*"
  exit "$status"
}

# How many compilers at once: the cores, fewer where memory is short (an instrumented test file takes over a gigabyte).
jobs_at_once() {
  local cores memory
  cores=$(nproc)
  memory=$(awk '/^MemAvailable:/ { print int($2 / 1572864) }' /proc/meminfo)
  if [ "$memory" -lt "$cores" ]; then cores=$memory; fi
  printf '%s\n' "$((cores > 0 ? cores : 1))"
}

configure() {
  local -r preset=$1 tree=build/$1
  # Ninja configures anew by itself when a CMake file changed, but knows nothing of the presets.
  if [ ! -e "$tree/build.ninja" ] || [ CMakePresets.json -nt "$tree/build.ninja" ]; then
    cmake --preset "$preset" && touch "$tree/build.ninja"
  fi
}

# build PRESET [TARGET...]: configures where needed and builds. Two commands on one tree wait for each other.
build() {
  local -r preset=$1
  shift
  mkdir -p build
  if [ $# -gt 0 ]; then set -- --target "$@"; fi
  # Chained, not left to errexit, which is off inside a condition.
  (flock 9 && configure "$preset" && cmake --build --preset "$preset" --parallel "$(jobs_at_once)" "$@") \
    9>"build/$preset.lock"
}

# quietly LOG COMMAND...: shows what the command printed only when it fails, on standard error.
quietly() {
  local -r log=$1
  shift
  mkdir -p "$(dirname "$log")"
  if "$@" >"$log" 2>&1; then return; fi
  cat "$log" >&2
  return 1
}

# The C++ files of the tree, NUL after each. Not asked of git: an unpacked archive has none.
sources() {
  find bench examples fuzz host services tools \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z
}

# The shell scripts of the tree, NUL after each.
shell_scripts() {
  {
    printf '%s\0' run test
    grep -rlZ --binary-files=without-match -E '^#!.*\bbash\b|^# shellcheck shell=bash' .ci scripts services examples tools docs
  } | sort -zu
}
