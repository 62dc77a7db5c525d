# Compiles the help of one language: cmake -D CHMCMD=... -D SOURCE=help -D LANGUAGE=en -D WORK=directory -D OUTPUT=file
# -P CompileHelp.cmake
#
# The compiler knows no other place than the one where its project lies, keeps its result when it fails, and says what is
# wrong in words only: so it works in a directory of its own, what it says is read, and only a good result gets its name.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
file(GLOB PAGES ${SOURCE}/${LANGUAGE}/*.htm)
file(GLOB PICTURES ${SOURCE}/images/*.png)
set(OF_THE_LANGUAGE ${SOURCE}/${LANGUAGE}/contents.hhc ${SOURCE}/${LANGUAGE}/index.hhk)
foreach(FILE ${OF_THE_LANGUAGE} ${SOURCE}/style.css)
    if(NOT EXISTS ${FILE})
        message(FATAL_ERROR "The help of language ${LANGUAGE} can't be compiled: ${FILE} is missing.")
    endif()
endforeach()
if(NOT PAGES)
    message(FATAL_ERROR "The help of language ${LANGUAGE} can't be compiled: no pages in ${SOURCE}/${LANGUAGE}.")
endif()
file(COPY ${PAGES} ${PICTURES} ${OF_THE_LANGUAGE} ${SOURCE}/style.css DESTINATION ${WORK})

set(FILES ${PAGES} ${PICTURES} ${SOURCE}/style.css)
list(TRANSFORM FILES REPLACE ".*/" "")
list(JOIN FILES "\n" FILES)
file(WRITE ${WORK}/help.hhp "[OPTIONS]
Compatibility=1.1 or later
Compiled file=result.chm
Contents file=contents.hhc
Index file=index.hhk
Default topic=_PB001.htm
Binary TOC=No
Binary Index=No
Full-text search=No

[FILES]
${FILES}
")
execute_process(COMMAND ${CHMCMD} help.hhp WORKING_DIRECTORY ${WORK}
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE SAID ERROR_VARIABLE SAID)
set(SIZE 0)
if(EXISTS ${WORK}/result.chm)
    file(SIZE ${WORK}/result.chm SIZE)
endif()
if(NOT RESULT EQUAL 0 OR SIZE EQUAL 0 OR SAID MATCHES "(^|\n)(Warning|Error)")
    message(FATAL_ERROR "The help of language ${LANGUAGE} was not compiled: ${CHMCMD} ended with ${RESULT}, "
        "its result has ${SIZE} bytes. It said:\n${SAID}")
endif()
get_filename_component(DIRECTORY ${OUTPUT} DIRECTORY)
file(MAKE_DIRECTORY ${DIRECTORY})
file(RENAME ${WORK}/result.chm ${OUTPUT})
