#!/usr/bin/env bash
# Builds the library for Linux and for Windows and runs every test: natively (with the "reference"
# label: reference LAPACK's test programs on the built library), under Wine, under emulated
# processors of each level, on Linux again with AddressSanitizer (with LeakSanitizer and UBSan)
# and with ThreadSanitizer, and under the entry-layer fuzzer (a one-minute run).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh --tests
cmake --workflow --preset linux
cmake --workflow --preset windows
cmake --workflow --preset asan
cmake --workflow --preset tsan
cmake --workflow --preset fuzz
