add_library(vesko_test_pop3 STATIC ScriptedSocket.cpp)
target_include_directories(vesko_test_pop3 PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(vesko_test_pop3 PRIVATE vesko_options PUBLIC vesko_pop3)
