#!/usr/bin/env bash
# Cuts the power under krxhost at random moments: an ext4 file system on a loop device is shut down
# by FS_IOC_SHUTDOWN without writing its journal, mounted again, and looked at. What was reported
# as delivered must be whole, no envelope may stand without its whole message, and a second run
# brings the rest.
# Arguments: the directory with the products, the source tree, [CUTS: 100], [SEED: of the moments, 1].
. "$(dirname "$0")/common.sh"
cuts=${3:-100}
RANDOM=${4:-1}
messages=40
disk=$spool/disk
trap 'umount -q "$disk"; chmod -R u+w "$spool"; rm -rf "$spool"' EXIT

# FS_IOC_SHUTDOWN with EXT4_GOING_FLAGS_NOLOGFLUSH: what is not on the disk yet never gets there.
cut_power() {
  perl -e 'open my $disk, "<", $ARGV[0] or die "$!\n";
    my $flags = pack "L", 2;
    ioctl $disk, 0x8004587d, $flags or die "FS_IOC_SHUTDOWN: $!\n"' "$disk"
}
mount_disk() {
  mount -o loop "$spool/image" "$disk"
}
# The commits reach the image's file as they would reach a disk; what the machine under us does with
# the image is no part of this.
make_disk() {
  truncate -s 32M "$spool/image"
  mkfs.ext4 -q -F "$spool/image" && mount_disk
}

mkdir "$disk"
[ "$(id -u)" -eq 0 ] || skip "only root may mount"
command -v mkfs.ext4 >/dev/null || skip "there is no mkfs.ext4"
make_disk 2>"$spool/output" || skip "mounts are refused: $(cat "$spool/output")"
cut_power 2>"$spool/output" || skip "the cut is refused: $(cat "$spool/output")"
umount "$disk"

# The scenarios: with the source directory on another disk, so that a pair that is gone from there
# was reported as delivered; with both on the disk that is cut; and messages of the host's own,
# reported by the exit status.
set_scenario() {
  scenario=$1
  rm -rf "$spool/in" "$spool/reported" "$spool/wanted"
  mkdir "$spool/wanted"
  in=$spool/in
  [ "$scenario" != both ] || in=$disk/in
  mkdir -p "$in" "$disk/out"
  printf '[Main]\nSourceDir = %s\nDestDir = %s/out\nMailDomain = here\nContainerClass = Class\n' \
    "$in" "$disk" >"$spool/krx.ini"
  "$pairs" make "$spool/wanted" P "$messages" 60000
  cp "$spool"/wanted/* "$in/"
  sync -f "$disk"
}
run_all() {
  exec "$krxhost" run --config "$spool/krx.ini" --once
}
send_all() {
  local number
  for number in $(seq 10 $((9 + messages))); do
    "$krxhost" send --config "$spool/krx.ini" --post-office Main --from ann@example.org \
      --to bob@example.net --subject "number $number" && echo "$number" >>"$spool/reported"
  done
}
work() {
  if [ "$scenario" = send ]; then send_all; else run_all; fi
}
# The microseconds that an undisturbed run takes: the cuts fall into this time.
declare -A duration
measure() {
  local begin=${EPOCHREALTIME/./}
  (work) >"$spool/output" 2>&1 || fail "the undisturbed run: $(cat "$spool/output")"
  duration[$1]=$((${EPOCHREALTIME/./} - begin))
}

take_census_of_disk() {
  "$pairs" census "$spool/wanted" "$disk/out" "$in/QDXRECVR" >"$spool/census"
}
check_run() { # WHEN
  local name open_pairs="" status=0
  take_census_of_disk
  check_envelopes "$1"
  for name in $(names); do
    if [ -e "$in/$name.RCP" ] && [ -e "$in/$name.MSG" ]; then
      [ "$(delivered "$name")" -eq 0 ] || open_pairs+=" $name "
    elif [ "$(delivered "$name")" -eq 0 ]; then
      fault lost "$1: $name is lost"
    else
      count "reported messages that are whole"
    fi
  done
  (work) >"$spool/output" 2>&1 || status=$?
  [ "$status" -eq 0 ] || fail "$1: the next run ended with $status: $(cat "$spool/output")"
  take_census_of_disk
  check_remains "$1, after the next run"
  while read -r name times; do
    case $times in
      0) fault lost "$1: $name did not come with the next run" ;;
      1) ;;
      *[!0-9]*) ;;
      *) [[ $open_pairs == *" $name "* ]] && count "twice in the window" "$((times - 1))" ||
        fault "twice outside the window" "$1: $name" ;;
    esac
  done < <(grep -v '^[!-]' "$spool/census")
}
# The subject tells the messages apart; every envelope must have a message that ends as it should.
check_sent() { # WHEN
  local envelope number
  for envelope in "$disk"/out/*.RCP; do
    [ -e "$envelope" ] || continue
    grep -q '^Subject:.*number' "${envelope%.RCP}.MSG" 2>/dev/null &&
      [ "$(tail -c 3 "${envelope%.RCP}.MSG")" = $'.\r' ] ||
      fault "envelopes without whole message" "$1: $envelope"
    grep -q '^Recipient: bob@example.net' "$envelope" ||
      fault "envelopes not whole" "$1: $envelope: $(cat "$envelope")"
  done
  while read -r number; do
    grep -qs "^Subject:.*number $number" "$disk"/out/*.MSG &&
      count "reported messages that are whole" || fault lost "$1: number $number is lost"
  done < <(cat "$spool/reported" 2>/dev/null)
}

cut_once() { # NUMBER
  local host moment=$((RANDOM * RANDOM % ${duration[$scenario]}))
  local when="cut $1, $scenario, after $moment us"
  (work) >"$spool/output" 2>&1 &
  host=$!
  sleep "$(printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000)))"
  # Stopped first: a host that lives on without its disk is another test's subject.
  kill -STOP "$host" 2>/dev/null
  cut_power || fail "$when: the cut failed"
  kill -KILL "$host" 2>/dev/null
  wait "$host" 2>/dev/null
  umount "$disk" 2>/dev/null || { sleep 0.3; umount "$disk"; }
  mount_disk || { fail "$when: it cannot be mounted again"; return; }
  count "cuts survived"
  if [ "$scenario" = send ]; then check_sent "$when"; else check_run "$when"; fi
}

scenarios=(destination both send)
for number in $(seq "$cuts"); do
  make_disk || { fail "no disk"; break; }
  set_scenario "${scenarios[number % 3]}"
  if [ -z "${duration[$scenario]:-}" ]; then
    measure "$scenario"
    rm -rf "$in" "$disk/out"
    set_scenario "$scenario"
  fi
  cut_once "$number"
  umount "$disk"
  rm "$spool/image"
done
figures "cuts survived" "reported messages that are whole" lost "twice in the window" \
  "twice outside the window" "envelopes without whole message" "envelopes not whole" \
  "lone message files" "working files left"
[ "${figure["cuts survived"]:-0}" -gt 0 ] || fail "no cut was made"
finish
