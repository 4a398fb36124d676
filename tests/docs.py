"""Tries every block of the documents as it stands: docs.py PREFIX DOCUMENT...

Commands run in this folder, in a home of their own for each document, on a screen of their own, with PREFIX/bin in the path
and the simulated market in the place of the real services. A comment <!-- try: HOW --> before a block says how it is tried:
  sh       no comment: it succeeds. "status N": it ends so. "runs on": each command still runs after some seconds.
           "checked": .ci/run runs it. "roots": ./test install roots runs it. "key ring": on a bus with one.
  console  what the commands after "$ " print differs from what stands there in digits, signs and sparklines alone
  json     a command: it prints an object with these keys. No comment: a module of a bar, whose "exec" prints JSON
  ini      it is what "display list" reads from the settings file
  none     a command that prints each of these lines
"""

import atexit
import json
import os
import re
import subprocess
import sys
import tempfile

FENCE = re.compile(r"(?:<!-- try: ([^\n]*) -->\n)?^```(\w*)\n(.*?)^```$", re.M | re.S)
RING = """printf test | gnome-keyring-daemon --unlock --components=secrets --foreground >/dev/null 2>&1 &
trap "kill $!" EXIT
gdbus wait --session --timeout 20 org.freedesktop.secrets
printf a-key | ( {} )
secret-tool lookup service apiKey_coingecko account GlintarUser | grep -x a-key
printf '\\n' | glintar source key coingecko
! secret-tool lookup service apiKey_coingecko account GlintarUser"""


def run(command, seconds=120, wrapper=()):
    ended = subprocess.run(["timeout", str(seconds), *wrapper, "bash", "-euo", "pipefail", "-c", command], env=ENV,
                           stdin=subprocess.DEVNULL, capture_output=True, text=True)
    return ended.returncode, ended.stdout, ended.stderr


def shape(text):
    return re.sub(r"[▁-█]+", "▁", re.sub(r"[+-]", "±", re.sub(r"\d+(\.\d+)?", "0", text)))


def keys(value):
    if isinstance(value, dict):
        return {name: keys(member) for name, member in value.items()}
    return [keys(value[0])] if isinstance(value, list) and value and isinstance(value[0], dict) else None


def fault(how, kind, body):
    """What is wrong with the block, or nothing."""
    if kind == "sh" and how == "runs on":
        lines = [line.split("#")[0] for line in body.splitlines()]
        return [said for line in lines for status, _, said in [run(line, 5)] if status != 124]
    if kind == "sh" and how == "checked":
        steps = open(".ci/run").read()
        return [line for line in body.splitlines() if not re.search(rf"(?m)^\w+ .*{line.split('#')[0].strip()}\b", steps)]
    if kind == "sh" and how == "roots":
        return run(f"bash -n <<'end'\n{body}end")[0]
    if kind == "sh":
        ring = how == "key ring"
        status, out, said = run(RING.format(body), 60, ["dbus-run-session", "--"]) if ring else run(body)
        return status != int(how.split()[1] if how.startswith("status") else 0) and (status, out, said)
    if kind == "console":
        commands = re.findall(r"^\$ (.*)", body, re.M)
        printed = "".join(f"$ {command}\n{run(command)[1]}" for command in commands)
        return shape(printed) != shape(body) and printed
    if kind == "json" and how:
        printed = [json.loads(line) for line in run(how)[1].splitlines()]
        stands = [json.loads(line) for line in re.sub(r"\n ", " ", body).splitlines()]
        return keys(stands) != keys(printed) and printed
    if kind == "json":
        (module,) = json.loads(f"{{{body}}}").values()
        return not json.loads(run(module["exec"], 5)[1].splitlines()[0])["text"]
    if kind == "ini":
        path = f"{ENV['HOME']}/.config/glintar/glintar.conf"
        os.makedirs(os.path.dirname(path), exist_ok=True)
        open(path, "w").write(body)
        listed = run("glintar display list; glintar source list; glintar coins list")[1]
        shown = [line.replace("=", " ") for line in body.splitlines() if re.match(r"(show|float|gas|display)", line)]
        return [line for line in [*shown, "* coingecko", "bitcoin"] if line not in listed] and listed
    printed = run(how)[1] if how else ""
    return [line for line in body.splitlines() if line not in printed]


failed = 0
read_end, write_end = os.pipe()
screen = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x800x24"], pass_fds=[write_end],
                          stderr=subprocess.DEVNULL)
atexit.register(screen.terminate)
display = ":" + os.read(read_end, 16).decode().strip()
for document in sys.argv[2:]:
    with tempfile.TemporaryDirectory() as home:
        data = f"{home}/.local/share/glintar"
        os.makedirs(data)
        market = subprocess.Popen([f"{sys.argv[1]}/libexec/glintar/glintar-demo-market",
                                   f"{data}/remote_api_endpoints.json", ""],
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        atexit.register(market.kill)
        market.stdout.readline()
        ENV = {"HOME": home, "PATH": f"{sys.argv[1]}/bin:/usr/bin:/bin", "DISPLAY": display, "LANG": "C.UTF-8",
               "https_proxy": "http://127.0.0.1:1"}  # no real service is reached
        for how, kind, body in FENCE.findall(open(document).read()):
            wrong = fault(how, kind, body)
            if wrong:
                failed += 1
                print(f"{document}: this block is not true:\n{body}{wrong}", file=sys.stderr)
sys.exit(failed > 0)
