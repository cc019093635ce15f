# SPDX-License-Identifier: MIT
# cmake -DFOLDER=... -DOUTPUT=... -P gl_calls.cmake
# Writes a line GL_CALL(glName) for every OpenGL function that the sources of a folder call.
file(GLOB sources ${FOLDER}/*.cpp ${FOLDER}/*.h)
set(calls "")
foreach(source IN LISTS sources)
    file(READ ${source} text)
    string(REGEX MATCHALL "[^A-Za-z0-9_]gl[A-Z][A-Za-z0-9]*\\(" found "${text}")
    list(APPEND calls ${found})
endforeach()
list(TRANSFORM calls REPLACE "^.(gl[A-Za-z0-9]*)\\($" "GL_CALL(\\1)\n")
list(SORT calls)
list(REMOVE_DUPLICATES calls)
string(CONCAT lines ${calls})
file(WRITE ${OUTPUT} "${lines}")
