#!/usr/bin/env bash
# Renders a replay report in headless Chromium and checks that its script ran
# (it marks the body with the number of gesture lanes) and that every
# gesture of the configuration has its lane and its "why not" row.
# Usage: report_test.sh PELMORA_BINARY DATA_DIR. Exit 77 (skipped) without Chromium.
set -euo pipefail

pelmora="$1"
data="$2"
command -v chromium >/dev/null || { echo "chromium is not installed: skipped"; exit 77; }

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

"$pelmora" replay "$data/gestures.xml" "$data/wave.csv" --report "$work/report.html" \
    --plot HandAboveHead --plot P_LeftFoot.x >/dev/null 2>"$work/replay.err"

timeout 120 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$work/profile" --dump-dom "file://$work/report.html" >"$work/dom.html" 2>"$work/chromium.err"

fail() {
    echo "FAIL: $1"
    echo "--- DOM ---"; cat "$work/dom.html"
    echo "--- chromium ---"; tail -n 20 "$work/chromium.err"
    exit 1
}

grep -q '<body data-rendered="2">' "$work/dom.html" || fail "the page script did not finish"
grep -q '<title>Pelmora replay: .*wave.csv (ready)</title>' "$work/dom.html" || fail "the page title was not set"
for gesture in LeftStep RaiseHand; do
    grep -q "<g class=\"lane\" id=\"lane-0-[01]\" data-gesture=\"$gesture\">" "$work/dom.html" || fail "no lane for $gesture"
    grep -q "<tr data-gesture=\"$gesture\">" "$work/dom.html" || fail "no why-not row for $gesture"
done
for value in HandAboveHead P_LeftFoot.x; do
    grep -q "<g class=\"plot\" data-value=\"$value\">" "$work/dom.html" || fail "no plot of $value"
done
grep -q 'class="label-span"' "$work/dom.html" || fail "no label spans"
grep -q 'class="reset"' "$work/dom.html" || fail "no reset marker"
echo "report renders: 2 lanes, 2 plots"
