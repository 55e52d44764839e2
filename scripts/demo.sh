#!/usr/bin/env bash
# Builds the Linux library, runs the demonstration program, then measures dgemm and zgemm at a few
# sizes and dgemm on three skinny shapes against Debian's OpenBLAS and BLIS, as shipped and forced to
# their AVX-512 kernels (single-threaded, interleaved, medians of 3 rounds) and draws GFLOP/s
# against n.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh --demo
cmake --preset linux -DZOR_BUILD_TESTS=OFF
cmake --build --preset linux
./build/linux/bin/zor-info
echo
./build/linux/bin/zor-bench-gemm --peak --rounds 3 --peers zor,openblas,openblas-avx512,blis,blis-avx512 \
    --cases '^[dz]gemm n=(64|128|256|512|1024)$|^dgemm (4096x4096 k=64|4096x64 k|64x4096 k)' \
    --plot build/linux/gemm.png
