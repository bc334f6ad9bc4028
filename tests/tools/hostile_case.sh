#!/usr/bin/env bash
# Runs one case of the hostile-input corpus, tests/data/hostile/cases.tsv: the
# pelmora tool on a scratch copy of the corpus files, under a time limit (a
# hang fails), a memory cap (unbounded growth fails) and a cap on the size of
# every file it writes, then compares its exit status and the named output
# stream with the row.
# Usage: hostile_case.sh PELMORA_BINARY SOURCE_DIR CASE [SANITIZERS]
set -uo pipefail

pelmora="$1"
root="$2"
case_name="$3"
sanitizers="${4:-}"
corpus="$root/tests/data/hostile"
time_limit=60
memory_mb=1024
file_mb=64

row="$(awk -F'\t' -v name="$case_name" '$1 == name' "$corpus/cases.tsv")"
[ -n "$row" ] || { echo "FAIL: no case $case_name in $corpus/cases.tsv"; exit 1; }
IFS=$'\t' read -r _ status stream expected arguments setup after <<<"$row"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp "$corpus"/* "$root"/tests/data/tools/* "$root/examples/gestures/catalogue.xml" "$work"/
cd "$work" || exit 1

fail() {
    echo "FAIL: $case_name: $1"
    echo "command: pelmora $arguments"
    echo "--- stdout (head) ---"; head -c 2000 .case.out
    echo "--- stderr (head) ---"; head -c 2000 .case.err
    exit 1
}

: >.case.out >.case.err
if [ "$setup" != - ]; then bash -c "$setup" >/dev/null 2>.case.err || fail "the setup failed: $setup"; fi

# The sanitizers reserve terabytes of address space, so under them the
# resident size is capped instead of the address space.
if [ -n "$sanitizers" ]; then
    export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}hard_rss_limit_mb=$((memory_mb * 2))"
    export TSAN_OPTIONS="${TSAN_OPTIONS:+$TSAN_OPTIONS:}hard_rss_limit_mb=$((memory_mb * 2))"
fi
[ "$arguments" = - ] && arguments=""
eval "set -- $arguments"
(
    ulimit -f $((file_mb * 1024))
    [ -n "$sanitizers" ] || ulimit -v $((memory_mb * 1024))
    exec timeout -k 5 "$time_limit" "$pelmora" "$@"
) >.case.out 2>.case.err
actual=$?

[ "$actual" -ne 124 ] || fail "still running after ${time_limit} s"
[ "$actual" -le 128 ] || fail "killed by SIG$(kill -l $((actual - 128))) (SIGXFSZ: a file outgrew ${file_mb} MB)"
[ "$actual" -eq "$status" ] || fail "exit status $actual, expected $status"
case "$stream" in
    out) text="$(cat .case.out)" ;;
    err) text="$(cat .case.err)" ;;
    out-last) text="$(tail -n 1 .case.out)" ;;
    err-last) text="$(tail -n 1 .case.err)" ;;
    *) fail "unknown stream \"$stream\" (out, err, out-last or err-last)" ;;
esac
[ "$expected" = - ] && expected=""
expected="${expected//\\n/$'\n'}"
[ "$text" = "$expected" ] || fail "$stream differs; expected:
$expected"
if [ "$after" != - ]; then bash -c "$after" || fail "the check afterwards failed: $after"; fi
echo "ok: $case_name"
