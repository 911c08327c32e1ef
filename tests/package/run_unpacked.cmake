# Checks the three packages built by package.build (control fields, files,
# the ldconfig trigger), unpacks them together and runs what they install:
# the program (--version, init, a play scenario), the library's exported
# symbols, and a C11 host built against the packages.
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

# Each package: its control fields, and what it holds (paths under /usr).
# The library and -dev packages name the library's exact version.
set(library libcvl-dbn-node1)
set(depends_exact "${library} (= ${VERSION})")
set(program_files bin/dbn-node-editor share/applications/${APP_ID}.desktop
  share/icons/hicolor/scalable/apps/${APP_ID}.svg share/metainfo/${APP_ID}.metainfo.xml
  share/man/man1/dbn-node-editor.1.gz share/doc/dbn-node-editor/copyright)
set(library_files ${LIBDIR}/libcvl_dbn_node.so.1 ${LIBDIR}/libcvl_dbn_node.so.${VERSION}
  share/doc/${library}/copyright)
set(dev_files include/cvl_dbn_node.h ${LIBDIR}/libcvl_dbn_node.so
  ${LIBDIR}/pkgconfig/cvl_dbn_node.pc share/doc/libcvl-dbn-node-dev/copyright)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/root)
foreach(kind program library dev)
  if(kind STREQUAL "program")
    set(name dbn-node-editor)
  elseif(kind STREQUAL "library")
    set(name ${library})
  else()
    set(name libcvl-dbn-node-dev)
  endif()
  file(GLOB deb ${PACKAGE_DIR}/${name}_${VERSION}_*.deb)
  if(NOT deb)
    message(FATAL_ERROR "no package ${name} in ${PACKAGE_DIR}")
  endif()
  run(COMMAND dpkg-deb -f ${deb} Depends OUTPUT_VARIABLE depends)
  if(kind STREQUAL "dev" AND NOT depends STREQUAL "${depends_exact}\n")
    message(FATAL_ERROR "${name} depends on: ${depends}")
  endif()
  string(FIND "${depends}" "${depends_exact}, " at)
  if(kind STREQUAL "program" AND NOT at EQUAL 0)
    message(FATAL_ERROR "${name} does not depend on ${depends_exact}: ${depends}")
  endif()
  run(COMMAND dpkg-deb -c ${deb} OUTPUT_VARIABLE listing)
  foreach(file ${${kind}_files})
    if(NOT listing MATCHES " \\./usr/${file}( |\n)")
      message(FATAL_ERROR "${name} lacks /usr/${file}:\n${listing}")
    endif()
  endforeach()
  run(COMMAND dpkg-deb -x ${deb} ${WORK}/root)
endforeach()

# ldconfig runs through a trigger, never from a maintainer script.
file(MAKE_DIRECTORY ${WORK}/control)
file(GLOB deb ${PACKAGE_DIR}/${library}_${VERSION}_*.deb)
run(COMMAND dpkg-deb -e ${deb} ${WORK}/control)
file(READ ${WORK}/control/triggers triggers)
if(NOT triggers MATCHES "activate-noawait ldconfig")
  message(FATAL_ERROR "the library package has no ldconfig trigger: ${triggers}")
endif()
foreach(script postinst postrm)
  if(EXISTS ${WORK}/control/${script})
    message(FATAL_ERROR "the library package has a ${script} script")
  endif()
endforeach()

set(usr ${WORK}/root/usr)
set(program ${usr}/bin/dbn-node-editor)
set(soname ${usr}/${LIBDIR}/libcvl_dbn_node.so.1)
set(pcfile ${usr}/${LIBDIR}/pkgconfig/cvl_dbn_node.pc)

run(COMMAND ${program} --version OUTPUT_VARIABLE version)
if(NOT version STREQUAL "dbn-node-editor ${VERSION}\n")
  message(FATAL_ERROR "--version printed: ${version}")
endif()

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
