# Where an installation puts things. What the programs look for beside themselves lies there as in a build, or seems to:
# what no architecture is tied to is shared, and linked to from there.
set(CMAKE_INSTALL_DOCDIR share/doc/rotor-trim)
include(GNUInstallDirs)
set(ROTOR_TRIM_PROGRAM_DIR lib/rotor-trim/bin)
set(ROTOR_TRIM_DATA_DIR ${CMAKE_INSTALL_DATADIR}/rotor-trim)

# Links lead there from the place where they lie, so that the installation can be moved as a whole.
function(install_link TARGET LINK)
    cmake_path(GET LINK PARENT_PATH DIRECTORY)
    cmake_path(RELATIVE_PATH TARGET BASE_DIRECTORY ${DIRECTORY} OUTPUT_VARIABLE TARGET)
    install(CODE "
        set(LINK \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${LINK}\")
        cmake_path(GET LINK PARENT_PATH DIRECTORY)
        file(MAKE_DIRECTORY \${DIRECTORY})
        message(STATUS \"Installing: \${LINK}\")
        file(CREATE_LINK ${TARGET} \${LINK} SYMBOLIC)")
endfunction()
