# Makes PACKED/NAME.zip and NAME.zip.sha256 from the files that LISTS/files.txt names ("FILE>FOLDER" or "FILE>FOLDER>NAME", a line each).
set(root ${PACKED}/${NAME})
file(REMOVE_RECURSE ${root})

file(STRINGS ${LISTS}/files.txt files)
foreach(line IN LISTS files)
    string(REPLACE ">" ";" parts "${line}")
    list(GET parts 0 file)
    list(GET parts 1 folder)
    file(COPY ${file} DESTINATION ${root}/${folder})
    if(parts MATCHES "^[^;]*;[^;]*;(.+)$")
        cmake_path(GET file FILENAME name)
        file(RENAME ${root}/${folder}/${name} ${root}/${folder}/${CMAKE_MATCH_1})
    endif()
endforeach()
file(GLOB_RECURSE programs ${root}/bin/*.exe ${root}/bin/*.dll ${root}/bin/*.mox)
execute_process(COMMAND ${STRIP} ${programs} COMMAND_ERROR_IS_FATAL ANY)

# The files of the source tree that tests read.
foreach(file IN ITEMS docs/kestractl.schema.json docs/kestratrace.schema.json docs/tools.md include/kestraboot tests/endurance/faults/expected tests/library/exports.txt
        tests/tools/recordings/demo.log)
    cmake_path(GET file PARENT_PATH folder)
    file(COPY ${SOURCE}/${file} DESTINATION ${root}/bin/sources/${folder})
endforeach()

# The names of the tests that are left out, from their sources: a suite with parameters counts once.
file(STRINGS ${LISTS}/left-out-sources.txt sources)
set(names)
foreach(line IN LISTS sources)
    string(REGEX MATCH "^(.*)>(.*)$" ignored "${line}")
    set(program ${CMAKE_MATCH_1})
    file(STRINGS ${CMAKE_MATCH_2} tests REGEX "^TEST(_F|_P)?\\(")
    foreach(test IN LISTS tests)
        string(REGEX MATCH "\\(([A-Za-z0-9_]+), *([A-Za-z0-9_]+)\\)" ignored "${test}")
        string(APPEND names "${program} ${CMAKE_MATCH_1}.${CMAKE_MATCH_2}\n")
    endforeach()
endforeach()
file(WRITE ${root}/bin/left-out.txt "${names}")
file(COPY ${SOURCE}/tests/real_windows/programs.txt DESTINATION ${root}/bin)

# With the line ends that cmd and Notepad need.
foreach(file IN ITEMS run-tests.cmd read-me.txt)
    configure_file(${SOURCE}/tests/real_windows/${file} ${root}/${file} @ONLY NEWLINE_STYLE WIN32)
endforeach()

file(REMOVE ${root}.zip)
execute_process(COMMAND ${CMAKE_COMMAND} -E tar cf ${NAME}.zip --format=zip ${NAME}
    WORKING_DIRECTORY ${PACKED} COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${root})
file(SHA256 ${root}.zip sum)
file(WRITE ${root}.zip.sha256 "${sum}  ${NAME}.zip\n")
file(SIZE ${root}.zip size)
math(EXPR size "${size} / 1000")
message("${root}.zip: ${size} kB")
