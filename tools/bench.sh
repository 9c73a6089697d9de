#!/usr/bin/env bash
# Builds and runs every benchmark: processor time, or time by the clock where threads share a task, as ratios to a
# floor measured in the same run. Fails when one misses a budget by more than a tenth.
# Words of the command line go to each (--benchmark_filter=export).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. tools/prepare.sh
install_packages
build bench
log=$(mktemp)
trap 'rm -f "$log" "$log.errors"' EXIT
status=0
for program in build/bench/bench/bench_*; do
    if [ -x "$program" ] && [ -f "$program" ]; then
        QT_QPA_PLATFORM=offscreen "$program" --benchmark_out=/dev/null "$@" >"$log" 2>"$log.errors" || {
            status=1
            cat "$log.errors" >&2
        }
        sed -n '/^\(Processor time\|Time by the clock\)/,$p' "$log"
    fi
done
exit "$status"
