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

include(${CMAKE_CURRENT_LIST_DIR}/compare_outputs.cmake)
