# At installation: the npm packages that the programs need, without what only serves development. What runs, and each
# package's licence, stays.
find_program(NPM npm REQUIRED)
execute_process(COMMAND ${NPM} ls --omit=dev --all --parseable WORKING_DIRECTORY ${NC_SOURCE}
    OUTPUT_VARIABLE PACKAGES OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_VARIABLE SAID RESULT_VARIABLE RESULT)
if(NOT RESULT EQUAL 0)
    message(FATAL_ERROR "The npm packages of nc/ aren't complete (npm ci --prefix nc): ${SAID}")
endif()
string(REPLACE "\n" ";" PACKAGES "${PACKAGES}")
list(POP_FRONT PACKAGES)    # this folder itself
foreach(PACKAGE IN LISTS PACKAGES)
    file(RELATIVE_PATH NAME ${NC_SOURCE}/node_modules ${PACKAGE})
    if(NAME MATCHES "^@types/")
        continue()    # for a compiler only
    endif()
    # Some packages tell their licence in their readme alone.
    file(GLOB LICENCE ${PACKAGE}/[Ll][Ii][Cc][Ee][Nn][CcSs][Ee]* ${PACKAGE}/[Cc][Oo][Pp][Yy][Ii][Nn][Gg]*)
    set(README)
    if(LICENCE)
        set(README REGEX "/[Rr][Ee][Aa][Dd][Mm][Ee][^/]*$" EXCLUDE)
    endif()
    # A package within another one is in the list, too.
    file(INSTALL ${PACKAGE}/ DESTINATION ${CMAKE_INSTALL_PREFIX}/${ROTOR_TRIM_DATA_DIR}/nc/node_modules/${NAME}
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
        PATTERN node_modules EXCLUDE
        REGEX "\\.([cm]?ts|map|tsbuildinfo)$" EXCLUDE
        REGEX "/tsconfig[^/]*\\.json$" EXCLUDE
        REGEX "/tests?$" EXCLUDE
        REGEX "/node-opcua[^/]*/source$" EXCLUDE    # of the TypeScript compiler
        REGEX "/\\.[^/]+$" EXCLUDE
        REGEX "/(CHANGELOG|Changelog|changelog|CHANGES|HISTORY|History)[^/]*$" EXCLUDE
        ${README})
endforeach()
