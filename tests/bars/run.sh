#!/usr/bin/env bash
# Starts each text bar with its block of docs/text-bars.md and looks whether a price is seen. The market is simulated and
# the first coin is called "A&B <c>". Usage: run.sh BUILD_FOLDER [PICTURE_FOLDER]
#                                            run.sh BUILD_FOLDER cost MINUTES   what the module costs Waybar, as a row of ./bench
set -u
here=$(cd "$(dirname "$0")" && pwd)
guide="$here/../../docs/text-bars.md"
build=$(cd "$1" && pwd)
pictures=${2:-}
# sway refuses to run as root.
if [ "$(id -u)" -eq 0 ]; then
  export GLINTAR_BARS=$(mktemp -d /tmp/glintar-bars-XXXXXX)
  mkdir "$GLINTAR_BARS/bin" "$GLINTAR_BARS/out"
  cp -L "$build/glintar" "$build/glintar-demo-market" "$GLINTAR_BARS/bin"
  cp -rL "$build/resources" "$GLINTAR_BARS/bin"
  cp "$guide" "$0" "$GLINTAR_BARS"
  chmod -R a+rX "$GLINTAR_BARS" && chown -R nobody "$GLINTAR_BARS"
  runuser -u nobody -- bash "$GLINTAR_BARS/run.sh" "$GLINTAR_BARS/bin" "${@:2}"
  status=$?
  [ -d "$pictures" ] && cp "$GLINTAR_BARS"/out/bar-*.png "$pictures"
  if [ "$status" -eq 0 ]; then rm -rf "$GLINTAR_BARS"; else echo "what was left behind: $GLINTAR_BARS" >&2; fi
  exit "$status"
fi
work=${GLINTAR_BARS:?as root, or with a folder of copies}
guide="$work/text-bars.md"
out="$work/out"
display=:$((200 + $$ % 700))
pids=()
failures=0
trap 'for pid in "${pids[@]}"; do kill -- "-$pid" 2>/dev/null; done' EXIT

export HOME="$work/home" XDG_RUNTIME_DIR="$work/run" PATH="$work/bin:$PATH" LC_ALL=C.UTF-8
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME WAYLAND_DISPLAY DISPLAY DBUS_SESSION_BUS_ADDRESS
mkdir -p "$HOME/.config/glintar" && mkdir -m 700 "$XDG_RUNTIME_DIR"
cat >"$HOME/.config/glintar/glintar.conf" <<'C'
[General]
savedCoins="[{\"id\":\"6F9619FF-8B86-4011-B42D-00C04FC964FF\",\"displayName\":\"A&B <c>\",\"apiId\":\"bitcoin\"},{\"id\":\"6F9619FF-8B86-4011-B42D-00C04FC964FE\",\"displayName\":\"ETH\",\"apiId\":\"ethereum\"}]"
selectedSourceID=coingecko
showChange24h=true
showSparkline=true
C

block() { awk -v mark="<!-- block $1 -->" '$0 == mark { seen = 1; next } seen && /^```/ { if (inside) exit; inside = 1; next } inside' "$guide"; }
# Each in a process group of its own, which ends as a whole.
start() { setsid "$@" >>"$out/log" 2>&1 & pids+=($!); }
stop() { kill -- "-${pids[-1]}" 2>/dev/null; wait "${pids[-1]}" 2>/dev/null; unset 'pids[-1]'; }
# verdict NAME COMMAND...: whether the command succeeds within half a minute.
verdict() {
  for _ in $(seq 30); do
    if "${@:2}"; then echo "$1: a price is seen"; return; fi
    sleep 1
  done
  echo "$1: NO PRICE"
  failures=$((failures + 1))
}
# is_written NAME COPIES FORMAT CROP SHOT...: so many copies run, and there is more on the bar than a plain area or a word.
is_written() {
  local picture="$out/bar-$1.png"
  "${@:5}" "$out/screen.png" 2>>"$out/log" && convert "$out/screen.png" -crop "$4" +repage "$picture" &&
    [ "$(pgrep -u "$(id -u)" -fc "^glintar line --format $3")" -eq "$2" ] &&
    [ "$(convert "$picture" -crop 400x16+100+4 -format %k info: 2>/dev/null || echo 0)" -gt 24 ]
}
has_price() { grep -Eq 'A&B <C> [0-9]+\.[0-9]{2}' <<<"$1"; }

# The market ends with its input.
start bash -c 'sleep infinity | "$0" "$1" ""' "$work/bin/glintar-demo-market" "$work/bin/resources/api_endpoints.json"
sleep 1

# The bar on both outputs of a sway without a screen.
waybar_case() {
  mkdir -p "$HOME/.config/waybar"
  block waybar >"$HOME/.config/waybar/config"
  { cat /etc/xdg/waybar/style.css; block waybar-style; } >"$HOME/.config/waybar/style.css"
  printf 'output * bg #203040 solid_color\nexec waybar\n' >"$work/sway"
  start env WLR_BACKENDS=headless WLR_HEADLESS_OUTPUTS=2 WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 dbus-run-session sway -c "$work/sway"
  for output in HEADLESS-1 HEADLESS-2; do
    # The right end of the bar: the screen is 1280 points wide.
    verdict "Waybar on $output" is_written waybar 2 waybar 900x28+380+0 on_sway grim -o $output
    grep "Error parsing" "$out/log" && failures=$((failures + 1))
    verdict "Waybar on $output, green or red" has_colour
  done
  stop
}
has_colour() { convert "$out/bar-waybar.png" -format %c histogram:info: | grep -Eq '32D74B|FF453A'; }
on_sway() { WAYLAND_DISPLAY=$(basename "$(ls "$XDG_RUNTIME_DIR"/wayland-? | head -1)") "$@"; }

# Two bars side by side: one with our module, one with a clock that is written as often.
waybar_cost() {
  local minutes=$1 bar used=() before=()
  block waybar >"$work/ours"
  echo '{"modules-right":["clock"],"clock":{"interval":60}}' >"$work/clock"
  echo 'output * bg #203040 solid_color' >"$work/sway"
  start env WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 dbus-run-session sway -c "$work/sway"
  sleep 5
  for bar in ours clock; do start env WAYLAND_DISPLAY="$(on_sway printenv WAYLAND_DISPLAY)" waybar -c "$work/$bar"; done
  sleep 15
  for bar in 2 1; do before+=("$(nanoseconds "${pids[-bar]}")"); done
  sleep $((60 * minutes))
  for bar in 2 1; do used+=("$(nanoseconds "${pids[-bar]}")"); done
  awk -v o=$((used[0] - before[0])) -v f=$((used[1] - before[1])) -v m="$minutes" 'BEGIN {
    printf "%-74s%14s%14s%8.2f%8s\n", "Waybar with our module: processor time a minute / its clock", sprintf("%.4g ms", o / 1e6 / m),
      sprintf("%.4g ms", f / 1e6 / m), o / f, "" }'
}
nanoseconds() { cat /proc/"$1"/task/*/schedstat | awk '{ n += $1 } END { print n }'; }

# x11_case NAME CROP COPIES COMMAND...: a bar on an X server of its own.
x11_case() {
  local name=$1 crop=$2 copies=$3
  shift 3
  start Xvfb $display -screen 0 1200x400x24 -nolisten tcp
  sleep 1
  export DISPLAY=$display
  start "$@"
  verdict "$name" is_written "$name" "$copies" "$name" "$crop" import -window root
  stop
  stop
  unset DISPLAY
}

i3_case() {
  { printf '# i3 config file (v4)\n'; echo 'font pango:DejaVu Sans Mono 9'; block i3; } >"$work/i3"
  x11_case i3bar 900x22+300+378 1 i3 -c "$work/i3"
}

polybar_case() {
  { printf '[bar/top]\nwidth = 100%%\nheight = 24\nbackground = #222222\nforeground = #eeeeee\nfont-0 = DejaVu Sans:size=9\nmodules-right = glintar\n'
    block polybar; } >"$work/polybar"
  x11_case polybar 900x24+300+0 1 polybar -c "$work/polybar" top
}

genmon_case() {
  local settings="$HOME/.config/xfce4/xfconf/xfce-perchannel-xml"
  mkdir -p "$settings" "$HOME/.config/xfce4/panel"
  cat >"$settings/xfce4-panel.xml" <<'C'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array"><value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/><property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="genmon"/></property>
</channel>
C
  printf 'Command=%s\nUseLabel=0\nText=\nUpdatePeriod=15000\nFont=DejaVu Sans 9\n' "$(block genmon)" >"$HOME/.config/xfce4/panel/genmon-1.rc"
  # The panel would show what the command complains of, which looks like a price.
  verdict "genmon's text" grep -Eq '<txt>A&amp;B &lt;C&gt; [0-9]+\.' <<<"$(sh -c "$(block genmon)" 2>>"$out/log")"
  x11_case genmon 900x28+0+0 0 dbus-run-session xfce4-panel --disable-wm-check
}

tmux_case() {
  block tmux >"$work/tmux"
  x11_case tmux 900x28+0+70 1 xterm -fa 'DejaVu Sans Mono' -fs 9 -geometry 128x6+0+0 -e tmux -S "$work/tmux-socket" -f "$work/tmux" new-session
  tmux -S "$work/tmux-socket" kill-server
}

conky_case() {
  { echo 'conky.config = { use_xft = true, font = "DejaVu Sans:size=9", own_window = true, own_window_type = "override",'
    echo '  alignment = "top_left", gap_x = 0, gap_y = 0, minimum_width = 900, update_interval = 1 }'
    printf 'conky.text = [[%s]]\n' "$(block conky)"; } >"$work/conky"
  x11_case conky 900x28+0+0 0 conky -q -c "$work/conky"
}

prompt_case() {
  block prompt >"$work/bashrc"
  verdict "shell prompt" has_price "$(echo exit | bash --rcfile "$work/bashrc" -i 2>&1)"
  x11_case prompt 900x28+0+0 0 xterm -fa 'DejaVu Sans Mono' -fs 9 -geometry 128x6+0+0 -e bash --rcfile "$work/bashrc" -i
}

if [ "$pictures" = cost ]; then
  waybar_cost "$3"
  exit
fi
for bar in waybar i3 polybar genmon tmux conky prompt; do "${bar}_case"; done
[ "$failures" -eq 0 ]
