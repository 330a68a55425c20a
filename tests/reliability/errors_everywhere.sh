#!/usr/bin/env bash
# Lets each file system call of krxhost fail once, with each error that a machine in trouble answers.
# Nothing may be deleted that was not delivered, the log names the path and the error, and the next
# run brings the rest.
# Arguments: the directory with the products, the source tree, [STEP: every how manieth call, 1],
# [SCENARIO...: own, route, send; all of them].
. "$(dirname "$0")/common.sh"
step=${3:-1}
scenarios=("${@:4}")
[ ${#scenarios[@]} -gt 0 ] || scenarios=(own route send)
need_injection

declare -A text=(
  [ENOSPC]="No space left on device" [EDQUOT]="Disk quota exceeded" [EIO]="Input/output error"
  [EMFILE]="Too many open files" [ENOMEM]="Cannot allocate memory"
  [EINTR]="Interrupted system call" [EROFS]="Read-only file system" [EACCES]="Permission denied"
)

# All is as if nothing had happened: what can be loaded is not kept either.
is_undisturbed() {
  local name
  for name in $(names); do
    [ "$(delivered "$name")" -eq 1 ] || return 1
    [ "$scenario" = send ] || [ ! -e "$spool/in/$name.RCP" ] || return 1
    [ "$name" = BAD01 ] || [ ! -e "$receiver/$name.RCP" ] || return 1
  done
}

check_nothing_is_lost() { # WHEN
  local name
  for name in $(names); do
    [ "$(delivered "$name")" -gt 0 ] || waits "$name" || fault lost "$1: $name is gone"
  done
}

# A layer may tell the error as its own kind, such as a file that may not be written.
any_text=$(printf '%s\n' "${text[@]}")
check_log() { # WHEN
  grep -aF "$any_text" "$spool/output" | grep -q '[/\\]' ||
    fault "errors without path and text in the log" "$1: the log says only: $(cat "$spool/output")"
}

check_next_run() { # WHEN NAMES-THAT-MAY-BE-TWICE
  local name times status=0
  act >"$spool/output" 2>&1 || status=$?
  [ "$status" -eq 0 ] || fault "next runs failed" "$1: the next run ended with $status: $(cat "$spool/output")"
  take_census
  check_remains "$1, after the next run"
  for name in $(names); do
    times=$(delivered "$name")
    [ "$times" -gt 0 ] || fault lost "$1: $name did not come with the next run"
    [ "$times" -le 1 ] || if grep -qxF "$name" <<<"$2"; then
      count "twice, told in the log"
    else
      fault "twice" "$1: $name came $times times"
    fi
  done
}

fail_at() { # ERROR CALL N
  local when="$scenario, $1 at $2 $3" status=0 twice name
  fresh
  inject "error=$1" "$2" "$3" || status=$?
  grep -qa INJECTED "$spool/trace" || { count "points not reached"; return; }
  count "errors injected"
  [ "$status" -ne 124 ] || fault hangs "$when: it hangs"
  [ "$status" -lt 126 ] || [ "$status" -eq 127 ] || fault crashes "$when: it ended with $status"
  take_census
  check_envelopes "$when"
  if is_undisturbed && [ "$status" -eq 0 ]; then
    count "errors without effect"
    return
  fi
  check_nothing_is_lost "$when"
  check_log "$when"
  # What is delivered and could not be removed is told, and comes again.
  twice=$(for name in $(names); do
    [ "$(delivered "$name")" -gt 0 ] && waits "$name" && echo "$name"
  done)
  check_next_run "$when" "$twice"
}

turn=0
for scenario in "${scenarios[@]}"; do
  begin "$scenario"
  list_points "$spool/points"
  for error in ENOSPC EDQUOT EIO EMFILE ENOMEM EINTR EROFS EACCES; do
    # With a step each error meets other calls.
    turn=$((turn + 1))
    while read -r call number; do
      fail_at "$error" "$call" "$number"
    done < <(awk -v step="$step" -v turn="$turn" '(NR + turn) % step == 0' "$spool/points")
  done
done
figures "errors injected" "points not reached" "errors without effect" lost twice \
  "twice, told in the log" "envelopes without whole message" "envelopes not whole" \
  "lone message files" "working files left" "errors without path and text in the log" \
  "next runs failed" hangs crashes
[ "${figure["errors injected"]:-0}" -gt 0 ] || fail "no error was injected"
finish
