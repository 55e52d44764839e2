#!/usr/bin/env bash
# zor as the node BLAS/LAPACK under ScaLAPACK: Debian's ScaLAPACK for Open MPI runs a distributed
# LU solve (pdgesv) and a Cholesky solve (pdpotrf, pdpotrs) on two processes, on 2 x 1 and 1 x 2
# grids, once on the reference BLAS/LAPACK and once with zor's drop-in library loaded ahead of them
# (the Fortran-names flavour), checks the residuals and prints GFLOP/s. N=<order> (default 4000).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh --scalapack
cmake --preset linux > /dev/null
cmake --build --preset linux --target zor_fortran_blas
zor=$PWD/build/linux/lib/fortran-blas/libzor.so.1
lib=/usr/lib/x86_64-linux-gnu
out=build/linux/scalapack-demo
mkdir -p "$out"
mpicc -O2 examples/scalapack/scalapack_demo.c -lscalapack-openmpi -lm -o "$out/scalapack_demo"
n=${N:-4000}
mpi=(mpirun -np 2)
[ "$(id -u)" -eq 0 ] && mpi+=(--allow-run-as-root)
mpi+=(--oversubscribe -x LD_LIBRARY_PATH="$lib/blas:$lib/lapack")
echo "which library serves dgemm_ with zor ahead:"
LD_DEBUG=bindings LD_LIBRARY_PATH="$lib/blas:$lib/lapack" LD_PRELOAD="$zor" "$out/scalapack_demo" 1 1 1 2>&1 |
    grep -m1 "symbol \`dgemm_'" | sed 's/.* to \([^ ]*\) .*/   \1/' || true
status=0
for grid in "2 1" "1 2"; do
    echo "== reference BLAS/LAPACK, grid $grid"
    "${mpi[@]}" "$out/scalapack_demo" "$n" $grid || status=1
    echo "== zor ahead of them, grid $grid"
    "${mpi[@]}" -x LD_PRELOAD="$zor" "$out/scalapack_demo" "$n" $grid || status=1
done
exit $status
