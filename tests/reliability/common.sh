# The vocabulary of the reliability tests, on top of that of the system tests: spools of three sample
# pairs, injection with strace, and a census of what stands in the destination.
. "$(dirname "$0")/../system/common.sh"
pairs=$(realpath "$(dirname "$0")/pairs")
# LeakSanitizer cannot work in a traced process.
export ASAN_OPTIONS=${ASAN_OPTIONS:-}:detect_leaks=0

skip() { # REASON
  echo "not run here: $*"
  exit 77
}
# count FIGURE [N]: adds to a figure that `figures` prints.
declare -A figure
count() {
  figure[$1]=$((${figure[$1]:-0} + ${2:-1}))
}
figures() { # FIGURE...
  for name in "$@"; do
    echo "$name: ${figure[$name]:-0}"
  done
}
# fault FIGURE TEXT: what must never happen. The first few are told in full.
fault() {
  count "$1"
  shift
  [ "$failures" -lt 40 ] && fail "$*" || failures=$((failures + 1))
}

need_injection() {
  command -v strace >/dev/null || skip "there is no strace"
  strace -qq -o "$spool/trace" -e trace=openat -e inject=openat:error=ENOENT:when=1000 true ||
    skip "this machine does not let strace trace"
}

# The scenarios: "own" delivers into the post office's own DestDir, "route" through another post
# office, "send" brings a message of the host's own on its way.
scenario=
receiver=$spool/in/QDXRECVR
begin() { # SCENARIO: configures it, and settles what is wanted at the destination
  scenario=$1
  rm -rf "$spool/wanted"
  mkdir "$spool/wanted"
  case $scenario in
    own) configure ;;
    route)
      configure "[Office]
SourceDir = $spool/other
DestDir = $spool/out
MailDomain = there
ContainerClass = Class
[Host]
PostOffice = Main
PostOffice = Office
Route = Main, Office"
      sed -i "0,/^DestDir.*/s||DestDir = $spool/unused|" "$spool/krx.ini"
      ;;
    send)
      configure
      printf 'Dear Bob,\n.\nthe last line' >"$spool/text"
      fresh
      act >/dev/null 2>&1 || fail "send does not work"
      mv "$spool"/out/*.MSG "$spool/wanted/SENT.MSG"
      mv "$spool"/out/*.RCP "$spool/wanted/SENT.RCP"
      return
      ;;
  esac
  cp "$source"/examples/spool/{PLAIN01,MIXED01}.* "$spool/wanted/"
  put "$spool/wanted" BAD01 $'Subject: never loaded\n\nx\n.' $'Return-path: <>\nRecipient: a@b'
}
fresh() { # empties the directories and puts the sample pairs in
  rm -rf "$spool"/{in,out,other,unused}
  mkdir "$spool"/{in,out,other,unused}
  [ "$scenario" = send ] || cp "$spool"/wanted/* "$spool/in/"
}
# What a scenario does, as a command, so that it can be traced: "${action[@]}".
set_action() {
  if [ "$scenario" = send ]; then
    action=("$krxhost" send --config "$spool/krx.ini" --post-office Main --from ann@example.org
      --to bob@example.net --to carol@example.net --subject Minutes --body "$spool/text")
  else
    action=("$krxhost" run --config "$spool/krx.ini" --once)
  fi
}
act() {
  set_action
  timeout 120 "${action[@]}"
}
# inject INJECTION CALL N: does it with the Nth such call replaced. The output is in
# $spool/output; the status is that of the command.
inject() {
  set_action
  local what="$2:$1:when=$3"
  # A shell of its own takes the notice about a killed child.
  (
    timeout 120 strace -qq -o "$spool/trace" -e "trace=$2" -e "inject=$what" "${action[@]}"
    exit
  ) >"$spool/output" 2>&1
}
# The file system calls of an undisturbed run from the first one on that touches the spool, each
# line a call and the how manieth of its name it is; without those of the loader, which reads the
# module as any library.
list_points() { # FILE
  fresh
  set_action
  strace -qq -o "$spool/trace" -e trace=%file,%desc "${action[@]}" >"$spool/output" 2>&1 ||
    fail "the undisturbed run: $(cat "$spool/output")"
  awk -F'(' -v spool="\"$spool/" '/^[a-z0-9_]+\(/ {
      ++n[$1]
      if ($1 != "execve" && index($0, spool)) begun = 1
      if ($1 == "openat" && /\.so[^\/]*".* = [0-9]+$/) loading = 1
      if (begun && !loading) print $1, n[$1]
      if ($1 == "close") loading = 0
    }' "$spool/trace" >"$1"
}

# take_census: what stands at the destination and in the receiver directory, into $spool/census.
take_census() {
  "$pairs" census "$spool/wanted" "$spool/out" "$receiver" >"$spool/census"
}
names() { # the wanted names
  basename -s .RCP "$spool"/wanted/*.RCP
}
delivered() { # NAME: how often it is there
  awk -v name="$1" '$1 == name { print $2 }' "$spool/census"
}
waits() { # NAME: its pair is still in the source directory; a sender keeps what it sends
  [ "$scenario" = send ] || { [ -e "$spool/in/$1.RCP" ] && [ -e "$spool/in/$1.MSG" ]; }
}
# check_envelopes WHEN: of all that is visible at the destination, at any moment.
check_envelopes() {
  local line
  while read -r line; do
    case $line in
      "! envelope without"*) fault "envelopes without whole message" "$1: $line" ;;
      "! envelope not"*) fault "envelopes not whole" "$1: $line" ;;
    esac
  done <"$spool/census"
}
# check_remains WHEN: of what a crash left, once another run has gone through.
check_remains() {
  check_envelopes "$1"
  local line
  while read -r line; do
    case $line in
      "- lone"*) count "lone message files" ;;
      "! other"*) fault "working files left" "$1: $line" ;;
    esac
  done <"$spool/census"
}
