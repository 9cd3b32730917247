# GoogleTest for Windows, from the sources that Debian packs, and Wine to run what is built with it.
set(googletest /usr/src/googletest/googletest)
add_library(vesko_gtest STATIC ${googletest}/src/gtest-all.cc)
target_include_directories(
  vesko_gtest SYSTEM PUBLIC ${CMAKE_CURRENT_LIST_DIR}/googletest ${googletest}/include
  PRIVATE ${googletest})
target_link_options(vesko_gtest INTERFACE -static)
add_library(GTest::gtest ALIAS vesko_gtest)
add_library(vesko_gtest_main STATIC ${googletest}/src/gtest_main.cc)
target_link_libraries(vesko_gtest_main PUBLIC vesko_gtest)
add_library(GTest::gtest_main ALIAS vesko_gtest_main)

set(in_wine ${CMAKE_CURRENT_LIST_DIR}/run-test.sh ${PROJECT_BINARY_DIR}/wine-units)
add_test(NAME windows.start COMMAND ${in_wine} start)
set_tests_properties(windows.start PROPERTIES FIXTURES_SETUP wine TIMEOUT 120)
add_test(NAME windows.end COMMAND ${in_wine} end)
set_tests_properties(windows.end PROPERTIES FIXTURES_CLEANUP wine TIMEOUT 60)

# vesko_wine_test(<program>): runs it in Korean, Japanese and Western surroundings.
function(vesko_wine_test name)
  foreach(surroundings 949:ko_KR 932:ja_JP 1252:en_GB)
    string(REPLACE ":" ";" surroundings ${surroundings})
    list(GET surroundings 0 code_page)
    list(GET surroundings 1 language)
    add_test(NAME windows.${name}.${code_page} COMMAND ${in_wine} $<TARGET_FILE:${name}>)
    set_tests_properties(
      windows.${name}.${code_page}
      PROPERTIES FIXTURES_REQUIRED wine TIMEOUT 120
                 ENVIRONMENT "VESKO_LANGUAGE=${language};VESKO_CODE_PAGE=${code_page}")
  endforeach()
endfunction()
