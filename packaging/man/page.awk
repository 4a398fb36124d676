# Fills the usage into a page of the manual. Reads first what --help says, then the page, in which @SYNOPSIS@, @OPTIONS@
# and @VARIABLES@ stand for its three lists. The variables `version` and `date` take the place of @VERSION@ and @DATE@.

function roff(text) {
  gsub(/\\/, "\\e", text)
  gsub(/-/, "\\-", text)
  return text
}

FNR == NR && /^(Usage:|      ) glintar/ {
  synopsis = synopsis (synopsis ? ".br\n" : "") roff(substr($0, 8)) "\n"
  next
}
FNR == NR && match($0, /^(  [a-z-]+( [A-Z]+)?|[A-Z_]+)  +/) {
  term = substr($0, 1, RLENGTH)
  gsub(/^ +| +$/, "", term)
  entry = ".TP\n.B " roff(term) "\n" roff(substr($0, RLENGTH + 1)) "\n"
  if (/^ /)
    options = options entry
  else
    variables = variables entry
  next
}
FNR == NR { next }

$0 == "@SYNOPSIS@" { printf "%s", synopsis; next }
$0 == "@OPTIONS@" { printf "%s", options; next }
$0 == "@VARIABLES@" { printf "%s", variables; next }
{
  gsub(/@VERSION@/, version)
  gsub(/@DATE@/, date)
  print
}
