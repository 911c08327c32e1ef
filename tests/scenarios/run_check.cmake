# Runs the "check" command on a fresh demo database and compares what it
# reports. NAME.args holds the command's arguments after "--data-root DIR";
# NAME.play, when present, runs first (to change and save a node); NAME.out,
# NAME.err and NAME.exit hold the expected output, errors and exit status.
# -DEDITOR=<program> -DARGS=<NAME.args> -DWORK=<scratch folder>
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${EDITOR} init --data-root ${WORK}/root
  RESULT_VARIABLE init_status OUTPUT_QUIET ERROR_VARIABLE init_error)
if(NOT init_status EQUAL 0)
  message(FATAL_ERROR "init failed (${init_status}): ${init_error}")
endif()

string(REGEX REPLACE "\\.args$" "" base ${ARGS})
if(EXISTS ${base}.play)
  execute_process(COMMAND ${EDITOR} play --data-root ${WORK}/root ${base}.play
    RESULT_VARIABLE play_status OUTPUT_QUIET ERROR_VARIABLE play_error)
  if(NOT play_status EQUAL 0)
    message(FATAL_ERROR "play failed (${play_status}): ${play_error}")
  endif()
endif()

file(STRINGS ${ARGS} arguments LIMIT_COUNT 1)
separate_arguments(arguments UNIX_COMMAND "${arguments}")
execute_process(COMMAND ${EDITOR} check --data-root ${WORK}/root ${arguments}
  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)

set(expected_out "")
if(EXISTS ${base}.out)
  file(READ ${base}.out expected_out)
endif()
set(expected_err "")
if(EXISTS ${base}.err)
  file(READ ${base}.err expected_err)
endif()
set(expected_status 0)
if(EXISTS ${base}.exit)
  file(STRINGS ${base}.exit expected_status LIMIT_COUNT 1)
endif()

file(WRITE ${WORK}/actual.out "${out}")
file(WRITE ${WORK}/actual.err "${err}")
set(failures "")
if(NOT out STREQUAL expected_out)
  execute_process(COMMAND diff -u ${base}.out ${WORK}/actual.out OUTPUT_VARIABLE difference)
  string(APPEND failures "standard output differs:\n${difference}\n")
endif()
if(NOT err STREQUAL expected_err)
  string(APPEND failures "standard error differs; expected:\n${expected_err}got:\n${err}\n")
endif()
if(NOT status STREQUAL expected_status)
  string(APPEND failures "exit status ${status}, expected ${expected_status}\n")
endif()
if(failures)
  message(FATAL_ERROR "${failures}")
endif()
