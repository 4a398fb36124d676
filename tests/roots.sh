# Installs, upgrades and removes the packages in bare Debian systems, as a new user would. Sourced by ./test; wants root.

# in_root DIR USER: runs standard input there, with a screen at $DISPLAY; nothing that it starts stays.
in_root() {
  unshare --mount --pid --fork --kill-child bash -ec '
    mount -t proc proc "$0/proc" && mkdir -p "$0/tmp/.X11-unix" && mount --bind /tmp/.X11-unix "$0/tmp/.X11-unix"
    exec chroot "$0" su - "$1" -c "export DISPLAY=$DISPLAY LANG=C.UTF-8; bash -exs"' "$1" "$2"
}

# make_root SUITE DIR PACKAGE...: Debian's smallest system that has apt, with a user who may become root.
make_root() {
  local suite=$1 dir=$2 IFS=,
  shift 2
  mmdebstrap --quiet --variant=apt --include="ca-certificates,passwd,sudo${*:+,$*}" "$suite" "$dir" || return 1
  chroot "$dir" useradd --create-home --shell /bin/bash ada
  echo "127.0.0.1 localhost $(hostname)" >"$dir/etc/hosts"
  echo 'ada ALL=(ALL) NOPASSWD: ALL' >"$dir/etc/sudoers.d/ada"
  echo 'APT::Get::Assume-Yes "true"; APT::Install-Recommends "false";' >"$dir/etc/apt/apt.conf.d/90tests"
}

# What README says to do, from a clone to the packages.
build_as_new_user() {
  git clone --quiet "$root" "$1/home/ada/glintar" && chroot "$1" chown -R ada: /home/ada/glintar
  in_root "$1" ada <<'EOF2'
    cd glintar
    ./run line --once --demo | grep '^\[simulated\] BTC [0-9]'
    sudo apt-get install -q dpkg-dev file
    cmake --build build/release
    cd build/release && cpack
EOF2
}

# The same packages under a lower number, so that there is something to upgrade from.
age() {
  local package tree="$1/old-tree"
  mkdir -p "$1/old"
  for package in "$1"/new/*.deb; do
    dpkg-deb -R "$package" "$tree"
    sed -i "s/$version/0.0.1/" "$tree/DEBIAN/control"
    dpkg-deb --root-owner-group -b "$tree" "$1/old/$(basename "$package")"
    rm -rf "$tree"
  done
}

# Installs with README's own command, upgrades below running programs, removes.
use_as_new_user() {
  in_root "$1" ada <<EOF2
    mkdir -p build/release && cd build/release && ln -sfn /packages/old packages && cd ../..
    $install_command
    glintar --version | grep -x 'glintar $version'
    glintar coins add eth
    glintar line --demo >line.txt 2>line.log & line=\$!
    glintar --demo >desktop.log 2>&1 & desktop=\$!
    for i in \$(seq 60); do grep -q BTC line.txt && grep -q simulated desktop.log && break; sleep 1; done
    ln -sfn /packages/new build/release/packages
    $install_command
    sleep 3
    kill -USR1 \$line
    for i in \$(seq 60); do [ \$(grep -c BTC line.txt) -ge 2 ] && break; sleep 1; done
    [ \$(grep -c BTC line.txt) -ge 2 ]
    kill \$desktop && wait \$desktop
    kill \$line && wait \$line
    dpkg-query -W -f '\${Version}\n' glintar glintar-desktop | grep -cx '$version' | grep -x 2
    glintar line --once --demo | grep '^\[simulated\] BTC [0-9]'
    sudo apt-get remove glintar glintar-desktop
    [ "\$(sudo find / -xdev -iname '*glintar*' -not -path '/home/*' -not -path '/packages/*')" = "" ]
    [ "\$(find .config .local .cache -name '*.conf' -o -name '*.json' 2>/dev/null)" = .config/glintar/glintar.conf ]
EOF2
}

test_roots() {
  local suite place install_command failed=0 scratch version screen
  scratch=$(mktemp -d)
  version=$(project_version)
  install_command=$(awk '/<!-- try: roots -->/ { on = 1; next } /^```$/ { on = 0 } on && !/^```/' "$root/README.md")
  Xvfb :83 -ac -screen 0 1280x800x24 >/dev/null 2>&1 &
  screen=$!
  # shellcheck disable=SC2064
  trap "kill $screen; rm -rf --one-file-system '$scratch'" EXIT
  export DISPLAY=:83
  for suite in ${1:-bookworm trixie}; do
    place="$scratch/$suite"
    say "$suite: building from a clone, then installing, upgrading and removing"
    mkdir -p "$place" && make_root "$suite" "$place/build" git && make_root "$suite" "$place/use" || return 1
    check "$suite: a clone" build_as_new_user "$place/build"
    mkdir -p "$place/use/packages/new"
    cp "$place"/build/home/ada/glintar/build/release/packages/*.deb "$place/use/packages/new/" || return 1
    check "$suite: an older version" age "$place/use/packages"
    check "$suite: installed, upgraded, removed" use_as_new_user "$place/use"
    rm -rf --one-file-system "$place"
  done
  return "$failed"
}
