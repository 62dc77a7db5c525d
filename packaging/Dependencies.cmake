# At packing: what the programs are linked to, as packages. CPack would find it as well, by looking at each of the thousands of
# files, for a minute; here it is known which ones are meant.
set(WORK ${CPACK_TOPLEVEL_DIRECTORY}/dependencies)
file(WRITE ${WORK}/debian/control "Source: ${CPACK_PACKAGE_NAME}\n\nPackage: ${CPACK_PACKAGE_NAME}\nArchitecture: any\n")
execute_process(COMMAND dpkg-shlibdeps -l${CPACK_ROTOR_TRIM_BUILT} -O
        ${CPACK_ROTOR_TRIM_BUILT}/console ${CPACK_ROTOR_TRIM_BUILT}/simulator
        ${CPACK_ROTOR_TRIM_BUILT}/librtr_trim.so ${CPACK_ROTOR_TRIM_BUILT}/libcorvane_platform.so
    WORKING_DIRECTORY ${WORK} OUTPUT_VARIABLE LINKED ERROR_VARIABLE SAID RESULT_VARIABLE RESULT
    OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT RESULT EQUAL 0 OR NOT LINKED MATCHES "^shlibs:Depends=(.+)$")
    message(FATAL_ERROR "What the programs are linked to can't be told: ${LINKED}${SAID}")
endif()
string(PREPEND CPACK_DEBIAN_PACKAGE_DEPENDS "${CMAKE_MATCH_1}, ")
