add_library(vesko_test_locale STATIC TestLocale.cpp)
target_include_directories(vesko_test_locale PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(vesko_test_locale PRIVATE vesko_options vesko_linux_locale
                      PUBLIC vesko_platform)
