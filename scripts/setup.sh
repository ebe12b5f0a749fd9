# Sourced by ./run, ./test and ./bench: environment, packages, build.

cd "$(dirname "${BASH_SOURCE[0]}")/.."
export LANG=C.UTF-8
jobs=$(nproc)

say() { printf '\n== %s\n' "$*" >&2; }

# Installs what packages.txt names and the machine lacks. Costs a moment when nothing is missing.
install_packages() {
  local wanted missing=() name state
  mapfile -t wanted < <(grep -vE '^[[:space:]]*(#|$)' packages.txt)
  for name in "${wanted[@]}"; do
    state=$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null || true)
    [[ $state == *installed* && $state != *not-installed* ]] || missing+=("$name")
  done
  ((${#missing[@]} == 0)) && return
  say "installing: ${missing[*]}"
  local as_root=()
  ((EUID == 0)) || as_root=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${as_root[@]}" apt-get update -qq >&2
  "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2 </dev/null
}

# build PRESET [TARGET...]: configures where needed (a changed folder is noticed) and builds.
build() {
  local preset=$1
  shift
  say "building: $preset $*"
  [[ -f build/$preset/build.ninja ]] || cmake --preset "$preset" >&2
  cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"} >&2
}
