# What ./release says of a version. Sourced, not run; the working folder is the project's.

# The one place that has the number.
project_version() { sed -n 's/^project(glintar VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt; }

# release_notes VERSION: cuts the section of that version out of the changes on standard input.
release_notes() {
  awk -v version="$1" '/^## / { ours = $2 == version; next } ours' | sed -e '/./,$!d'
}

# release_feed VERSION URL: the document that the program reads, with the notes on standard input.
release_feed() {
  python3 -c 'import json, sys
release = {"version": sys.argv[1], "notes": sys.stdin.read().strip(), "url": sys.argv[2]}
print(json.dumps({"releases": [release]}, ensure_ascii=False, indent=2))' "$1" "$2"
}
