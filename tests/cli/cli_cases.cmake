# -DEDITOR=<program> -DWORK=<scratch folder> -DVERSION=<project version>
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(failures "")

# expect(STATUS <code> [OUT <regex>] [ERR <regex>] [DISPLAY] ARGS <args...>):
# runs the program without a display (unless DISPLAY) and checks the result.
# Standard error must be empty when no ERR is given.
function(expect)
  cmake_parse_arguments(CASE "DISPLAY" "STATUS;OUT;ERR" "ARGS" ${ARGN})
  set(environment --unset=DISPLAY --unset=WAYLAND_DISPLAY --unset=QT_QPA_PLATFORM
    --unset=XDG_RUNTIME_DIR)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env ${environment} ${EDITOR} ${CASE_ARGS}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  set(problem "")
  if(NOT status STREQUAL CASE_STATUS)
    string(APPEND problem " exit status ${status}, expected ${CASE_STATUS};")
  endif()
  if(CASE_OUT AND NOT out MATCHES "${CASE_OUT}")
    string(APPEND problem " standard output does not match ${CASE_OUT}: ${out};")
  endif()
  if(CASE_ERR AND NOT err MATCHES "${CASE_ERR}")
    string(APPEND problem " standard error does not match ${CASE_ERR}: ${err};")
  elseif(NOT CASE_ERR AND NOT err STREQUAL "")
    string(APPEND problem " unexpected standard error: ${err};")
  endif()
  if(problem)
    set(failures "${failures}\n${CASE_ARGS}:${problem}" PARENT_SCOPE)
  endif()
endfunction()

set(root ${WORK}/root)
expect(STATUS 0 OUT "^dbn-node-editor ${VERSION}\n$" ARGS --version)
expect(STATUS 0 OUT "browse .*edit .*init .*where .*play .*exit codes:\n  0  done\n  1  failed"
  ARGS --help)
expect(STATUS 0 OUT "usage: dbn-node-editor play \\[--data-root DIR\\] \\[--database TARGET\\] SCRIPT\n.*SCRIPT .*exit codes:.*  1  a box asked.*  3  the script ran to its end, but"
  ARGS play --help)
expect(STATUS 0 OUT "--screenshot FILE  write a picture" ARGS edit --help)
expect(STATUS 0 OUT "^[^\n]*/Corvell/Sonavis\\+/Database/NewDB.mdb\n$" ARGS init --data-root ${root})
expect(STATUS 0 OUT "^${root}/Corvell/Sonavis\\+/Database/NewDB.mdb\n$" ARGS where --data-root ${root})
# A pipe as the database is refused at once by every command, never opened
# (a read of it would wait for ever).
execute_process(COMMAND mkfifo ${WORK}/pipe.mdb)
set(pipe_refused "^dbn-node-editor: The configuration database ${WORK}/pipe.mdb is a pipe, not a regular file.\n$")
expect(STATUS 1 ERR "${pipe_refused}" ARGS check --database ${WORK}/pipe.mdb 1 1 1)
expect(STATUS 1 ERR "${pipe_refused}" ARGS copy ${WORK}/pipe.mdb ${WORK}/copied.mdb)
expect(STATUS 1 ERR "${pipe_refused}" ARGS copy ${root}/Corvell/Sonavis+/Database/NewDB.mdb ${WORK}/pipe.mdb)
expect(STATUS 1 ERR "${pipe_refused}" ARGS init --force --database ${WORK}/pipe.mdb)

# A password inside --database works, is warned about once, and never shown.
expect(STATUS 0 OUT "^user=u dbname=db host=/nonexistent\n$"
  ERR "^dbn-node-editor: warning: the password given in --database can be read by other users of this machine in the process list; keep it in ~/.pgpass or PGPASSWORD instead.\n$"
  ARGS where --database "postgresql://u:Sesame@/db?host=/nonexistent")
expect(STATUS 2
  ERR "^dbn-node-editor: NODE must be a whole number from -32768 to 32767, not \"70000\"\n$"
  ARGS edit --data-root ${root} 1 2 70000)
expect(STATUS 2 ERR "^dbn-node-editor: CONFIG must be a whole number from -32768 to 32767, not \"x\"\n$"
  ARGS edit x 2 3)
expect(STATUS 2 ERR "^dbn-node-editor: edit needs CONFIG PARTITION NODE; usage: " ARGS edit 1 2)
expect(STATUS 2 ERR "^dbn-node-editor: Unknown option 'bogus'.\n$" ARGS where --bogus)
expect(STATUS 2 ERR "^dbn-node-editor: where takes no arguments, not \"extra\"\n$" ARGS where extra)
expect(STATUS 2 ERR "^dbn-node-editor: unknown command \"frob\"" ARGS frob)
expect(STATUS 1
  ERR "^dbn-node-editor: no display; set DISPLAY or WAYLAND_DISPLAY, or use --screenshot or play\n$"
  ARGS edit --data-root ${root} 1 1 1)
expect(STATUS 1
  ERR "^dbn-node-editor: no display; set DISPLAY or WAYLAND_DISPLAY, or use --screenshot or play\n$"
  ARGS --data-root ${root})
expect(STATUS 2 ERR "^dbn-node-editor: --screenshot FILE must end in .png, not \"${WORK}/shot.jpg\"\n$"
  ARGS edit --data-root ${root} --screenshot ${WORK}/shot.jpg 1 1 1)
expect(STATUS 2
  ERR "^dbn-node-editor: --screenshot FILE must end in .png and names a folder \"${WORK}/none\" that does not exist, not \"${WORK}/none/shot.jpg\"\n$"
  ARGS edit --data-root ${root} --screenshot ${WORK}/none/shot.jpg 1 1 1)
# Screenshots work without a display, and nothing of the toolkit's is printed.
expect(STATUS 0 ARGS edit --data-root ${root} --screenshot ${WORK}/editor.png 1 1 1)
expect(STATUS 0 ARGS browse --data-root ${root} --screenshot ${WORK}/list.png)
foreach(picture editor list)
  if(NOT EXISTS ${WORK}/${picture}.png)
    set(failures "${failures}\nno ${picture}.png written")
  endif()
endforeach()

# Who changed what: a save by play is in the history; restore writes back the
# state before it; watch hears a change committed by another process.
set(history_root ${WORK}/history)
expect(STATUS 0 OUT "NewDB.mdb" ARGS init --data-root ${history_root})
file(WRITE ${WORK}/save.play "open 1 1 1\ntype txtDescription \"Front desk\"\nclick cmdApply\nclick cmdOK\n")
expect(STATUS 0 OUT "returned false" ARGS play --data-root ${history_root} ${WORK}/save.play)
expect(STATUS 0
  OUT "^1  [0-9-]+T[0-9:]+Z  [^ ]+@[^ ]*  dbn-node-editor ${VERSION}  saved\n    NodeDescription: \"Staff directory\" -> \"Front desk\"\n$"
  ARGS history --data-root ${history_root} 1 1 1)
expect(STATUS 0
  OUT "^.\n  {\n    \"entry\": 1,\n    \"time\": \"[^\"]+Z\",\n    \"user\": .*\"kind\": \"saved\",\n    \"changes\": .\n      {\n        \"field\": \"NodeDescription\",\n        \"before\": \"Staff directory\",\n        \"after\": \"Front desk\"\n"
  ARGS history --data-root ${history_root} --json 1 1 1)
expect(STATUS 0 OUT "^\\[\\]\n$" ARGS history --data-root ${history_root} --json 1 1 2)
expect(STATUS 2 ERR "--limit N must be a whole number from 1 up, not \"0\""
  ARGS history --data-root ${history_root} --limit 0 1 1 1)
expect(STATUS 0 OUT "^DBN 1 was restored to the state before entry 1 as entry 2.\n$"
  ARGS restore --data-root ${history_root} --before 1 1 1 1)
expect(STATUS 0 OUT "^2  [^\n]*  restored\n    NodeDescription: \"Front desk\" -> \"Staff directory\"\n1  "
  ARGS history --data-root ${history_root} --limit 2 1 1 1)
expect(STATUS 1 ERR "^dbn-node-editor: History entry 1 is not of DBN 2. Nothing was restored.\n$"
  ARGS restore --data-root ${history_root} 1 1 2 1)
expect(STATUS 2 ERR "watch needs both CONFIG and PARTITION, or neither"
  ARGS watch --data-root ${history_root} 1)
expect(STATUS 0 OUT "^2 1/1 DBN 1 [^\n]* restored: NodeDescription\n$"
  ARGS watch --data-root ${history_root} --after 1 --count 1)
execute_process(COMMAND sh -c
    "\"$0\" watch --data-root \"$1\" --json --count 1 1 1 > \"$2/watched\" & sleep 1; \"$0\" play --data-root \"$1\" \"$2/save.play\" > /dev/null; wait"
    ${EDITOR} ${history_root} ${WORK}
  TIMEOUT 20 RESULT_VARIABLE watch_status)
file(READ ${WORK}/watched watched)
if(NOT watch_status EQUAL 0 OR NOT watched MATCHES "^{\"entry\":3,\"configuration\":1,\"partition\":1,\"nodeType\":\"DBN\",\"node\":1,.*\"kind\":\"saved\",\"changes\":\\[{\"field\":\"NodeDescription\",\"before\":\"Staff directory\",\"after\":\"Front desk\"}\\]}\n$")
  set(failures "${failures}\nwatch saw: ${watched} (status ${watch_status})")
endif()
# A node that does not exist, or is refused, fails after its box, which goes to
# standard error with --screenshot.
expect(STATUS 1
  ERR "^box Information: DBN 7 doesn't exist\\. => OK\n$"
  ARGS edit --data-root ${root} --screenshot ${WORK}/none.png 1 1 7)

# On a screen scaled to 200 % (400 x 400 of the offscreen 800 x 800, smaller
# than the editor's 706 x 561), the editor and the node list keep within it:
# their pictures, in device pixels, are no larger than the screen.
function(png_size file out_width out_height)
  file(READ ${file} header LIMIT 24 HEX)
  string(SUBSTRING "${header}" 32 8 width_hex)
  string(SUBSTRING "${header}" 40 8 height_hex)
  math(EXPR width "0x${width_hex}")
  math(EXPR height "0x${height_hex}")
  set(${out_width} ${width} PARENT_SCOPE)
  set(${out_height} ${height} PARENT_SCOPE)
endfunction()
foreach(command "edit;1;1;1" "browse")
  list(GET command 0 name)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=DISPLAY --unset=WAYLAND_DISPLAY
      QT_SCALE_FACTOR=2 ${EDITOR} ${command} --data-root ${root} --screenshot ${WORK}/scaled.png
    RESULT_VARIABLE status ERROR_VARIABLE err)
  png_size(${WORK}/scaled.png width height)
  if(NOT status EQUAL 0 OR width GREATER 800 OR height GREATER 800)
    set(failures "${failures}\n${name} at 200 %: status ${status}, ${width} x ${height}: ${err}")
  endif()
endforeach()

# simulate: a call through demo node 1 from --keys or from standard input.
expect(STATUS 0 OUT "^0 start\n  play: MSG 1 \"Main greeting\"\n.*\n5 key 1\n  note: picked 1\n  play: the name \"Grace Adams\"\n  exit Valid Match: XFER 1 \"Operator transfer\", extension 2101 \\(Grace Adams\\)\n$"
  ARGS simulate --data-root ${root} --keys "2 3 2 silence 1" 1 1 1)
expect(STATUS 0 OUT "\n{\"step\":1,\"event\":\"#\",.*\"exit\":{\"exit\":\"#\",\"target\":\"NOOP\",\"description\":\"\"}}\n$"
  ARGS simulate --data-root ${root} --json --keys "#" 1 1 1)
expect(STATUS 2 ERR "^dbn-node-editor: --keys: \"9x\" is not a key \\(0-9, \\*, #\\) or \"silence\"\n$"
  ARGS simulate --data-root ${root} --keys "2 9x" 1 1 1)
expect(STATUS 1 ERR "^dbn-node-editor: DBN 7 doesn.t exist.\n$" ARGS simulate --data-root ${root} 1 1 7)
file(WRITE ${WORK}/events.txt "2\n\nhush\n3\n")
execute_process(COMMAND ${EDITOR} simulate --data-root ${root} 1 1 1 INPUT_FILE ${WORK}/events.txt
  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT status EQUAL 1 OR NOT out MATCHES "\n2 key 3\n  first stage, Last Name: 23, 1 match: Grace Adams 2101\n$"
   OR NOT err STREQUAL "dbn-node-editor: \"hush\" is not a key (0-9, *, #) or \"silence\"\ndbn-node-editor: the events ended before the call left the node\n")
  set(failures "${failures}\nsimulate from standard input: status ${status}: ${out}${err}")
endif()

if(failures)
  message(FATAL_ERROR "${failures}")
endif()
