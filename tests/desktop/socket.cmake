# Tests of the socket port. The server's side of TLS is this system's, for tests on both.
if(WIN32)
  vesko_test(socket_test SOURCES SocketTest.cpp SocketFixtureWindows.cpp LoopbackPeer.cpp
             LIBS vesko_windows_socket vesko_test_locale pthread)
  add_executable(certificate_test SocketCertificateTest.cpp SocketFixtureWindows.cpp
                                  TlsServerWindows.cpp LoopbackPeer.cpp)
  target_include_directories(certificate_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(certificate_test PRIVATE vesko_windows_socket vesko_test_locale
                                                 vesko_options GTest::gtest_main)
  vesko_add_wine_test(certificate_test 1252 en_GB ${PROJECT_SOURCE_DIR}/tests/windows/tls-test.sh
                      $<TARGET_FILE:certificate_test>)
else()
  find_package(OpenSSL REQUIRED)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Core Network)
  add_library(vesko_tls_peer STATIC LoopbackPeer.cpp TlsPeer.cpp TlsServerLinux.cpp)
  target_include_directories(vesko_tls_peer PUBLIC ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(vesko_tls_peer PRIVATE vesko_options PUBLIC OpenSSL::SSL)
  vesko_test(socket_test SOURCES SocketTest.cpp SocketCertificateTest.cpp SocketTlsTest.cpp
                                 SocketFixtureLinux.cpp
             LIBS vesko_linux_socket vesko_test_locale vesko_tls_peer Qt6::Core)
  add_executable(vesko-tls-server tls-server.cpp)
  target_link_libraries(vesko-tls-server PRIVATE vesko_options vesko_tls_peer)
endif()
