# dbn_layer(<target> SOURCES <files...> DEPS <targets...>): a static library
# of the listed .cpp files of the calling folder, with src/ as its include
# root. A layer without sources yet gives an interface library.
function(dbn_layer target)
  cmake_parse_arguments(LAYER "" "" "SOURCES;DEPS" ${ARGN})
  if(LAYER_SOURCES)
    add_library(${target} STATIC ${LAYER_SOURCES})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PUBLIC ${LAYER_DEPS})
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} INTERFACE ${LAYER_DEPS})
  endif()
endfunction()

# dbn_test(<name> DEPS <targets...> [LABELS <labels...>]): one GoogleTest
# program of every .cpp in tests/<name>/, registered with CTest under the
# labels given (scripts/test picks the server pass's tests by label).
function(dbn_test name)
  cmake_parse_arguments(TEST "" "" "DEPS;LABELS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_include_directories(test_${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/support)
  target_link_libraries(test_${name} PRIVATE ${TEST_DEPS} GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(test_${name} DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" LABELS "${TEST_LABELS}")
endfunction()
