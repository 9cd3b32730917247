# Tests of the socket port.
