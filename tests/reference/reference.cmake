# Reference LAPACK's own test programs (Debian's liblapack-test) on the built library, label
# "reference": each input file in the published format runs with zor loaded ahead of the reference
# library and must fail nothing that the reference library alone passes (run-reference.sh). A
# family adds its paths with an input file here and one line below. Linux only; not under the
# sanitizers, whose runtime cannot be preloaded into the programs.
set(ZOR_REFERENCE_PROGRAMS /usr/lib/x86_64-linux-gnu/lapack)
if(NOT WIN32 AND NOT ZOR_SANITIZER AND EXISTS ${ZOR_REFERENCE_PROGRAMS}/xlintstd)
    function(zor_add_reference_test program input)
        get_filename_component(_name ${input} NAME_WE)
        add_test(NAME reference_${program}_${_name}
            COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/reference/run-reference.sh ${program}
                    ${CMAKE_CURRENT_SOURCE_DIR}/reference/${input} $<TARGET_FILE:zor>
                    ${CMAKE_CURRENT_BINARY_DIR}/reference)
        set_tests_properties(reference_${program}_${_name} PROPERTIES LABELS reference
            ENVIRONMENT_MODIFICATION "${ZOR_TEST_ENVIRONMENT}")
    endfunction()

    # The QR, LQ and pivoted QR paths of the linear-equation programs.
    zor_add_reference_test(xlintstd lin/dqr.in)
    zor_add_reference_test(xlintstz lin/zqr.in)

    # The nonsymmetric eigenproblem: balancing and its inverse, the Hessenberg reduction, the
    # reordering and Sylvester routines, the drivers (the published inputs), and the drivers again
    # past the multishift crossover (dev.in, zev.in).
    zor_add_reference_test(xeigtstd eig/nep.in)
    zor_add_reference_test(xeigtstz eig/nep.in)
    zor_add_reference_test(xeigtstd eig/dec.in)
    zor_add_reference_test(xeigtstz eig/zec.in)
    zor_add_reference_test(xeigtstd eig/ded.in)
    zor_add_reference_test(xeigtstz eig/zed.in)
    zor_add_reference_test(xeigtstd eig/dev.in)
    zor_add_reference_test(xeigtstz eig/zev.in)
    zor_add_reference_test(xeigtstd eig/dbal.in)
    zor_add_reference_test(xeigtstz eig/zbal.in)
    zor_add_reference_test(xeigtstd eig/dbak.in)
    zor_add_reference_test(xeigtstz eig/zbak.in)

    # The generalized eigenproblem: the Hessenberg-triangular reduction, QZ and the eigenvectors
    # (dgg.in, zgg.in), and the drivers (dgd.in, zgd.in: dgges and dggev, and reference LAPACK's
    # blocked and expert drivers running on zor's QZ, eigenvectors and reordering).
    zor_add_reference_test(xeigtstd eig/dgg.in)
    zor_add_reference_test(xeigtstz eig/zgg.in)
    zor_add_reference_test(xeigtstd eig/dgd.in)
    zor_add_reference_test(xeigtstz eig/zgd.in)

    # The symmetric eigenproblem path (SEP) of the eigenvalue programs: dsyevd and zheevd.
    zor_add_reference_test(xeigtstd eig/dsep.in)
    zor_add_reference_test(xeigtstz eig/zsep.in)
    # The least-squares path (dgelsd among the drivers) and the SVD path of the eigenproblem
    # programs (dgesdd, zgesdd), on inputs of the project's own in the published format.
    zor_add_reference_test(xlintstd lin/dls.in)
    zor_add_reference_test(xeigtstd eig/dsvd.in)
    zor_add_reference_test(xeigtstz eig/zsvd.in)
endif()
