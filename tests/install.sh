# Makes the packages and tries what they hold. Sourced by ./test; `root` is the project's folder.

. "$root/tools/release.sh"
packages="$root/build/release/packages"

# check WHAT COMMAND...: the command succeeds, or WHAT has failed.
check() {
  local what=$1
  shift
  "$@" >"$scratch/check.log" 2>&1 && return 0
  say "failed: $what"
  cat "$scratch/check.log" >&2
  failed=1
}

make_packages() {
  (cd "$root" && cmake --preset release) >/dev/null || return 1  # dates are the newest commit's
  build_preset release || return 1
  say "making the packages"
  rm -rf "$packages"
  (cd "$root/build/release" && cpack) >"$scratch/cpack.log" 2>&1 || { cat "$scratch/cpack.log" >&2; return 1; }
}

have_the_same_bytes() {
  sha256sum "$packages"/*.deb >"$scratch/sums" && sleep 1 && make_packages && sha256sum -c "$scratch/sums"
}

# Nothing graphical may come with the package for terminals.
has_no_window() { ! dpkg-deb -f "$packages"/glintar_*.deb Depends | grep -iE 'qt6(gui|widgets|svg)|libx'; }

# try_prefix PREFIX: the programs in it run, know nothing of this folder, and leave nothing at home.
try_prefix() {
  local home="$scratch/home" run
  mkdir -p "$home"
  run="env -i HOME=$home PATH=/usr/bin:/bin"
  check "$1: line --once --demo" sh -c "$run $1/bin/glintar line --once --demo | grep '^\[simulated\] BTC [0-9]'"
  check "$1: glintar-desktop --version" sh -c "$run $1/bin/glintar-desktop --version | grep -x 'glintar $version'"
  check "$1: files at home" test -z "$(find "$home" -type f)"
  check "$1: this folder's name in it" sh -c "! grep -rl '$root' $1"
}

# The words that --help names: commands with what follows them, and options without their dashes.
words_of_help() {
  "$1" --help | awk '/^(Usage:|      ) glintar/ { gsub(/[][|]/, " "); for (i = 2; i <= NF; i++) print $i }' |
    grep -xE -- '(--)?[a-z]+' | grep -vx glintar | sed 's/^--//' | sort -u
}

# try_manual_and_completions PREFIX
try_manual_and_completions() {
  local glintar="$1/bin/glintar" share="$1/share" word file zsh
  zsh=$(find "$share/zsh" -name _glintar)
  check "manual: troff's warnings" sh -c "! man --warnings -l $share/man/man1/glintar.1.gz 2>&1 >/dev/null | grep ."
  check "manual: version" sh -c "zcat $share/man/man1/glintar-desktop.1.gz | grep -F 'Glintar $version'"
  MANWIDTH=1000 man -E UTF-8 -l "$share/man/man1/glintar.1.gz" >"$scratch/page"
  while read -r word; do
    check "manual: $word" grep -F -e "$word" "$scratch/page"
  done < <("$glintar" --help | sed -E 's/^Usage://; s/^ +//; s/  +/\n/' | grep .)
  for file in "$share/bash-completion/completions/glintar" "$share/fish/vendor_completions.d/glintar.fish" "$zsh"; do
    for word in $(words_of_help "$glintar"); do
      check "completions: $word in $file" grep -qwF -e "$word" "$file"
    done
  done
  check "completions: zsh" zsh -n "$zsh"
  check "completions: bash" bash -c '. "$2" && PATH=$1:$PATH COMP_CWORD=3 COMP_WORDS=(glintar source use b) &&
    _glintar glintar b use && [[ " ${COMPREPLY[*]} " = *" binance "* ]]' - "$1/bin" "$share/bash-completion/completions/glintar"
  check "completions: fish" env HOME="$scratch" PATH="$1/bin:$PATH" fish --no-config -c \
    "source $share/fish/vendor_completions.d/glintar.fish; complete -C 'glintar source use b' | grep '^binance'"
}

# Everything that README and guide show, as it stands there.
try_documents() { python3 "$root/tests/docs.py" "$1" "$root/README.md" "$root/docs/guide.md"; }

test_docs() {
  local scratch
  scratch=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf '$scratch'" EXIT
  build_preset release && cmake --install "$root/build/release" --prefix "$scratch" >/dev/null && try_documents "$scratch"
}

test_install() {
  local failed=0 scratch version package
  scratch=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf '$scratch'" EXIT
  make_packages || return 1
  version=$("$root/build/release/glintar" --version | cut -d' ' -f2)
  check "the same packages again" have_the_same_bytes
  check "lintian" lintian --allow-root --fail-on error,warning "$packages"/*.deb
  check "a window in the package for terminals" has_no_window
  for package in "$packages"/*.deb; do
    check "$package: version" test "$(dpkg-deb -f "$package" Version)" = "$version"
    dpkg-deb -x "$package" "$scratch/packages"
  done
  check "install" env DESTDIR="$scratch/root" cmake --install "$root/build/release" --prefix /opt/glintar
  try_prefix "$scratch/root/opt/glintar"
  try_prefix "$scratch/packages/usr"
  try_manual_and_completions "$scratch/packages/usr"
  check "desktop entry" desktop-file-validate --warn-kde "$scratch"/packages/usr/share/applications/*.desktop
  check "metainfo" appstreamcli validate --no-net "$scratch"/packages/usr/share/metainfo/*.xml
  check "metainfo: version" grep -F "version=\"$version\"" "$scratch"/packages/usr/share/metainfo/*.xml
  check "release: version" test "$(project_version)" = "$version"
  check "documents" try_documents "$scratch/root/opt/glintar"
  [ "$failed" -eq 0 ] && say "the packages are in ${packages#"$root/"}"
  return "$failed"
}
