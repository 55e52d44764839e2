#!/usr/bin/env bash
# zor under numpy and scipy: Debian's python3-numpy/python3-scipy run a set of linear-algebra calls
# (solve, cholesky, lstsq, eigh, svd, eig, schur, qz) once on the system's reference BLAS/LAPACK and
# once on OpenBLAS, each time also with zor's drop-in library loaded ahead (LD_PRELOAD: the
# Fortran-style BLAS and LAPACK names zor has come from zor, the rest from the system library). It
# checks that the results agree, shows which library served the calls, prints the times with
# zor's ratio (above 1: zor is faster), then runs scipy.linalg's own test suite with and without zor
# and compares the outcomes. N=<order> (default 1000) and ROUNDS=<best of> (default 3).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup-debian.sh --python
cmake --preset linux > /dev/null
cmake --build --preset linux --target zor_fortran_blas
zor=$PWD/build/linux/lib/fortran-blas/libzor.so.1
lib=/usr/lib/x86_64-linux-gnu
python=/usr/bin/python3  # Debian's, with its numpy and scipy
out=build/linux/python-demo
mkdir -p "$out"
n=${N:-1000}
rounds=${ROUNDS:-3}
status=0

# Each library setting runs in processes of its own: the loader decides at start.
for system in reference openblas; do
    case $system in
        reference) path=$lib/blas:$lib/lapack ;;
        openblas) path=$lib/openblas-serial ;;
    esac
    echo "== system BLAS/LAPACK: $system"
    env LD_LIBRARY_PATH="$path" "$python" scripts/python_demo.py served | sed 's/^/   alone: /'
    env LD_LIBRARY_PATH="$path" LD_PRELOAD="$zor" "$python" scripts/python_demo.py served | sed 's/^/   with zor: /'
    env LD_LIBRARY_PATH="$path" "$python" scripts/python_demo.py run "$out/$system.npz" "$n" "$rounds"
    env LD_LIBRARY_PATH="$path" LD_PRELOAD="$zor" "$python" scripts/python_demo.py run "$out/$system-zor.npz" "$n" "$rounds"
    echo "n = $n, best of $rounds:"
    "$python" scripts/python_demo.py compare "$out/$system.npz" "$out/$system-zor.npz" "$system" || status=1
done

echo "== scipy.linalg's own tests (system: reference)"
tests=$("$python" -c 'import os, scipy.linalg; print(os.path.join(os.path.dirname(scipy.linalg.__file__), "tests"))')
summary() { grep -E '^[0-9]+ (passed|failed)|^=+ .*(passed|failed)' "$1" | tail -1; }
set +e
env LD_LIBRARY_PATH="$lib/blas:$lib/lapack" "$python" -m pytest -q -p no:cacheprovider "$tests" > "$out/pytest-alone.txt" 2>&1
alone=$?
env LD_LIBRARY_PATH="$lib/blas:$lib/lapack" LD_PRELOAD="$zor" "$python" -m pytest -q -p no:cacheprovider "$tests" > "$out/pytest-zor.txt" 2>&1
with=$?
set -e
echo "   alone:    $(summary "$out/pytest-alone.txt")"
echo "   with zor: $(summary "$out/pytest-zor.txt")"
if [ $with -ne $alone ] || ! diff <(grep -E '^(FAILED|ERROR)' "$out/pytest-alone.txt" | sort) \
                                    <(grep -E '^(FAILED|ERROR)' "$out/pytest-zor.txt" | sort) > /dev/null; then
    echo "scipy.linalg's tests fail differently with zor:"
    diff <(grep -E '^(FAILED|ERROR)' "$out/pytest-alone.txt" | sort) <(grep -E '^(FAILED|ERROR)' "$out/pytest-zor.txt" | sort) || true
    status=1
fi
exit $status
