add_library(vesko_test_ui STATIC ScriptedToolkit.cpp)
target_include_directories(vesko_test_ui PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(vesko_test_ui PRIVATE vesko_options PUBLIC vesko_ui GTest::gtest)
