# The five-variant build: every kernel source is compiled once per processor level, each time
# into its own namespace (zor::default_, zor::sse3, zor::ssse3, zor::sse42, zor::avx) with that
# level's instruction-set flags. ZOR_LEVEL carries the CpuLevel number into the source.

set(ZOR_LEVEL_NAMES default_ sse3 ssse3 sse42 avx)
set(ZOR_LEVEL_FLAGS_default_ -march=x86-64 -mtune=generic)
set(ZOR_LEVEL_FLAGS_sse3 -march=x86-64 -mtune=generic -msse3)
set(ZOR_LEVEL_FLAGS_ssse3 -march=x86-64 -mtune=generic -mssse3)
set(ZOR_LEVEL_FLAGS_sse42 -march=x86-64 -mtune=generic -msse4.2)
set(ZOR_LEVEL_FLAGS_avx -march=x86-64 -mtune=generic -mavx)
if(WIN32)
    # The Windows x64 stack is only 16-byte aligned, and GCC can spill 32-byte vectors to it with
    # aligned moves (GCC bug 54412); the assembler writes every aligned vector move as unaligned.
    list(APPEND ZOR_LEVEL_FLAGS_avx -Wa,-muse-unaligned-vector-move)
endif()

# zor_add_variant_objects(<prefix> SOURCES <files...>)
# Creates one object library per level, named <prefix>_<level>, and sets <prefix>_OBJECTS in the
# caller's scope to the generator expressions naming all their objects.
function(zor_add_variant_objects prefix)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    set(objects "")
    set(level 0)
    foreach(name IN LISTS ZOR_LEVEL_NAMES)
        set(target ${prefix}_${name})
        add_library(${target} OBJECT ${ARG_SOURCES})
        target_compile_definitions(${target} PRIVATE ZOR_LEVEL=${level} ZOR_LEVEL_NS=${name})
        target_compile_options(${target} PRIVATE ${ZOR_LEVEL_FLAGS_${name}})
        if(ARG_LINK)
            target_link_libraries(${target} PRIVATE ${ARG_LINK})
        endif()
        list(APPEND objects $<TARGET_OBJECTS:${target}>)
        math(EXPR level "${level} + 1")
    endforeach()
    set(${prefix}_OBJECTS ${objects} PARENT_SCOPE)
endfunction()
