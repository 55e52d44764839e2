#!/usr/bin/env bash
# Builds the library for Linux and for Windows and runs every test: natively, under Wine, under
# emulated processors of each level, and on Linux again with AddressSanitizer (with LeakSanitizer
# and UBSan), with ThreadSanitizer, and under the entry-layer fuzzer (a one-minute run).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh --tests
cmake --workflow --preset linux
cmake --workflow --preset windows
cmake --workflow --preset asan
cmake --workflow --preset tsan
cmake --workflow --preset fuzz
