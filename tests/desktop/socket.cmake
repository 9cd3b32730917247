# Tests of the socket port; those of TLS where there is a library for the server's side.
if(WIN32)
  vesko_test(socket_test SOURCES SocketTest.cpp SocketFixtureWindows.cpp LoopbackPeer.cpp
             LIBS vesko_windows_socket vesko_test_locale pthread)
else()
  find_package(OpenSSL REQUIRED)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Core Network)
  vesko_test(socket_test SOURCES SocketTest.cpp SocketTlsTest.cpp SocketFixtureLinux.cpp
                                 LoopbackPeer.cpp TlsPeer.cpp
             LIBS vesko_linux_socket vesko_test_locale Qt6::Core OpenSSL::SSL)
endif()
