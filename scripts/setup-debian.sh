#!/usr/bin/env bash
# Installs what building zor needs on a Debian machine; with --tests, also what its tests need
# (the Windows cross compilers, Wine, qemu-user, GoogleTest, valgrind, clang with libFuzzer,
# pkg-config for the install test, and reference LAPACK and BLAS with their test programs, which the
# "reference" and "dropin" tests run); with --demo, what the
# demonstration and the benchmarks compare and draw with (Debian's serial OpenBLAS and BLIS,
# reference LAPACK, gnuplot); with --python and --scalapack, what the numpy/scipy and ScaLAPACK
# demonstrations run.
set -euo pipefail
packages=(cmake ninja-build g++ ccache binutils)
if [ "${1:-}" = --tests ]; then
    packages+=(googletest gcc-mingw-w64-x86-64 g++-mingw-w64-x86-64 binutils-mingw-w64-x86-64 wine64 qemu-user
               libc-bin valgrind clang libclang-rt-14-dev libscalapack-openmpi-dev openmpi-bin
               libopenmpi-dev liblapack3 libblas3 liblapack-test libblas-test pkg-config)
fi
if [ "${1:-}" = --python ]; then
    packages+=(python3-scipy python3-pytest libopenblas0-serial liblapack3 libblas3)
fi
if [ "${1:-}" = --scalapack ]; then
    packages+=(libscalapack-openmpi-dev openmpi-bin libopenmpi-dev liblapack3 libblas3)
fi
if [ "${1:-}" = --demo ]; then
    packages+=(libopenblas0-serial libblis4-serial liblapack3 gnuplot-nox)
fi
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -ne 0 ] && sudo=sudo
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
