#!/usr/bin/env bash
# Builds the Linux library and runs the demonstration program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh
cmake --preset linux -DZOR_BUILD_TESTS=OFF
cmake --build --preset linux
./build/linux/bin/zor-info
