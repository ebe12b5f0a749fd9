#!/usr/bin/env bash
# clang-tidy over the sources of the dev build. A file is looked at again only when it, a header of
# this project that it includes, or .clang-tidy has changed: build/tidy/ holds a stamp for each
# state that was found clean.
set -euo pipefail
cd "$(dirname "$0")/.."
stamps=build/tidy
mkdir -p "$stamps"

# One line a source: the source, then the project's headers that it includes.
dependencies() {
  ninja -C build/dev -t deps | awk -v root="$PWD/" '
    /^[^ ].*: #deps/ { flush(); next }
    /^ / {
      path = $1
      if (index(path, "../../") == 1) path = root substr(path, 7)
      if (index(path, root) != 1) next
      path = substr(path, length(root) + 1)
      if (path ~ /^build\//) next
      if (path ~ /\.cpp$/) source = path; else headers = headers " " path
    }
    function flush() { if (source != "") print source headers; source = ""; headers = "" }
    END { flush() }' | sort -u
}

pending=()
while read -r source headers; do
  [[ -f $source ]] || continue
  # shellcheck disable=SC2086
  key=$(cat .clang-tidy "$source" $headers 2>/dev/null | sha256sum | cut -c1-32)
  [[ -f $stamps/$key ]] || pending+=("$source" "$stamps/$key")
done < <(dependencies)

echo "clang-tidy: $((${#pending[@]} / 2)) files" >&2
((${#pending[@]} == 0)) && exit 0
printf '%s\0' "${pending[@]}" | xargs -0 -n 2 -P "$(nproc)" bash -c '
  if output=$(clang-tidy -p build/dev --quiet --extra-arg=-Wno-unknown-warning-option "$0" 2>/dev/null); then
    touch "$1"
  else
    printf "%s\n" "$output"
    exit 1
  fi'
