# SPDX-License-Identifier: MIT
# Writes a source file that tells the commit of the checkout, and whether it has been changed since;
# run with every build, it touches the file only when that has changed. Without a checkout: "".
#
#   cmake -D ROOT=FOLDER -D FILE=FILE -P write_commit.cmake
cmake_minimum_required(VERSION 3.25)
set(commit)
if(EXISTS ${ROOT}/.git)
    execute_process(COMMAND git rev-parse --short=10 HEAD WORKING_DIRECTORY ${ROOT}
        OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    execute_process(COMMAND git diff --quiet HEAD WORKING_DIRECTORY ${ROOT} RESULT_VARIABLE changed ERROR_QUIET)
    if(commit AND changed)
        string(APPEND commit ", changed")
    endif()
endif()
file(CONFIGURE OUTPUT ${FILE} CONTENT "#define COMMIT \"@commit@\"\n" @ONLY)
