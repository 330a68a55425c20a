#!/usr/bin/env bash
# Kills krxhost at its Nth file system call, for every N: on the way in, through its own DestDir and
# through a route, and on the way out. After each kill a second run brings every message to the
# destination.
# Arguments: the directory with the products, the source tree, [STEP: every how manieth call, 1].
. "$(dirname "$0")/common.sh"
step=${3:-1}
need_injection

# What stood at the destination with its pair still in the source directory when the kill came: the
# one window in which a message may come twice.
open_windows() {
  local name
  for name in $(names); do
    [ "$(delivered "$name")" -gt 0 ] && waits "$name" && echo "$name"
  done
}

check_after_restart() { # WHEN NAMES-THAT-MAY-BE-TWICE
  local name times
  take_census
  check_remains "$1"
  for name in $(names); do
    times=$(delivered "$name")
    if [ "$times" -eq 0 ]; then
      fault lost "$1: $name is lost"
    elif [ "$times" -gt 1 ] && ! grep -qxF "$name" <<<"$2"; then
      fault "twice outside the window" "$1: $name came $times times"
    elif [ "$times" -gt 1 ]; then
      count "twice in the window"
    fi
    [ "$scenario" = send ] || [ ! -e "$spool/in/$name.RCP" ] ||
      fault lost "$1: $name.RCP stays in the source directory"
  done
}

# A message file whose envelope is gone must not be in the way of its name.
check_names_are_free() { # WHEN
  local lone=
  lone=$(ls "$spool"/in/*.MSG 2>/dev/null) || return
  count "lone message files" "$(wc -l <<<"$lone")"
  rm -rf "$spool"/out/* "$receiver"
  cp "$spool"/wanted/* "$spool/in/"
  act >"$spool/output" 2>&1 || fail "$1: the next pair of that name: $(cat "$spool/output")"
  check_after_restart "$1, the same names again" ""
}

kill_at() { # CALL N
  local when="$scenario, killed at $1 $2" windows status=0
  fresh
  inject signal=KILL "$1" "$2" || status=$?
  [ "$status" -ne 0 ] || { count "points not reached"; return; }
  count "kill points tried"
  take_census
  check_envelopes "$when, before the restart"
  windows=$(open_windows)
  act >"$spool/output" 2>&1 || fail "$when: the restart ended with $?: $(cat "$spool/output")"
  check_after_restart "$when" "$windows"
  [ "$scenario" = send ] || check_names_are_free "$when"
}

for scenario in own route send; do
  begin "$scenario"
  list_points "$spool/points"
  while read -r call number; do
    kill_at "$call" "$number"
  done < <(awk -v step="$step" 'NR % step == 0' "$spool/points")
done
figures "kill points tried" "points not reached" "twice in the window" "twice outside the window" \
  lost "lone message files" "envelopes without whole message" "envelopes not whole" \
  "working files left"
[ "${figure["kill points tried"]:-0}" -gt 0 ] || fail "no kill was tried"
finish
