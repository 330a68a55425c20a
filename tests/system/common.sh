# The vocabulary of the system tests: a temporary spool, pairs, and checks that say what failed.
# Arguments of every test: the directory with the products (bin, lib), the source tree.
set -uo pipefail
build=$(realpath "$1")
source=$(realpath "$2")
krxhost=$build/bin/krxhost
failures=0

spool=$(mktemp -d)
trap 'chmod -R u+w "$spool" 2>/dev/null; rm -rf "$spool"' EXIT
mkdir -p "$spool"/{in,out}

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}
finish() {
  [ "$failures" -eq 0 ] || { echo "$failures checks failed"; exit 1; }
  exit 0
}
# expect_status STATUS COMMAND...: output goes to $spool/output
expect_status() {
  local wanted=$1 got=0
  shift
  "$@" >"$spool/output" 2>&1 || got=$?
  [ "$got" -eq "$wanted" ] || {
    fail "$* ended with $got instead of $wanted"
    cat "$spool/output"
  }
}
expect_output() { # TEXT
  grep -qaF -- "$1" "$spool/output" || {
    fail "no \"$1\" in the output:"
    cat "$spool/output"
  }
}
expect_files() { # DIRECTORY NAMES...
  local directory=$1
  shift
  local wanted got
  wanted=$(printf '%s\n' "$@" | sort | tr '\n' ' ')
  got=$(ls "$directory" | sort | tr '\n' ' ')
  [ "$wanted" = "$got" ] || [ "$wanted$got" = " " ] || fail "$directory holds \"$got\", not \"$wanted\""
}
put() { # DIRECTORY NAME [MESSAGE [ENVELOPE]]: lines end with LF here, with CR LF there
  local message=${3:-$'Subject: x\n\nbody\n.'}
  local envelope=${4:-$'Return-path: s@a\nRecipient: r@b'}
  printf '%s\n' "$message" | sed 's/$/\r/' >"$1/$2.MSG"
  printf 'Message-ID: <%s@here>\n%s\n' "$2" "$envelope" | sed 's/$/\r/' >"$1/$2.RCP"
}
configure() { # EXTRA LINES: a profile with one post office, Main
  cat >"$spool/krx.ini" <<EOF
[Main]
SourceDir = $spool/in
DestDir = $spool/out
MailDomain = here
ContainerClass = Class
$*
EOF
}
