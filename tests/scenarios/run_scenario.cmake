# Runs one play script on a fresh demo database and compares what it reports.
# -DEDITOR=<program> -DSCRIPT=<NAME.play> -DWORK=<scratch folder> [-DFROM_STDIN=ON]
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

# In the suite's server pass the script runs on a fresh database of the test
# server (scripts/with-postgres), named after the scenario.
if("$ENV{DBN_TEST_ENGINE}" STREQUAL "postgresql")
  get_filename_component(database ${WORK} NAME)
  string(TOLOWER "scenario_${database}" database)
  execute_process(COMMAND psql -X -q "$ENV{DBN_TEST_POSTGRES}"
      -c "DROP DATABASE IF EXISTS ${database} WITH (FORCE)" -c "CREATE DATABASE ${database}"
    RESULT_VARIABLE psql_status ERROR_VARIABLE psql_error)
  if(NOT psql_status EQUAL 0)
    message(FATAL_ERROR "cannot make the scenario's database (${psql_status}): ${psql_error}")
  endif()
  string(REPLACE "@/postgres?" "@/${database}?" server_uri "$ENV{DBN_TEST_POSTGRES}")
  set(ENV{DBN_DATABASE} "${server_uri}")
else()
  # Never the database the developer's own environment names.
  unset(ENV{DBN_DATABASE})
endif()
execute_process(COMMAND ${EDITOR} init --data-root ${WORK}/root
  RESULT_VARIABLE init_status OUTPUT_QUIET ERROR_VARIABLE init_error)
if(NOT init_status EQUAL 0)
  message(FATAL_ERROR "init failed (${init_status}): ${init_error}")
endif()

# NAME.sql beside the script changes the fresh database before the run
# (stored values the form cannot show as they are); the rows NAME.query reads
# after the run follow the run's output, after a line "stored:".
string(REGEX REPLACE "\\.play$" "" base ${SCRIPT})
function(run_sql sql_file result_variable)
  if("$ENV{DBN_TEST_ENGINE}" STREQUAL "postgresql")
    execute_process(COMMAND psql -X -q -A -t -F "|" -v ON_ERROR_STOP=1 -f ${sql_file}
        "${server_uri}"
      RESULT_VARIABLE sql_status OUTPUT_VARIABLE sql_out ERROR_VARIABLE sql_error)
  else()
    execute_process(COMMAND sqlite3 -bail ${WORK}/root/Corvell/Sonavis+/Database/NewDB.mdb
      INPUT_FILE ${sql_file}
      RESULT_VARIABLE sql_status OUTPUT_VARIABLE sql_out ERROR_VARIABLE sql_error)
  endif()
  if(NOT sql_status EQUAL 0)
    message(FATAL_ERROR "${sql_file} failed (${sql_status}): ${sql_error}")
  endif()
  set(${result_variable} "${sql_out}" PARENT_SCOPE)
endfunction()
if(EXISTS ${base}.sql)
  run_sql(${base}.sql ignored)
endif()

if(FROM_STDIN)
  execute_process(COMMAND ${EDITOR} play --data-root ${WORK}/root -
    INPUT_FILE ${SCRIPT}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
else()
  execute_process(COMMAND ${EDITOR} play --data-root ${WORK}/root ${SCRIPT}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
endif()

if(EXISTS ${base}.query)
  run_sql(${base}.query stored)
  string(APPEND out "stored:\n${stored}")
endif()
include(${CMAKE_CURRENT_LIST_DIR}/compare_outputs.cmake)
