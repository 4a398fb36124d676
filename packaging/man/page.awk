# Fills the usage into a page of the manual. Reads first what --help says, then the page. There @SYNOPSIS@, @OPTIONS@ and
# @VARIABLES@ stand for the three lists of --help, @ABOUT@ for its sentences, @VERSION@ and @DATE@ for the variables
# `version` and `date`.

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
FNR == NR {
  if (NF > 0)
    about = about roff($0) "\n"
  next
}

$0 == "@ABOUT@" { printf "%s", about; next }
$0 == "@SYNOPSIS@" { printf "%s", synopsis; next }
$0 == "@OPTIONS@" { printf "%s", options; next }
$0 == "@VARIABLES@" { printf "%s", variables; next }
{
  gsub(/@VERSION@/, version)
  gsub(/@DATE@/, date)
  print
}
