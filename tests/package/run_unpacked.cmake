# Unpacks the package built by package.build and runs what it installs:
# the program (--version, init, a play scenario), the installed files, the
# library's exported symbols, and a C11 host built against the package.
cmake_minimum_required(VERSION 3.25)

function(run)
  cmake_parse_arguments(RUN "" "EXPECT;INPUT;OUTPUT_VARIABLE" "COMMAND;ENV" ${ARGN})
  execute_process(COMMAND ${CMAKE_COMMAND} -E env ${RUN_ENV} ${RUN_COMMAND}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${RUN_COMMAND} failed (${status}):\n${out}\n${err}")
  endif()
  if(RUN_OUTPUT_VARIABLE)
    set(${RUN_OUTPUT_VARIABLE} "${out}" PARENT_SCOPE)
  endif()
endfunction()

file(GLOB debs ${PACKAGE_DIR}/*.deb)
list(LENGTH debs count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "expected one package in ${PACKAGE_DIR}, found: ${debs}")
endif()
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/root)
run(COMMAND dpkg-deb -x ${debs} ${WORK}/root)
set(usr ${WORK}/root/usr)
set(program ${usr}/bin/dbn-node-editor)

run(COMMAND ${program} --version OUTPUT_VARIABLE version)
if(NOT version STREQUAL "dbn-node-editor ${VERSION}\n")
  message(FATAL_ERROR "--version printed: ${version}")
endif()

# Installed files.
file(GLOB_RECURSE soname ${usr}/lib/libcvl_dbn_node.so.1)
file(GLOB_RECURSE devlink ${usr}/lib/libcvl_dbn_node.so)
file(GLOB_RECURSE pcfile ${usr}/lib/cvl_dbn_node.pc)
foreach(path soname devlink pcfile)
  if(NOT ${path})
    message(FATAL_ERROR "the package lacks ${path}")
  endif()
endforeach()
foreach(file include/cvl_dbn_node.h share/applications/${APP_ID}.desktop
    share/icons/hicolor/scalable/apps/${APP_ID}.svg share/metainfo/${APP_ID}.metainfo.xml
    share/man/man1/dbn-node-editor.1.gz share/doc/dbn-node-editor/copyright)
  if(NOT EXISTS ${usr}/${file})
    message(FATAL_ERROR "the package lacks /usr/${file}")
  endif()
endforeach()

# Only the C entry point is exported.
run(COMMAND nm -D --defined-only ${soname} OUTPUT_VARIABLE symbols)
string(REGEX MATCHALL "[^\n]+" lines "${symbols}")
foreach(line ${lines})
  if(NOT line MATCHES " cvl_dbn_[a-z_]+$")
    message(FATAL_ERROR "the library exports more than cvl_dbn_*: ${line}")
  endif()
endforeach()

# The program runs from the unpacked folder: init, then a scenario.
run(COMMAND ${program} init --data-root ${WORK}/data)
run(COMMAND ${program} play --data-root ${WORK}/data ${SCENARIO}.play OUTPUT_VARIABLE played)
file(READ ${SCENARIO}.out expected)
if(NOT played STREQUAL expected)
  message(FATAL_ERROR "the unpacked program's play output differs:\n${played}")
endif()

# A C11 host built against the package alone.
get_filename_component(pcdir ${pcfile} DIRECTORY)
file(STRINGS ${pcfile} prefix REGEX "^prefix=")
if(NOT prefix STREQUAL "prefix=/usr")
  message(FATAL_ERROR "the pkg-config file names ${prefix}, not prefix=/usr")
endif()
run(COMMAND pkg-config --define-variable=prefix=${usr} --cflags --libs cvl_dbn_node
  ENV PKG_CONFIG_PATH=${pcdir} OUTPUT_VARIABLE flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(COMMAND ${C_COMPILER} -std=c11 -pedantic -Wall -Wextra -Werror ${C_CLIENT} ${flags}
  -o ${WORK}/c_client)
get_filename_component(libdir ${soname} DIRECTORY)
run(COMMAND ${WORK}/c_client ${WORK}/data ENV LD_LIBRARY_PATH=${libdir}
  OUTPUT_VARIABLE client)
message(STATUS "${client}")
