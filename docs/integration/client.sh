#!/bin/sh
# Adds a job to Kelvane's job file, starts the worker, and follows the job to its end.
#
#   client.sh SHARED_FOLDER BUNDLE COMMAND PARAMETERS [SECONDS]
#
# PARAMETERS is the job's "input_parameters" as JSON, SECONDS the time between two looks (2).
# Prints a line per change. The exit status is 0 where the job is FREE with the result 0, 1 where it
# is not, 2 where it was not added.
#
# Needs jq, flock, ps and mktemp.
set -eu

attempts=10
worker_path=Contents/Resources/Kelvane

refuse() {
  echo "client: $1" >&2
  exit 2
}

worker_runs() {
  ps -Aww -o args= | while read -r line; do
    case $line in *"$worker_path "*" $shared") echo yes ;; esac
  done
}

# One array of objects whose log ids are texts: anything else keeps every job from being updated.
is_sound() {
  printf '%s' "$1" | jq -e -s 'length == 1 and (.[0] | type == "array" and all(.[];
    type == "object" and ((has("log_id") | not) or (.log_id | type) == "string")))' >/dev/null 2>&1
}

# In one step: a reader finds the old bytes or the new ones.
replace_job_file() {
  new=$(mktemp "$shared/utility/command/.submit-XXXXXX")
  cp -p "$job_file" "$new" # for the permissions
  if printf '%s\n' "$1" >"$new" && sync "$new" && mv -f "$new" "$job_file"; then return; fi
  rm -f "$new"
  refuse "the job file cannot be written"
}

# The other records stay as they are, to the byte: the new one goes before the last "]".
add() {
  attempt=0
  while [ $((attempt += 1)) -le "$attempts" ]; do
    before=$(cat "$job_file")
    is_sound "$before" || refuse "the job file is damaged, or a record's log_id is no text"
    head=$(printf '%s' "${before%]*}")
    [ "$(printf '%s' "$before" | jq length)" -eq 0 ] || head=$head,
    [ "$(cat "$job_file")" = "$before" ] || continue
    replace_job_file "$(printf '%s\n%s\n]' "$head" "$record")"
    if jq -e --argjson ours "$record" 'any(.[]; . == $ours)' "$job_file" >/dev/null; then return; fi
  done
  refuse "another program keeps writing the job file"
}

# It goes on when the terminal is closed, and keeps no lock.
start() (
  trap '' HUP
  cd /
  exec "$bundle/$worker_path" "$log_id" "$shared" </dev/null >/dev/null 2>"$complaints" 9>&-
)

describe() {
  jq -r --arg log_id "$log_id" '
    [.[] | select(.log_id == $log_id)][0] |
    if . == null then "the record cannot be found"
    elif .state_id == "FREE" then "FREE \(.result) \(.resultStr)"
    else [.state_id] + [.output | arrays | .[] | .total_percentage // empty | tostring] | join(" ")
    end' "$job_file" 2>/dev/null || echo "the record cannot be found"
}

# Until the worker has ended; what it wrote last is in $shown.
follow() {
  shown=
  ended=
  while [ -z "$ended" ]; do
    sleep "$seconds"
    kill -0 "$1" 2>/dev/null || ended=yes # before the look, so that the last write is seen
    now=$(describe)
    [ "$now" = "$shown" ] || echo "$now"
    shown=$now
  done
}

if [ $# -lt 4 ] || [ $# -gt 5 ]; then
  sed -n '2,/^set/ s/^# \{0,1\}//p' "$0" >&2
  exit 2
fi
shared=$(cd "$1" && pwd)/
bundle=$2
seconds=${5:-2}
job_file=${shared}utility/command/BGPLog.json
log_id=$(date +%Y%m%d%H%M%S)-$$
complaints=${shared}utility/logs/worker-$log_id.err
record=$(jq -cn --arg log_id "$log_id" --arg job_id "$3" --argjson parameters "$4" '
  {log_id: $log_id, job_id: $job_id, state_id: "WAIT", input_parameters: $parameters}') ||
  refuse "the parameters are no JSON"

if [ ! -f "$job_file" ] || [ -L "$job_file" ]; then
  refuse "there is no job file, or it is a link"
fi
[ -x "$bundle/$worker_path" ] || refuse "no worker there"
# One at a time among those who lock; the system takes the lock back from whoever ends.
exec 9>>"$job_file.lock"
flock 9
[ -z "$(worker_runs)" ] || refuse "a worker runs on this shared folder"
add
echo "added $log_id"
start &
worker=$!
exec 9>&-
follow "$worker"
[ -s "$complaints" ] || rm -f "$complaints"
case $shown in "FREE 0 "*) exit 0 ;; *) exit 1 ;; esac
