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

# What Wine takes for the user's language is in its prefix: one for each.
set(vesko_surroundings 949:ko_KR 932:ja_JP 1252:en_GB)

# vesko_add_wine_test(<name> <code page> <language> <command>...)
function(vesko_add_wine_test name code_page language)
  add_test(NAME windows.${name} COMMAND ${ARGN})
  set_tests_properties(
    windows.${name} PROPERTIES TIMEOUT 120 FIXTURES_REQUIRED wine${code_page}
    ENVIRONMENT "VESKO_LANGUAGE=${language};VESKO_CODE_PAGE=${code_page};\
VESKO_PREFIX=${PROJECT_BINARY_DIR}/wine-${code_page}")
endfunction()

foreach(surroundings ${vesko_surroundings})
  string(REPLACE ":" ";" surroundings ${surroundings})
  list(GET surroundings 0 code_page)
  foreach(moment start end)
    vesko_add_wine_test(${moment}.${code_page} ${surroundings}
                        ${CMAKE_CURRENT_LIST_DIR}/run-test.sh ${moment})
  endforeach()
  set_tests_properties(windows.start.${code_page} PROPERTIES FIXTURES_REQUIRED ""
                       FIXTURES_SETUP wine${code_page})
  set_tests_properties(windows.end.${code_page} PROPERTIES FIXTURES_REQUIRED ""
                       FIXTURES_CLEANUP wine${code_page})
endforeach()

# vesko_wine_test(<program>): runs it in Korean, Japanese and Western surroundings.
function(vesko_wine_test program)
  foreach(surroundings ${vesko_surroundings})
    string(REPLACE ":" ";" surroundings ${surroundings})
    list(GET surroundings 0 code_page)
    vesko_add_wine_test(${program}.${code_page} ${surroundings}
                        ${PROJECT_SOURCE_DIR}/tests/windows/run-test.sh $<TARGET_FILE:${program}>)
  endforeach()
endfunction()
