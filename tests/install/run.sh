#!/usr/bin/env bash
# Installs the built library into a prefix, moves the prefix elsewhere, checks that the tree is
# complete and holds no path of where it was made, then builds the examples against the moved copy
# twice, with pkg-config and with CMake's find_package(zor), and runs them: natively on Linux, under
# Wine for the Windows cross build.
#
#   run.sh linux|windows CMAKE BUILD_DIR SOURCE_DIR WORK_DIR CC CXX
set -euo pipefail
platform=$1 cmake=$2 build=$3 source=$4 work=$5 cc=$6 cxx=$7
examples=$source/examples
rm -rf "${work:?}"
mkdir -p "$work"
work=$(cd "$work" && pwd)

fail() {
    echo "FAILED: $*"
    exit 1
}

"$cmake" --install "$build" --prefix "$work/staged" > "$work/install.log"
mkdir -p "$work/elsewhere"
mv "$work/staged" "$work/elsewhere/zor"
prefix=$work/elsewhere/zor

# Complete: every public header (the Fortran BLAS names' only with that build setting), the library
# with its links or its DLL and import library, the pkg-config file, the CMake package.
expected=(lib/pkgconfig/zor.pc lib/cmake/zor/zorConfig.cmake lib/cmake/zor/zorConfigVersion.cmake
          lib/cmake/zor/zorTargets.cmake)
for header in "$source"/include/zor/*.h; do
    name=$(basename "$header")
    [ "$name" = zor_blas.h ] && ! grep -qx 'ZOR_FORTRAN_BLAS_NAMES:BOOL=ON' "$build/CMakeCache.txt" && continue
    expected+=("include/zor/$name")
done
if [ "$platform" = windows ]; then
    expected+=(bin/zor.dll lib/libzor.dll.a)
else
    expected+=(lib/libzor.so.1 lib/libzor.so)
    [ "$(readlink "$prefix/lib/libzor.so")" = libzor.so.1 ] || fail "lib/libzor.so is not a link to libzor.so.1"
    objdump -p "$prefix/lib/libzor.so.1" | grep -qE 'SONAME +libzor\.so\.1$' || fail "libzor.so.1 lacks its soname"
    ! objdump -p "$prefix/lib/libzor.so.1" | grep -qE 'R(UN)?PATH' || fail "the installed library keeps a run path"
fi
for file in "${expected[@]}"; do
    [ -e "$prefix/$file" ] || fail "the installed tree lacks $file"
done
# Relocatable: no installed text names the build, the source or the first prefix.
if grep -rlI -e "$work/staged" -e "$build" -e "$source" "$prefix"; then
    fail "the files above name a path of the build"
fi

programs=(linear_system symmetric_eigen least_squares)

run() {
    local exe=$1
    if [ "$platform" = windows ]; then
        # zor.dll from the installed tree; the C++ runtime DLLs of the cross compiler.
        local path dll
        path=$(to_windows "$prefix/bin")
        for dll in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
            path+=";$(to_windows "$(dirname "$(realpath "$("$cxx" -print-file-name=$dll)")")")"
        done
        WINEPATH="$path" bash "$source/cmake/run-wine.sh" "$exe"
    else
        # The installed library and no other.
        local loaded
        loaded=$(ldd "$exe" | sed -n 's/.*libzor\.so\.1 => \([^ ]*\).*/\1/p')
        [ -n "$loaded" ] && [ "$(realpath "$loaded")" = "$(realpath "$prefix/lib/libzor.so.1")" ] ||
            fail "$exe loads ${loaded:-no libzor.so.1}, not the installed one"
        "$exe"
    fi
}
to_windows() {
    echo "Z:$(echo "$1" | tr / '\\')"
}
suffix=""
[ "$platform" = windows ] && suffix=.exe

# pkg-config: the flags it gives for the moved tree build each example. On Linux the library's
# folder goes into the program as its run path, as a user would do for a private prefix.
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
flags=$(pkg-config --cflags zor)
libs=$(pkg-config --libs zor)
echo "pkg-config: $flags $libs"
mkdir -p "$work/pkg-config"
for program in "${programs[@]}"; do
    exe=$work/pkg-config/$program$suffix
    case $(ls "$examples/$program".*) in
        *.c) compiler=$cc ;;
        *) compiler=$cxx ;;
    esac
    extra=()
    [ "$platform" = linux ] && extra=("-Wl,-rpath,$(pkg-config --variable=libdir zor)")
    # shellcheck disable=SC2086
    "$compiler" -Wall -Werror $flags "$(ls "$examples/$program".*)" -o "$exe" $libs -lm "${extra[@]}"
    out=$(run "$exe") || fail "$program (pkg-config) returned $?: $out"
    echo "pkg-config $program: $out"
done

# CMake: the examples' own project finds the package. A cross build searches only its root path
# for packages, so there the package's folder is named directly.
args=(-S "$examples" -B "$work/cmake" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_FLAGS="-Wall -Werror"
      -DCMAKE_CXX_FLAGS="-Wall -Werror")
if [ "$platform" = windows ]; then
    args+=(-DCMAKE_TOOLCHAIN_FILE="$source/cmake/toolchain-mingw64.cmake" -Dzor_DIR="$prefix/lib/cmake/zor")
else
    args+=(-DCMAKE_PREFIX_PATH="$prefix")
fi
"$cmake" "${args[@]}" > "$work/cmake-configure.log" || { cat "$work/cmake-configure.log"; fail "configuring the examples"; }
"$cmake" --build "$work/cmake" > "$work/cmake-build.log" || { cat "$work/cmake-build.log"; fail "building the examples"; }
for program in "${programs[@]}"; do
    out=$(run "$work/cmake/$program$suffix") || fail "$program (find_package) returned $?: $out"
    echo "find_package $program: $out"
done
echo "the installed tree works from $prefix"
