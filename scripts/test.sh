#!/usr/bin/env bash
# Builds the library for Linux and for Windows and runs every test: natively, under Wine, and
# under emulated processors of each level.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh --tests
cmake --workflow --preset linux
cmake --workflow --preset windows
