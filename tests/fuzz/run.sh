#!/usr/bin/env bash
# Runs the entry-layer fuzzer for a while on the repository's corpus.
# usage: run.sh <fuzzer> <seconds> <work directory> <corpus> [more libFuzzer options]
# New inputs go to <work directory>/corpus, crashing ones to <work directory>/artifacts; the
# corpus itself is only read. Exits non-zero when the fuzzer found a fault.
set -euo pipefail
fuzzer=$1 seconds=$2 work=$3 corpus=$4
shift 4
mkdir -p "$work/corpus" "$work/artifacts"
exec "$fuzzer" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 -print_final_stats=1 \
    -artifact_prefix="$work/artifacts/" "$@" "$work/corpus" "$corpus"
