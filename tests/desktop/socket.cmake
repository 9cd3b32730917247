# Tests of the socket port, and of the POP3 server that other tests stand on.
find_package(OpenSSL REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Network)

vesko_test(socket_test SOURCES SocketTest.cpp LoopbackPeer.cpp
           LIBS vesko_linux_socket vesko_linux_locale Qt6::Core OpenSSL::SSL)
