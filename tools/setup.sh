# Shared by ./run, ./test, ./bench and .ci/run: installs Debian packages and builds presets.
# Sourced, not run; `root` is the project's folder.

say() { echo "glintar: $*" >&2; }

# What is wanted and what this machine has, in one line.
packages_state() {
  echo "$(cksum <"$root/packaging/debian-packages.txt")" "$(stat -c %Y /var/lib/dpkg/status 2>/dev/null)" \
    "$(cat /etc/machine-id 2>/dev/null)"
}

# install_packages KIND...: installs what packaging/debian-packages.txt lists for these kinds, if it is missing.
# A stamp that holds the list's checksum and the state of this machine's packages makes the common case cost nothing.
install_packages() {
  local list="$root/packaging/debian-packages.txt" stamp sum missing kinds sudo=""
  kinds=$(IFS='|'; echo "$*")
  stamp="$root/build/.packages-${kinds//|/-}"
  sum=$(packages_state)
  [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$sum" ] && return 0
  # shellcheck disable=SC2046
  missing=$(awk -v kinds="^($kinds)\$" '!/^#/ && $2 ~ kinds { print $1 }' "$list" |
    while read -r name; do
      [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || echo "$name"
    done)
  if [ -n "$missing" ]; then
    [ "$(id -u)" -eq 0 ] || sudo=sudo
    if [ -n "$sudo" ] && ! command -v sudo >/dev/null; then
      say "these packages are missing, and there is neither root nor sudo to install them:" $missing
      return 1
    fi
    say "installing" $missing
    $sudo apt-get update -q >&2 &&
      $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing >&2 || return 1
  fi
  mkdir -p "$root/build" && packages_state >"$stamp"
}

# build_preset PRESET [TARGET...]: configures the preset once and builds what is out of date, quietly when nothing is.
build_preset() {
  local preset=$1 tree log
  shift
  tree="$root/build/$preset"
  log="$tree.log"
  mkdir -p "$root/build"
  if [ ! -f "$tree/build.ninja" ]; then
    say "configuring build/$preset"
    (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 || { cat "$log" >&2; return 1; }
  fi
  if ninja -C "$tree" -n "$@" 2>/dev/null | grep -q 'no work to do'; then
    return 0
  fi
  say "building build/$preset"
  if [ -t 2 ]; then
    ninja -C "$tree" "$@" >&2
  else
    ninja -C "$tree" "$@" >"$log" 2>&1 || { tail -n 200 "$log" >&2; return 1; }
  fi
}
