#!/usr/bin/env bash
# The ScaLAPACK demonstration, small: builds examples/scalapack/scalapack_demo.c with mpicc and runs
# it on two processes (2 x 1 and 1 x 2 grids) with the given zor library loaded ahead of the
# reference BLAS/LAPACK; fails when a residual is large or a run fails.
#   run.sh LIBZOR SOURCE WORKDIR [N]
set -euo pipefail
zor=$1 source=$2 work=$3 n=${4:-200}
lib=/usr/lib/x86_64-linux-gnu
mkdir -p "$work"
mpicc -O2 "$source" -lscalapack-openmpi -lm -o "$work/scalapack_demo"
mpi=(mpirun -np 2 --oversubscribe)
[ "$(id -u)" -eq 0 ] && mpi+=(--allow-run-as-root)
for grid in "2 1" "1 2"; do
    "${mpi[@]}" -x LD_LIBRARY_PATH="$lib/blas:$lib/lapack" -x LD_PRELOAD="$zor" "$work/scalapack_demo" "$n" $grid
done
